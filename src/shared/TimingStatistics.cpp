#include "shared/TimingStatistics.h"

#include <algorithm>

namespace Orvik::Shared
{
void TimingStatistics::Add(std::string_view functionName, double milliseconds)
{
    const CriticalSectionLock lock(m_csEntries);
    if (const auto found = m_mapEntries.find(functionName); found != m_mapEntries.end())
    {
        found->second.m_totalMilliseconds += milliseconds;
        ++found->second.m_nCalls;
    }
    else
    {
        m_mapEntries.emplace(functionName, Entry{milliseconds, 1});
    }
    m_nLongestName = std::max(m_nLongestName, functionName.size());
}

std::optional<TimingStatistics::Entry> TimingStatistics::Find(std::string_view functionName) const
{
    const CriticalSectionLock lock(m_csEntries);
    const auto found = m_mapEntries.find(functionName);
    return found != m_mapEntries.end() ? std::optional(found->second) : std::nullopt;
}

std::size_t TimingStatistics::LongestNameLength() const
{
    const CriticalSectionLock lock(m_csEntries);
    return m_nLongestName;
}
} // namespace Orvik::Shared
