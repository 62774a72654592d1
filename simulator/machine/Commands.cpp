#include "simulator/machine/Commands.h"

#include "simulator/model/Journal.h"

#include <stdexcept>
#include <string_view>
#include <thread>

namespace Simulator
{
namespace
{
struct Command
{
    std::string_view m_strName;
    nlohmann::json (*m_pfnCarryOut)(const nlohmann::json& command);
    bool m_bCallsAgent;
};

constexpr Command g_commands[] = {
    {"facts", &SetFacts, false},
    {"plan", &PlanCalls, false},
    {"count-calls", &CountCalls, false},
    {"live-objects", &ListLiveObjects, false},
    {"resources", &CountResources, false},
    {"message", &PostToMainWindow, false},
    {"send-message", &SendToMainWindow, true},
    {"device-change", &SendDeviceChange, true},
    {"event", &RaiseEvent, true},
    {"toast", &ActOnToast, true},
    {"picture", &TakePicture, true},
    {"dialogs", &ListDialogs, true},
    {"answer-dialog", &AnswerDialog, true},
    {"picture-dialog", &PictureDialog, true},
};

const Command& Find(std::string_view name)
{
    for (const Command& command : g_commands)
    {
        if (command.m_strName == name)
            return command;
    }
    throw std::runtime_error("the machine has no command " + std::string(name));
}

void CarryOut(const Command& command, const nlohmann::json& arguments)
{
    nlohmann::json answer = nlohmann::json::object();
    try
    {
        answer = command.m_pfnCarryOut(arguments);
        answer["ok"] = true;
    }
    catch (const std::exception& failure)
    {
        answer = {{"ok", false}, {"error", failure.what()}};
    }
    answer["id"] = arguments.at("id");
    Journal::Instance().Append("machine", "answer", std::move(answer));
}
} // namespace

void ExecuteCommand(const std::string& text)
{
    const nlohmann::json arguments = nlohmann::json::parse(text, nullptr, false);
    if (!arguments.is_object() || !arguments.contains("id"))
        return;
    try
    {
        const Command& command = Find(arguments.value("command", std::string()));
        if (command.m_bCallsAgent)
            std::thread([&command, arguments] { CarryOut(command, arguments); }).detach();
        else
            CarryOut(command, arguments);
    }
    catch (const std::exception& failure)
    {
        Journal::Instance().Append("machine", "answer",
                                   {{"id", arguments.at("id")}, {"ok", false}, {"error", failure.what()}});
    }
}
} // namespace Simulator
