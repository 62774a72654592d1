#pragma once

#include <windows.h>

#include <cstddef>
#include <functional>
#include <span>
#include <string>

namespace Notifications::OrvikWmiEvents
{
// What a record of the Windows event log says of an entry: the number, all 32 bits of it, and its first text.
using RecordHandler = std::function<void(int eventId, const std::wstring& text)>;

// Calls the handler for each record of exactly that source among those that ReadEventLogW put into the buffer, in their
// order. Bytes that are no record end the walk; a record without a whole text is left out. Raises what the handler
// raises.
void ForEachRecordOf(const wchar_t* sourceName, std::span<const std::byte> records, const RecordHandler& handler);
} // namespace Notifications::OrvikWmiEvents
