#pragma once

#include "shared/OwnerTypes.h"
#include "simulator/machine/EventLogRecord.h"

#include <filesystem>

namespace Simulator
{
// Where the records of a folder's event log are: JSON lines, oldest first. Nowhere without a folder.
[[nodiscard]] std::filesystem::path EventLogPath(const std::filesystem::path& folder);

// Adds records to the end of an event log; several programs may at the same time. Each record is written at once, so
// that a program that is killed leaves a line that is cut short at the worst; the next record stands on a line of its
// own.
class EventLogFile
{
public:
    // The file is made if it is not there. Without it every Append fails.
    explicit EventLogFile(const std::filesystem::path& folder);

    // Win32 error code. One thread at a time.
    [[nodiscard]] DWORD Append(const EventLogRecord& record);

private:
    [[nodiscard]] bool EndsWithinLine() const;

    DWORD m_dwOpenError;
    Orvik::Shared::UniqueHandle m_hFile;
    Orvik::Shared::UniqueHandle m_hMutex; // shared by all programs that write
};

// The lines of an event log as far as they have been read.
class EventLogLines
{
public:
    explicit EventLogLines(const std::filesystem::path& folder) : m_path(EventLogPath(folder)) {}

    // Reads what was written since the last time; a line that is not finished waits for the next time.
    void Update();
    [[nodiscard]] std::size_t Count() const noexcept { return m_lstLines.size(); }
    // Nothing when the line is no record: one that was cut short. Records are parsed each time.
    [[nodiscard]] std::optional<EventLogRecord> At(std::size_t index) const;

private:
    struct Line
    {
        std::size_t m_nBegin;
        std::size_t m_nEnd;
    };

    std::filesystem::path m_path;
    std::string m_strContent;
    std::vector<Line> m_lstLines;
    std::size_t m_nLineBegin = 0; // of the line that is not finished
};

// All records of a folder's event log.
[[nodiscard]] std::vector<EventLogRecord> ReadEventLogOf(const std::filesystem::path& folder);
} // namespace Simulator
