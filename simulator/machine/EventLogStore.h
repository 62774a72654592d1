#pragma once

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace Simulator
{
// One record of the Windows event log.
struct EventLogRecord
{
    std::string m_strSource;
    WORD m_type = 0; // EVENTLOG_ERROR_TYPE, EVENTLOG_WARNING_TYPE, EVENTLOG_INFORMATION_TYPE ...
    WORD m_category = 0;
    DWORD m_dwEventId = 0;
    std::vector<std::string> m_lstStrings; // insertion strings, UTF-8
    std::string m_strData;                 // raw data in hexadecimal digits
};

// The machine's event log: one file of JSON lines, oldest record first, numbers from 1. It outlives the agent, so that
// a later run finds the records of an earlier one. Any thread.
class EventLogStore
{
public:
    static EventLogStore& Instance();

    // Without a folder records are numbered and journalled, and kept nowhere.
    void Open(const std::filesystem::path& folder);

    // Appends the record and journals it (kind "event-log", subject is the source).
    void Append(const EventLogRecord& record);

private:
    EventLogStore() = default;

    std::mutex m_lock;
    std::ofstream m_file; // open as long as the process lives; written through after each record
    unsigned m_nLastRecord = 0;
};
} // namespace Simulator
