#include "wmievents/EventLogRecords.h"

#include <cstring>
#include <optional>

namespace Notifications::OrvikWmiEvents
{
namespace
{
using Bytes = std::span<const std::byte>;

// The text that begins at that offset and ends before the first zero; nothing when the bytes end before. A damaged
// record may begin anywhere: characters are copied, not pointed at.
std::optional<std::wstring> TextAt(Bytes record, std::size_t offset)
{
    std::wstring text;
    for (; offset + sizeof(wchar_t) <= record.size(); offset += sizeof(wchar_t))
    {
        wchar_t character = L'\0';
        std::memcpy(&character, &record[offset], sizeof(character));
        if (character == L'\0')
            return text;
        text.push_back(character);
    }
    return std::nullopt;
}

void HandleRecord(const wchar_t* sourceName, const EVENTLOGRECORD& header, Bytes record, const RecordHandler& handler)
{
    // The source's name follows the fixed fields.
    if (TextAt(record, sizeof(header)) != sourceName || header.NumStrings == 0)
        return;
    if (const std::optional<std::wstring> text = TextAt(record, header.StringOffset))
        handler(static_cast<int>(header.EventID), *text);
}
} // namespace

void ForEachRecordOf(const wchar_t* sourceName, Bytes records, const RecordHandler& handler)
{
    while (records.size() >= sizeof(EVENTLOGRECORD))
    {
        EVENTLOGRECORD header;
        std::memcpy(&header, records.data(), sizeof(header));
        if (header.Length < sizeof(header) || header.Length > records.size())
            return;
        HandleRecord(sourceName, header, records.first(header.Length), handler);
        records = records.subspan(header.Length);
    }
}
} // namespace Notifications::OrvikWmiEvents
