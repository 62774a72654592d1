#pragma once

#include "shared/OwnerTypes.h"
#include "simulator/console/EntryLog.h"

#include <atomic>
#include <string>
#include <thread>

namespace Simulator
{
// The console's ends of the two pipes to one agent, and the thread that reads its journal into an entry log. When the
// agent is gone, an entry "agent", "ended" is appended.
class ChannelServer
{
public:
    explicit ChannelServer(EntryLog& entries);
    ChannelServer(const ChannelServer&) = delete;
    ChannelServer& operator=(const ChannelServer&) = delete;
    ~ChannelServer();

    // 1 for the first agent that the console starts, then 2 ...
    [[nodiscard]] unsigned Number() const noexcept { return m_nNumber; }
    [[nodiscard]] const std::wstring& Name() const noexcept { return m_strName; }
    // Begins to read; to be called when the agent has opened its ends.
    void Listen();
    // False when the agent is gone; its entry "ended" has not yet been appended when this was true.
    bool Send(const nlohmann::json& command);

private:
    void Read();
    void AppendLine(const std::string& line);

    EntryLog& m_entries;
    unsigned m_nNumber;
    std::wstring m_strName;
    Orvik::Shared::UniqueHandle m_hCommands;
    Orvik::Shared::UniqueHandle m_hJournal;
    std::atomic<bool> m_bEnded = false;
    std::thread m_reader;
};
} // namespace Simulator
