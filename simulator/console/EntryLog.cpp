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
    ShowToWaiters(m_lstEntries.back());
}

void EntryLog::ShowToWaiters(const Entry& entry)
{
    for (Waiter* waiter : m_lstWaiters)
    {
        if (waiter->m_found)
            continue;
        try
        {
            if (!waiter->m_test(entry))
                continue;
        }
        catch (...)
        {
            waiter->m_failure = std::current_exception();
        }
        waiter->m_found = entry.m_nIndex;
        m_arrived.notify_all();
    }
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
    for (std::size_t i = first; i < m_lstEntries.size(); ++i)
    {
        if (test(m_lstEntries[i]))
            return m_lstEntries[i];
    }
    Waiter waiter{test, std::nullopt, nullptr};
    m_lstWaiters.push_back(&waiter);
    m_arrived.wait_until(lock, end, [&] { return waiter.m_found.has_value(); });
    std::erase(m_lstWaiters, &waiter);
    if (waiter.m_failure)
        std::rethrow_exception(waiter.m_failure);
    return waiter.m_found ? std::optional(m_lstEntries[*waiter.m_found]) : std::nullopt;
}
} // namespace Simulator
