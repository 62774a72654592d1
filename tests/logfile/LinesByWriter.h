#pragma once

#include <map>
#include <string>
#include <string_view>

// The text of a writer's record number 1, 2, 3...
[[nodiscard]] std::wstring TextOf(unsigned writer, unsigned number);

// Takes the messages of log files in order and sees that none of a writer's is missing, doubled or out of order; where
// some may miss, that the others are in order.
class LinesByWriter
{
public:
    enum class MayMiss
    {
        Nothing,
        Beginning,
        Any
    };

    explicit LinesByWriter(MayMiss mayMiss = MayMiss::Nothing) noexcept : m_mayMiss(mayMiss) {}

    // Raises std::runtime_error, which shows the message, for one that may not stand here.
    void Add(std::string_view message);
    // Number of the last record of that writer; 0: there was none.
    [[nodiscard]] unsigned LastOf(unsigned writer) const;

private:
    MayMiss m_mayMiss;
    std::map<unsigned, unsigned> m_mapLast;
};
