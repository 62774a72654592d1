#include "simulator/machine/EventLogStore.h"

#include "simulator/model/Journal.h"

#include <ctime>

namespace Simulator
{
namespace
{
const char* TypeName(WORD type)
{
    switch (type)
    {
    case EVENTLOG_ERROR_TYPE:
        return "error";
    case EVENTLOG_WARNING_TYPE:
        return "warning";
    case EVENTLOG_INFORMATION_TYPE:
    case EVENTLOG_SUCCESS:
        return "information";
    default:
        return "audit";
    }
}

nlohmann::json ToJson(const EventLogRecord& record, unsigned number)
{
    return {{"record", number},
            {"time", static_cast<std::int64_t>(std::time(nullptr))}, // seconds since 1970, UTC
            {"source", record.m_strSource},
            {"type", TypeName(record.m_type)},
            {"category", record.m_category},
            {"event-id", record.m_dwEventId},
            {"strings", record.m_lstStrings},
            {"data", record.m_strData}};
}

unsigned CountLines(const std::filesystem::path& file)
{
    std::ifstream stream(file);
    std::string line;
    unsigned count = 0;
    while (std::getline(stream, line))
        ++count;
    return count;
}
} // namespace

EventLogStore& EventLogStore::Instance()
{
    // Never freed: the agent's threads may log until the process is gone.
    static EventLogStore& store = *new EventLogStore;
    return store;
}

void EventLogStore::Open(const std::filesystem::path& folder)
{
    const std::lock_guard lock(m_lock);
    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
    const std::filesystem::path file = folder / "event-log.jsonl";
    m_nLastRecord = CountLines(file);
    m_file.open(file, std::ios::app | std::ios::binary);
}

void EventLogStore::Append(const EventLogRecord& record)
{
    const std::lock_guard lock(m_lock);
    const nlohmann::json entry = ToJson(record, ++m_nLastRecord);
    if (m_file.is_open())
        m_file << entry.dump() << '\n' << std::flush;
    Journal::Instance().Append("event-log", record.m_strSource, entry);
}
} // namespace Simulator
