#pragma once

#include "shared/OwnerTypes.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace Orvik::Shared
{
// Run times of functions, summed by name. Any thread.
class TimingStatistics
{
public:
    struct Entry
    {
        double m_totalMilliseconds;
        unsigned m_nCalls;
    };

    void Add(std::string_view functionName, double milliseconds);

    [[nodiscard]] std::optional<Entry> Find(std::string_view functionName) const;
    // Characters of the longest name seen: the width of a column of names.
    [[nodiscard]] std::size_t LongestNameLength() const;

private:
    mutable CriticalSection m_csEntries;
    std::map<std::string, Entry, std::less<>> m_mapEntries;
    std::size_t m_nLongestName = 0;
};
} // namespace Orvik::Shared
