#pragma once

#include <windows.h>

#include <nlohmann/json.hpp>
#include <string>

namespace Simulator
{
// The machine's line to the console: journal entries go out as they are appended, commands come in on a thread of the
// channel. It stays open until the process is gone; when the console is gone first, entries are dropped.
class ControlChannel
{
public:
    // Opens both pipes of that name and starts the thread; false when the console does not hold them.
    [[nodiscard]] static bool Open(const std::wstring& channel);

private:
    ControlChannel(HANDLE commands, HANDLE journal) : m_hCommands(commands), m_hJournal(journal) {}
    void ReadCommands();
    void WriteLine(const nlohmann::json& line);

    HANDLE m_hCommands;
    HANDLE m_hJournal;
};
} // namespace Simulator
