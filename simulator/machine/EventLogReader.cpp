#include "simulator/machine/EventLogReader.h"

#include "simulator/machine/EventRecordBytes.h"

#include <cstring>

namespace Simulator
{
namespace
{
constexpr DWORD g_dwLargestBuffer = 0x7FFFF; // of ReadEventLogW, from its documentation

bool HasOneOf(DWORD flags, DWORD first, DWORD second)
{
    return ((flags & first) != 0) != ((flags & second) != 0);
}

// Forwards is what Windows reads without a direction.
bool AreValid(DWORD flags)
{
    constexpr DWORD directions = EVENTLOG_FORWARDS_READ | EVENTLOG_BACKWARDS_READ;
    return HasOneOf(flags, EVENTLOG_SEQUENTIAL_READ, EVENTLOG_SEEK_READ) && (flags & directions) != directions;
}
} // namespace

EventLogRead EventLogReader::Read(DWORD flags, DWORD recordNumber, void* buffer, DWORD size)
{
    const bool backwards = (flags & EVENTLOG_BACKWARDS_READ) != 0;
    if (!AreValid(flags) || buffer == nullptr || size > g_dwLargestBuffer || !GoToBegin(flags, recordNumber))
        return {.m_dwError = ERROR_INVALID_PARAMETER};
    EventLogRead result;
    for (; !IsAtEnd(backwards); Step(backwards))
    {
        const std::optional<std::vector<BYTE>> record = NextRecord(backwards);
        if (!record)
            continue;
        const auto recordSize = static_cast<DWORD>(record->size());
        if (recordSize > size - result.m_dwBytesRead)
        {
            if (result.m_nRecords == 0)
                return {.m_dwError = ERROR_INSUFFICIENT_BUFFER, .m_dwBytesNeeded = recordSize};
            return result;
        }
        std::memcpy(static_cast<BYTE*>(buffer) + result.m_dwBytesRead, record->data(), recordSize);
        result.m_dwBytesRead += recordSize;
        ++result.m_nRecords;
    }
    if (result.m_nRecords == 0)
        result.m_dwError = ERROR_HANDLE_EOF;
    return result;
}

bool EventLogReader::GoToBegin(DWORD flags, DWORD recordNumber)
{
    const bool backwards = (flags & EVENTLOG_BACKWARDS_READ) != 0;
    const bool seeks = (flags & EVENTLOG_SEEK_READ) != 0;
    if (seeks || !m_bBegun || (!backwards && IsAtEnd(backwards)))
        m_lines.Update();
    if (seeks)
    {
        if (recordNumber == 0 || recordNumber > m_lines.Count())
            return false;
        m_nPosition = backwards ? recordNumber : recordNumber - 1;
    }
    else if (!m_bBegun)
        m_nPosition = backwards ? m_lines.Count() : 0;
    m_bBegun = true;
    return true;
}

bool EventLogReader::IsAtEnd(bool backwards) const
{
    return m_nPosition == (backwards ? 0 : m_lines.Count());
}

void EventLogReader::Step(bool backwards)
{
    m_nPosition = backwards ? m_nPosition - 1 : m_nPosition + 1;
}

std::optional<std::vector<BYTE>> EventLogReader::NextRecord(bool backwards) const
{
    const std::size_t index = backwards ? m_nPosition - 1 : m_nPosition;
    const std::optional<EventLogRecord> record = m_lines.At(index);
    if (!record)
        return std::nullopt;
    return EventRecordBytes(*record, static_cast<DWORD>(index + 1));
}
} // namespace Simulator
