#pragma once

#include <windows.h>

#include <cstddef>
#include <string_view>

namespace Orvik::Shared
{
// Room for the longest prefix: seven numbers of up to five digits, eight digits of thread id, eleven characters of
// level name, nine separators and the terminator.
inline constexpr std::size_t RecordPrefixCapacity = 64;

// Writes what "%04d/%02d/%02d %02d:%02d:%02d.%03d|%08X|%-11s|" gives for the parts of the time, the thread id and the
// name of the level (at most 11 characters), terminated; returns its length. By hand, because a printf takes thirty
// times as long.
std::size_t WriteRecordPrefix(wchar_t (&buffer)[RecordPrefixCapacity], const SYSTEMTIME& time, DWORD threadId,
                              std::wstring_view levelName) noexcept;
} // namespace Orvik::Shared
