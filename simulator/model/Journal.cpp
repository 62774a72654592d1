#include "simulator/model/Journal.h"

#include "simulator/model/ProcessEnd.h"

namespace Simulator
{
Journal::Journal()
{
    QueryPerformanceFrequency(&m_frequency);
    QueryPerformanceCounter(&m_start);
}

Journal& Journal::Instance()
{
    // Never freed: doubles are called until the process is gone.
    static Journal& journal = *new Journal;
    return journal;
}

void Journal::Append(std::string_view kind, std::string_view subject, nlohmann::json details)
{
    if (ProcessIsEnding())
        return;
    LARGE_INTEGER now{};
    QueryPerformanceCounter(&now);
    const std::lock_guard lock(m_lock);
    JournalEntry entry{++m_nLast,
                       (now.QuadPart - m_start.QuadPart) * 1'000'000 / m_frequency.QuadPart,
                       GetCurrentThreadId(),
                       std::string(kind),
                       std::string(subject),
                       std::move(details)};
    if (m_sink)
        m_sink(entry);
    m_lstEntries.push_back(std::move(entry));
}

std::vector<JournalEntry> Journal::Entries() const
{
    const std::lock_guard lock(m_lock);
    return m_lstEntries;
}

std::vector<std::string> Journal::Subjects(std::string_view kind) const
{
    const std::lock_guard lock(m_lock);
    std::vector<std::string> subjects;
    for (const JournalEntry& entry : m_lstEntries)
    {
        if (entry.m_strKind == kind)
            subjects.push_back(entry.m_strSubject);
    }
    return subjects;
}

void Journal::Clear()
{
    const std::lock_guard lock(m_lock);
    m_lstEntries.clear();
}

void Journal::SetSink(std::function<void(const JournalEntry&)> sink)
{
    const std::lock_guard lock(m_lock);
    m_sink = std::move(sink);
}
} // namespace Simulator
