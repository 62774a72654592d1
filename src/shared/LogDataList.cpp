#include "shared/LogDataList.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace Orvik::Shared
{
namespace
{
// A page, less what the heap and the list keep of their own beside it.
constexpr std::size_t g_blockSize = 4000;

// Begins a packed record; the texts follow without terminators, and then the next record, wherever that is: nothing in
// a block is aligned.
struct PackedRecord
{
    SYSTEMTIME m_time;
    int m_nLevel;
    DWORD m_dwThreadId;
    std::size_t m_nMessage; // lengths in characters
    std::size_t m_nLevelName;
    std::size_t m_nLine;
    std::size_t m_nFunctionName;
};
static_assert(std::is_trivially_copyable_v<PackedRecord>);

std::size_t SizeOf(const PackedRecord& record) noexcept
{
    const std::size_t wide = record.m_nMessage + record.m_nLevelName + record.m_nLine;
    return sizeof(record) + wide * sizeof(wchar_t) + record.m_nFunctionName;
}

PackedRecord ReadHeader(const std::byte* place) noexcept
{
    PackedRecord record;
    std::memcpy(&record, place, sizeof(record));
    return record;
}

template <typename Text>
void Put(std::byte*& place, const Text& text) noexcept
{
    const std::size_t size = text.size() * sizeof(text[0]);
    std::memcpy(place, text.data(), size);
    place += size;
}

template <typename Text>
void Get(const std::byte*& place, std::size_t length, Text& text)
{
    text.resize(length);
    const std::size_t size = length * sizeof(text[0]);
    std::memcpy(text.data(), place, size);
    place += size;
}
} // namespace

void CLogDataList::PushBack(const COrvikLogListener::LogData& data)
{
    const PackedRecord record{data.m_time,
                              data.m_nLevel,
                              data.m_dwThreadId,
                              data.m_strMessage.size(),
                              data.m_strLevelName.size(),
                              data.m_strLine.size(),
                              data.m_strFunctionName.size()};
    std::byte* place = Reserve(SizeOf(record));
    std::memcpy(place, &record, sizeof(record));
    place += sizeof(record);
    Put(place, data.m_strMessage);
    Put(place, data.m_strLevelName);
    Put(place, data.m_strLine);
    Put(place, data.m_strFunctionName);
}

std::byte* CLogDataList::Reserve(std::size_t size)
{
    if (m_lstBlocks.empty() || m_lstBlocks.back().m_nCapacity - m_lstBlocks.back().m_nEnd < size)
    {
        const std::size_t capacity = std::max(size, g_blockSize);
        m_lstBlocks.push_back({std::make_unique_for_overwrite<std::byte[]>(capacity), capacity});
    }
    Block& block = m_lstBlocks.back();
    std::byte* const place = block.m_pBytes.get() + block.m_nEnd;
    block.m_nEnd += size;
    return place;
}

COrvikLogListener::LogData CLogDataList::Front() const
{
    const Block& block = m_lstBlocks.front();
    const std::byte* place = block.m_pBytes.get() + block.m_nBegin;
    const PackedRecord record = ReadHeader(place);
    place += sizeof(record);
    COrvikLogListener::LogData data(record.m_nLevel, record.m_time, record.m_dwThreadId);
    Get(place, record.m_nMessage, data.m_strMessage);
    Get(place, record.m_nLevelName, data.m_strLevelName);
    Get(place, record.m_nLine, data.m_strLine);
    Get(place, record.m_nFunctionName, data.m_strFunctionName);
    return data;
}

void CLogDataList::PopFront() noexcept
{
    Block& block = m_lstBlocks.front();
    block.m_nBegin += SizeOf(ReadHeader(block.m_pBytes.get() + block.m_nBegin));
    if (block.m_nBegin == block.m_nEnd)
        m_lstBlocks.pop_front();
}

void CLogDataList::TakeAll(CLogDataList& other) noexcept
{
    m_lstBlocks.splice(m_lstBlocks.end(), other.m_lstBlocks);
}

void CLogDataList::Clear() noexcept
{
    m_lstBlocks.clear();
}
} // namespace Orvik::Shared
