#include "simulator/model/LiveObjects.h"

#include "simulator/model/ProcessEnd.h"

#include <mutex>

namespace Simulator
{
namespace
{
struct Counts
{
    std::mutex m_lock;
    std::map<std::string, long, std::less<>> m_mapCounts;
};

Counts& TheCounts()
{
    // Never freed: doubles die until the process is gone.
    static Counts& counts = *new Counts;
    return counts;
}

void Change(std::string_view className, long difference)
{
    if (ProcessIsEnding())
        return;
    Counts& counts = TheCounts();
    const std::lock_guard lock(counts.m_lock);
    // Looked for first, so that an object's end allocates nothing.
    auto entry = counts.m_mapCounts.find(className);
    if (entry == counts.m_mapCounts.end())
        entry = counts.m_mapCounts.emplace(className, 0).first;
    entry->second += difference;
}
} // namespace

void LiveObjects::Add(std::string_view className)
{
    Change(className, 1);
}

void LiveObjects::Remove(std::string_view className)
{
    Change(className, -1);
}

long LiveObjects::Count(std::string_view className)
{
    Counts& counts = TheCounts();
    const std::lock_guard lock(counts.m_lock);
    const auto found = counts.m_mapCounts.find(className);
    return found == counts.m_mapCounts.end() ? 0 : found->second;
}

long LiveObjects::Count()
{
    long sum = 0;
    for (const auto& [name, count] : All())
        sum += count;
    return sum;
}

std::map<std::string, long> LiveObjects::All()
{
    Counts& counts = TheCounts();
    const std::lock_guard lock(counts.m_lock);
    std::map<std::string, long> alive;
    for (const auto& [name, count] : counts.m_mapCounts)
    {
        if (count != 0)
            alive[name] = count;
    }
    return alive;
}
} // namespace Simulator
