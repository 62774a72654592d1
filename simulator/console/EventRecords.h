#pragma once

#include "simulator/console/EntryLog.h"
#include "simulator/machine/EventLogFile.h"

namespace Simulator
{
// The source of the agent's own log; every other source is what an administrator looks for.
inline constexpr char DiagnosticSource[] = "OrvikNotifications";

// The record that an entry of kind "event-log" tells of; nothing for any other entry.
[[nodiscard]] std::optional<EventLogRecord> RecordOf(const Entry& entry);

// The strings of a record in one line: "Veritor log entry: intrusion / Source: BIOS / Timestamp: 2023/05/01 10:11:12".
[[nodiscard]] std::string TextInOneLine(const EventLogRecord& record);

// A heading, and a line for each record with its number in the list, time (UTC), type, number of the event and text.
[[nodiscard]] std::string RecordTable(const std::vector<EventLogRecord>& records);

// The records of one source in an event log, as far as they have been read.
class RecordsOfSource
{
public:
    // source: letter for letter; empty for all sources but the agent's own log.
    RecordsOfSource(const std::filesystem::path& folder, std::string source)
        : m_lines(folder), m_strSource(std::move(source))
    {
    }

    // Reads what was written since the last time.
    void Update();
    [[nodiscard]] const std::vector<EventLogRecord>& Records() const noexcept { return m_lstRecords; }

private:
    [[nodiscard]] bool Includes(const EventLogRecord& record) const;

    EventLogLines m_lines;
    std::string m_strSource;
    std::size_t m_nSeen = 0;
    std::vector<EventLogRecord> m_lstRecords;
};
} // namespace Simulator
