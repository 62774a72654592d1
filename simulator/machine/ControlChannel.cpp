#include "simulator/machine/ControlChannel.h"

#include "simulator/machine/Commands.h"
#include "simulator/machine/Protocol.h"
#include "simulator/model/Facts.h"
#include "simulator/model/Journal.h"

#include <set>
#include <thread>

namespace Simulator
{
namespace
{
HANDLE OpenPipe(const std::wstring& name, DWORD access)
{
    return CreateFileW(name.c_str(), access, 0, nullptr, OPEN_EXISTING, 0, nullptr);
}

nlohmann::json ToJson(const JournalEntry& entry)
{
    return {{"sequence", entry.m_nSequence}, {"microseconds", entry.m_nMicroseconds}, {"thread", entry.m_dwThreadId},
            {"kind", entry.m_strKind},       {"subject", entry.m_strSubject},         {"details", entry.m_details}};
}

// Fact /journal/leaves-out: kinds of entries that the console is not to hear of, from the start on.
std::set<std::string> KindsLeftOut()
{
    const nlohmann::json kinds = Facts::Instance().Get("/journal/leaves-out");
    return kinds.is_array() ? kinds.get<std::set<std::string>>() : std::set<std::string>();
}
} // namespace

bool ControlChannel::Open(const std::wstring& channel)
{
    const HANDLE commands = OpenPipe(Protocol::CommandPipeName(channel), GENERIC_READ);
    const HANDLE journal = OpenPipe(Protocol::JournalPipeName(channel), GENERIC_WRITE);
    if (commands == INVALID_HANDLE_VALUE || journal == INVALID_HANDLE_VALUE)
        return false;

    // Never freed: journal entries are written until the process is gone.
    auto* opened = new ControlChannel(commands, journal);
    Journal::Instance().SetSink(
        [opened, leftOut = KindsLeftOut()](const JournalEntry& entry)
        {
            if (!leftOut.contains(entry.m_strKind))
                opened->WriteLine(ToJson(entry));
        });
    std::thread([opened] { opened->ReadCommands(); }).detach();
    return true;
}

void ControlChannel::WriteLine(const nlohmann::json& line)
{
    const std::string text = line.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + '\n';
    const DWORD lastError = GetLastError();
    DWORD written = 0;
    WriteFile(m_hJournal, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    SetLastError(lastError);
}

void ControlChannel::ReadCommands()
{
    std::string received;
    char part[4096];
    DWORD size = 0;
    while (ReadFile(m_hCommands, part, sizeof(part), &size, nullptr) && size != 0)
    {
        received.append(part, size);
        for (std::size_t end = received.find('\n'); end != std::string::npos; end = received.find('\n'))
        {
            // The console has what was journalled; kept here it would grow for as long as the agent runs.
            Journal::Instance().Clear();
            ExecuteCommand(received.substr(0, end));
            received.erase(0, end + 1);
        }
    }
}
} // namespace Simulator
