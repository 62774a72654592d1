#pragma once

#include "shared/LogData.h"

#include <cstddef>
#include <list>
#include <memory>

namespace Orvik::Shared
{
// Copies of records, oldest first. They lie one behind the other in blocks of memory: of a backlog of usual records a
// dozen share an allocation. Belongs to one thread at a time.
class CLogDataList
{
public:
    // Raises std::bad_alloc, and then holds what it held before.
    void PushBack(const COrvikLogListener::LogData& data);
    [[nodiscard]] bool IsEmpty() const noexcept { return m_lstBlocks.empty(); }
    // The oldest record, with what it had made and kept; there must be one. Raises std::bad_alloc.
    [[nodiscard]] COrvikLogListener::LogData Front() const;
    // Removes it.
    void PopFront() noexcept;
    // Moves all records of the other list behind these.
    void TakeAll(CLogDataList& other) noexcept;
    void Clear() noexcept;

private:
    struct Block
    {
        std::unique_ptr<std::byte[]> m_pBytes;
        std::size_t m_nCapacity;
        std::size_t m_nBegin = 0; // of the oldest record
        std::size_t m_nEnd = 0;
    };

    [[nodiscard]] std::byte* Reserve(std::size_t size);

    std::list<Block> m_lstBlocks; // each holds a record
};
} // namespace Orvik::Shared
