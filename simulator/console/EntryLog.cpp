#include "simulator/console/EntryLog.h"

namespace Simulator
{
void EntryLog::Append(unsigned agent, std::string kind, std::string subject, nlohmann::json details)
{
    const std::lock_guard lock(m_lock);
    const std::chrono::duration<double> since = Clock::now() - m_begin;
    m_lstEntries.push_back(
        {m_lstEntries.size(), agent, since.count(), std::move(kind), std::move(subject), std::move(details)});
    m_listener(m_lstEntries.back());
    m_arrived.notify_all();
}

std::size_t EntryLog::Size() const
{
    const std::lock_guard lock(m_lock);
    return m_lstEntries.size();
}

std::vector<Entry> EntryLog::From(std::size_t first) const
{
    const std::lock_guard lock(m_lock);
    if (first >= m_lstEntries.size())
        return {};
    return {m_lstEntries.begin() + static_cast<std::ptrdiff_t>(first), m_lstEntries.end()};
}

std::optional<Entry> EntryLog::WaitFor(std::size_t first, std::chrono::milliseconds limit, const EntryTest& test)
{
    const Clock::time_point end = Clock::now() + limit;
    std::unique_lock lock(m_lock);
    for (std::size_t next = first;; ++next)
    {
        if (!m_arrived.wait_until(lock, end, [&] { return next < m_lstEntries.size(); }))
            return std::nullopt;
        if (test(m_lstEntries[next]))
            return m_lstEntries[next];
    }
}
} // namespace Simulator
