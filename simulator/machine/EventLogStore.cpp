#include "simulator/machine/EventLogStore.h"

#include "simulator/doubles/JournalText.h"
#include "simulator/machine/PlannedCall.h"
#include "simulator/model/Facts.h"
#include "simulator/model/Journal.h"

#include <ctime>

namespace Simulator
{
EventLogStore& EventLogStore::Instance()
{
    // Never freed: the agent's threads may log until the process is gone.
    static EventLogStore& store = *new EventLogStore;
    return store;
}

void EventLogStore::Open(const std::filesystem::path& folder)
{
    const std::lock_guard lock(m_lock);
    m_folder = folder;
    m_pFile = folder.empty() ? nullptr : std::make_unique<EventLogFile>(folder);
    m_pLines.reset();
    m_nCounted = 0;
    m_mapCounts.clear();
}

DWORD EventLogStore::Append(EventLogRecord record)
{
    record.m_nTime = static_cast<std::int64_t>(std::time(nullptr));
    const std::lock_guard lock(m_lock);
    if (const DWORD error = Refusal(record.m_strSource); error != ERROR_SUCCESS)
        return error;
    if (const DWORD error = m_pFile ? m_pFile->Append(record) : ERROR_SUCCESS; error != ERROR_SUCCESS)
        return error;
    Journal::Instance().Append("event-log", record.m_strSource, ToJson(record));
    return ERROR_SUCCESS;
}

std::unique_ptr<EventLogReader> EventLogStore::Read() const
{
    const std::lock_guard lock(m_lock);
    return std::make_unique<EventLogReader>(m_folder);
}

DWORD EventLogStore::Refusal(const std::string& source)
{
    const nlohmann::json facts = Facts::Instance().Get("/event-log");
    if (!facts.is_object())
        return ERROR_SUCCESS;
    const nlohmann::json refuses = facts.value("refuses", nlohmann::json::object());
    if (refuses.contains(source))
        return ErrorNumber(HResultFromJson(refuses.at(source), E_FAIL));
    const nlohmann::json capacity = facts.value("capacity", nlohmann::json::object());
    if (capacity.contains(source) && CountOf(source) >= capacity.at(source).get<unsigned>())
        return ERROR_LOG_FILE_FULL;
    return ERROR_SUCCESS;
}

unsigned EventLogStore::CountOf(const std::string& source)
{
    if (!m_pLines)
        m_pLines = std::make_unique<EventLogLines>(m_folder);
    m_pLines->Update();
    for (; m_nCounted < m_pLines->Count(); ++m_nCounted)
    {
        if (const std::optional<EventLogRecord> record = m_pLines->At(m_nCounted))
            ++m_mapCounts[record->m_strSource];
    }
    return m_mapCounts[source];
}
} // namespace Simulator
