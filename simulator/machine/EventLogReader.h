#pragma once

#include "simulator/machine/EventLogFile.h"

namespace Simulator
{
// What ReadEventLogW gives back.
struct EventLogRead
{
    DWORD m_dwError = ERROR_SUCCESS;
    DWORD m_dwBytesRead = 0;
    DWORD m_dwBytesNeeded = 0; // with ERROR_INSUFFICIENT_BUFFER: bytes that the next record takes
    unsigned m_nRecords = 0;   // in the buffer
};

// One reading of an event log, from one end to the other, as a handle of OpenEventLogW stands for it. Each record is
// parsed once as long as it is read in one direction. A record's number is that of its line, from 1. One thread at a
// time.
class EventLogReader
{
public:
    explicit EventLogReader(const std::filesystem::path& folder) : m_lines(folder) {}

    // As many whole records as fit, from where the last read ended, or with EVENTLOG_SEEK_READ from that record on.
    // Read backwards, the log ends with the newest record of the first read; read forwards, it goes on with what is
    // written meanwhile.
    [[nodiscard]] EventLogRead Read(DWORD flags, DWORD recordNumber, void* buffer, DWORD size);

private:
    // False when there is no record of that number.
    bool GoToBegin(DWORD flags, DWORD recordNumber);
    [[nodiscard]] bool IsAtEnd(bool backwards) const;
    void Step(bool backwards);
    [[nodiscard]] std::optional<std::vector<BYTE>> NextRecord(bool backwards) const;

    EventLogLines m_lines;
    bool m_bBegun = false;       // by the first read
    std::size_t m_nPosition = 0; // lines before it
};
} // namespace Simulator
