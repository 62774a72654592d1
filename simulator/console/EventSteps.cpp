#include "simulator/console/Step.h"

namespace Simulator
{
namespace
{
using Action = std::function<void(ScenarioRun&)>;

constexpr char g_numberedClass[] = "orvikBEvnt";

struct EventName
{
    long m_nId;
    const char* m_pName;
};

constexpr EventName g_eventNames[] = {{3, "smart adapter"},     {20, "privacy panel"},           {21, "firmware"},
                                      {33, "firmware runtime"}, {83, "intrusion detection off"}, {0x20001, "USB-C"},
                                      {0x20002, "Veritor"}};

std::string DescribeNumber(long id)
{
    for (const EventName& name : g_eventNames)
    {
        if (name.m_nId == id)
            return "event " + std::to_string(id) + " (" + name.m_pName + ")";
    }
    return "event " + std::to_string(id);
}

struct EventReading
{
    nlohmann::json m_command = {{"command", "event"}};
    std::string m_strDescription;
    bool m_bWait = true;
};

// A single instance by its number, which need not be the one that was subscribed to.
std::string DescribeObjects(const nlohmann::json& objects, const std::string& className)
{
    if (objects.size() == 1 && objects[0].is_object() &&
        objects[0].value("EventID", nlohmann::json()).is_number_integer())
        return DescribeNumber(objects[0]["EventID"].get<long>());
    return std::to_string(objects.size()) + " events of class " + className + " at once";
}

// One instance from "id" and "data", or from "class" and "description".
void ReadSingle(ObjectReader& reader, EventReading& event, const std::string& className)
{
    nlohmann::json instance = nlohmann::json::object();
    if (className == g_numberedClass)
    {
        const long id = reader.Get<long>("id");
        instance["EventID"] = id;
        instance["EventData"] = reader.Get<nlohmann::json>("data", 0);
        event.m_strDescription = DescribeNumber(id);
        if (reader.Find("data") != nullptr)
            event.m_strDescription += " with data " + instance["EventData"].dump();
    }
    else
    {
        instance["Description"] = reader.Get<nlohmann::json>("description");
        event.m_strDescription = "an event of class " + className + ": " + instance["Description"].dump();
    }
    event.m_command["objects"] = {instance};
}

// The number of an event, or {"id", "data"}, or {"class", "description"}, or {"class", "objects": [...], "event-id"};
// with "threads" and "times" many at once. The step ends when the agent has handled it or shows a dialog meanwhile,
// with "wait": false at once.
EventReading ReadEventValue(const nlohmann::json& value, const std::string& place)
{
    EventReading event;
    const nlohmann::json object = value.is_number_integer() ? nlohmann::json{{"id", value}} : value;
    ObjectReader reader(object, place);
    const auto className = reader.Get<std::string>("class", g_numberedClass);
    event.m_command["class"] = className;
    if (const nlohmann::json* objects = reader.Find("objects"))
    {
        event.m_command["objects"] = *objects;
        event.m_strDescription = DescribeObjects(*objects, className);
        if (reader.Find("event-id") != nullptr)
            event.m_command["event-id"] = reader.Get<long>("event-id");
    }
    else
        ReadSingle(reader, event, className);
    const auto threads = reader.Get<unsigned>("threads", 1);
    const auto times = reader.Get<unsigned>("times", 1);
    event.m_command["threads"] = threads;
    event.m_command["times"] = times;
    if (threads * times != 1)
        event.m_strDescription += ", " + std::to_string(times) + " times from " + std::to_string(threads) + " threads";
    event.m_bWait = reader.Get<bool>("wait", true);
    reader.Finish();
    return event;
}

Action ReadEvent(const nlohmann::json& value, const std::string& place)
{
    const EventReading event = ReadEventValue(value, place);
    return [event](ScenarioRun& run)
    {
        run.Mark();
        run.Say("firmware", "raises " + event.m_strDescription);
        if (event.m_bWait)
            run.CommandOrDialog(event.m_command);
        else
            run.SendOnly(event.m_command);
    };
}

// Waits until the agent has handled every event that was raised without waiting.
Action ReadHandled(const nlohmann::json& value, const std::string& place)
{
    ObjectReader(value, place).Finish();
    return [](ScenarioRun& run) { run.WaitForHandled(); };
}
} // namespace

std::vector<StepKind> EventSteps()
{
    return {{"event", &ReadEvent}, {"handled", &ReadHandled}};
}
} // namespace Simulator
