#pragma once

#include "simulator/machine/EventLogReader.h"

#include <map>
#include <memory>
#include <mutex>

namespace Simulator
{
// The machine's event log, one for the records of all sources. It outlives the agent, so that a later run finds the
// records of an earlier one. Any thread.
class EventLogStore
{
public:
    static EventLogStore& Instance();

    // Where the log is kept from now on. Without a folder records are journalled, and kept nowhere.
    void Open(const std::filesystem::path& folder);

    // Appends the record with the time of now and journals it (kind "event-log", subject is the source). Win32 error
    // code: fact /event-log/refuses/SOURCE, ERROR_LOG_FILE_FULL by fact /event-log/capacity/SOURCE, or what writing
    // the file gave.
    [[nodiscard]] DWORD Append(EventLogRecord record);

    // Starts a reading of the log.
    [[nodiscard]] std::unique_ptr<EventLogReader> Read() const;

private:
    EventLogStore() = default;
    [[nodiscard]] DWORD Refusal(const std::string& source);
    [[nodiscard]] unsigned CountOf(const std::string& source);

    mutable std::mutex m_lock;
    std::filesystem::path m_folder;
    std::unique_ptr<EventLogFile> m_pFile;
    std::unique_ptr<EventLogLines> m_pLines; // counted so far; made when somebody counts
    std::size_t m_nCounted = 0;
    std::map<std::string, unsigned> m_mapCounts; // records by source
};
} // namespace Simulator
