#pragma once

#include "shared/LogData.h"

#include <string>
#include <string_view>
#include <vector>

// What stands first in a log file.
inline constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";
// A whole line with its end, as another program wrote it.
inline constexpr std::string_view OldLine = "2024/03/05 14:07:09.042|00001A2C|Error      |N::C::F|old\r\n";

using LogRecord = Orvik::Shared::COrvikLogListener::LogData;

// A record of level Error under the name "N::C::F".
[[nodiscard]] LogRecord MakeRecord(std::wstring_view message);

// Its line in UTF-8, with the line's end.
[[nodiscard]] std::string LineOf(const LogRecord& record);

// The messages of all lines of a log file's bytes, in order. Raises std::runtime_error, which names the place, unless
// it is whole: a mark, then lines of which each begins with a record's time, thread, level and the name "N::C::F" and
// ends with a line's end, and no mark again.
[[nodiscard]] std::vector<std::string> MessagesIn(std::string_view bytes);

// The same for one line without its end: its message.
[[nodiscard]] std::string MessageOf(std::string_view line);

// "prefix 1" to "prefix n".
[[nodiscard]] std::vector<std::string> Numbered(std::string_view prefix, unsigned count);
