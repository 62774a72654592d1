#include "simulator/console/Step.h"

#include <windows.h>

#include <dbt.h>

namespace Simulator
{
namespace
{
using Action = std::function<void(ScenarioRun&)>;

struct NamedNumbers
{
    const char* m_pName;
    std::vector<unsigned> m_lstNumbers;
    const char* m_pText; // of the timeline
};

// Windows sends two notifications when the computer wakes up for its user.
const std::vector<NamedNumbers> g_powerEvents = {
    {"suspend", {PBT_APMSUSPEND}, "the computer goes to sleep"},
    {"resume", {PBT_APMRESUMEAUTOMATIC, PBT_APMRESUMESUSPEND}, "the computer wakes up"},
    {"resume-automatic", {PBT_APMRESUMEAUTOMATIC}, "the computer wakes up by itself"},
    {"resume-suspend", {PBT_APMRESUMESUSPEND}, "the computer has woken up for its user"},
};

const std::vector<NamedNumbers> g_sessionChanges = {
    {"console-connect", {WTS_CONSOLE_CONNECT}, "the session is shown on the console"},
    {"console-disconnect", {WTS_CONSOLE_DISCONNECT}, "the session leaves the console"},
    {"remote-connect", {WTS_REMOTE_CONNECT}, "the session is connected from afar"},
    {"remote-disconnect", {WTS_REMOTE_DISCONNECT}, "the remote connection to the session ends"},
    {"logon", {WTS_SESSION_LOGON}, "the user logs on"},
    {"logoff", {WTS_SESSION_LOGOFF}, "the user logs off"},
    {"lock", {WTS_SESSION_LOCK}, "the session is locked"},
    {"unlock", {WTS_SESSION_UNLOCK}, "the session is unlocked"},
};

const std::vector<NamedNumbers> g_deviceEvents = {
    {"arrival", {DBT_DEVICEARRIVAL}, "has arrived"},
    {"removal", {DBT_DEVICEREMOVECOMPLETE}, "is gone"},
};

const std::vector<NamedNumbers> g_deviceTypes = {
    {"interface", {DBT_DEVTYP_DEVICEINTERFACE}, "a device interface"},
    {"volume", {DBT_DEVTYP_VOLUME}, "a volume"},
    {"port", {DBT_DEVTYP_PORT}, "a port"},
};

// A name of the table, or a number of the caller's own.
NamedNumbers ReadNamed(const std::vector<NamedNumbers>& table, const nlohmann::json& value, const std::string& place,
                       const char* otherText)
{
    if (value.is_number_unsigned())
        return {"", {value.get<unsigned>()}, otherText};
    std::string known;
    for (const NamedNumbers& named : table)
    {
        if (value == named.m_pName)
            return named;
        known += std::string(", ") + named.m_pName;
    }
    throw UsageError(place + ": " + value.dump() + " is not one of: a number" + known);
}

// The messages are sent one after another; the step ends when the agent has handled them all.
Action SendAll(UINT message, const NamedNumbers& event)
{
    return [=](ScenarioRun& run)
    {
        run.Mark();
        run.Say("windows", event.m_pText);
        for (const unsigned wParam : event.m_lstNumbers)
            run.Command({{"command", "send-message"}, {"message", message}, {"wparam", wParam}});
    };
}

// "suspend", "resume" or the number of a power event.
Action ReadPower(const nlohmann::json& value, const std::string& place)
{
    return SendAll(WM_POWERBROADCAST, ReadNamed(g_powerEvents, value, place, "sends a power notification"));
}

// "lock", "unlock" ... or the number of a session change.
Action ReadSession(const nlohmann::json& value, const std::string& place)
{
    return SendAll(WM_WTSSESSION_CHANGE, ReadNamed(g_sessionChanges, value, place, "tells of a session change"));
}

// {"event", "type", "class", "name", "size"}: "size" is what the structure says of itself; "structure": false sends
// none.
Action ReadDeviceChange(const nlohmann::json& value, const std::string& place)
{
    ObjectReader reader(value, place);
    const NamedNumbers event = ReadNamed(g_deviceEvents, reader.Get<nlohmann::json>("event", "arrival"),
                                         reader.PlaceOf("event"), "has changed");
    const NamedNumbers type = ReadNamed(g_deviceTypes, reader.Get<nlohmann::json>("type", "interface"),
                                        reader.PlaceOf("type"), "a device of an unknown type");
    nlohmann::json command = {{"command", "device-change"},
                              {"event", event.m_lstNumbers.front()},
                              {"type", type.m_lstNumbers.front()},
                              {"structure", reader.Get<bool>("structure", true)}};
    // GUID_DEVINTERFACE_USB_DEVICE unless another is named.
    command["class"] = reader.Get<std::string>("class", "{A5DCBF10-6530-11D2-901F-00C04FB951ED}");
    const auto name = reader.Get<std::string>("name", "");
    command["name"] = name;
    if (reader.Find("size") != nullptr)
        command["size"] = reader.Get<unsigned>("size");
    reader.Finish();
    const std::string text = std::string(type.m_pText) + " " + event.m_pText + (name.empty() ? "" : ": " + name);
    return [command, text](ScenarioRun& run)
    {
        run.Mark();
        run.Say("windows", text);
        run.Command(command);
    };
}
} // namespace

std::vector<StepKind> SystemSteps()
{
    return {{"power", &ReadPower}, {"session", &ReadSession}, {"device-change", &ReadDeviceChange}};
}
} // namespace Simulator
