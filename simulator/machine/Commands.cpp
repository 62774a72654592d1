#include "simulator/machine/Commands.h"

#include "shared/OwnerTypes.h"
#include "simulator/model/Journal.h"

#include <windows.h>

#include <memory>
#include <stdexcept>
#include <string_view>

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

struct Work
{
    const Command& m_command;
    nlohmann::json m_arguments;
};

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

DWORD WINAPI RunThread(void* work)
{
    const std::unique_ptr<Work> owned(static_cast<Work*>(work));
    CarryOut(owned->m_command, owned->m_arguments);
    return 0;
}

// A thread of Windows' own. One of the standard library, detached while the last one was just ending, has been seen to
// start without the work it was given.
void StartThread(const Command& command, const nlohmann::json& arguments)
{
    auto work = std::make_unique<Work>(Work{command, arguments});
    const Orvik::Shared::UniqueHandle thread(CreateThread(nullptr, 0, &RunThread, work.get(), 0, nullptr));
    if (!thread)
        throw std::runtime_error("no thread can be started");
    // The thread owns it from here on.
    static_cast<void>(work.release());
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
            StartThread(command, arguments);
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
