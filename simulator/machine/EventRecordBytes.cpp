#include "simulator/machine/EventRecordBytes.h"

#include "simulator/model/Text.h"

#include <cstring>

namespace Simulator
{
namespace
{
using Bytes = std::vector<BYTE>;

constexpr DWORD g_dwSignature = 0x654C664C; // "LfLe", which marks every record

const std::wstring& ComputerName()
{
    static const std::wstring name = []
    {
        wchar_t text[MAX_COMPUTERNAME_LENGTH + 1] = {};
        DWORD size = ARRAYSIZE(text);
        GetComputerNameW(text, &size);
        return std::wstring(text);
    }();
    return name;
}

void Append(Bytes& bytes, const void* data, std::size_t size)
{
    const auto* begin = static_cast<const BYTE*>(data);
    bytes.insert(bytes.end(), begin, begin + size);
}

// With its terminator.
void AppendText(Bytes& bytes, const std::wstring& text)
{
    Append(bytes, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
}

void Align(Bytes& bytes)
{
    bytes.resize((bytes.size() + sizeof(DWORD) - 1) / sizeof(DWORD) * sizeof(DWORD));
}

DWORD SizeOf(const Bytes& bytes)
{
    return static_cast<DWORD>(bytes.size());
}

EVENTLOGRECORD HeaderOf(const EventLogRecord& record, DWORD number)
{
    EVENTLOGRECORD header{};
    header.Reserved = g_dwSignature;
    header.RecordNumber = number;
    header.TimeGenerated = static_cast<DWORD>(record.m_nTime);
    header.TimeWritten = header.TimeGenerated;
    header.EventID = record.m_dwEventId;
    header.EventType = record.m_wType;
    header.NumStrings = record.m_damage.m_stringCount.value_or(static_cast<WORD>(record.m_lstStrings.size()));
    header.EventCategory = record.m_wCategory;
    return header;
}

// What follows the strings; the whole size of the record comes last.
void AppendEnd(Bytes& bytes, EVENTLOGRECORD& header, const EventLogRecord& record)
{
    header.DataOffset = SizeOf(bytes);
    if (record.m_damage.m_bUnterminated)
    {
        bytes.resize(bytes.size() - (record.m_lstStrings.empty() ? 0 : sizeof(wchar_t)));
        header.Length = SizeOf(bytes);
        return;
    }
    const Bytes data = FromHexadecimal(record.m_strData);
    header.DataLength = SizeOf(data);
    Append(bytes, data.data(), data.size());
    Align(bytes);
    header.Length = SizeOf(bytes) + static_cast<DWORD>(sizeof(DWORD));
    Append(bytes, &header.Length, sizeof(header.Length));
}
} // namespace

std::vector<BYTE> EventRecordBytes(const EventLogRecord& record, DWORD number)
{
    if (!record.m_strRaw.empty())
        return FromHexadecimal(record.m_strRaw);
    EVENTLOGRECORD header = HeaderOf(record, number);
    Bytes bytes(sizeof(header));
    AppendText(bytes, Wide(record.m_strSource));
    AppendText(bytes, ComputerName());
    Align(bytes);
    header.UserSidOffset = SizeOf(bytes);
    header.StringOffset = record.m_damage.m_stringOffset.value_or(SizeOf(bytes));
    for (const std::string& text : record.m_lstStrings)
        AppendText(bytes, Wide(text));
    AppendEnd(bytes, header, record);
    header.Length = record.m_damage.m_length.value_or(header.Length);
    std::memcpy(bytes.data(), &header, sizeof(header));
    return bytes;
}
} // namespace Simulator
