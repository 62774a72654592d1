#include "shared/RecordPrefix.h"

#include "shared/LogLevel.h"

#include <algorithm>

namespace Orvik::Shared
{
namespace
{
constexpr std::size_t g_levelWidth = 11;

// "%0<width>d" of a number that may have more digits than the width.
wchar_t* WriteNumber(wchar_t* out, unsigned value, int width) noexcept
{
    int digits = width;
    for (unsigned limit = width == 4 ? 10'000 : width == 3 ? 1'000 : 100; value >= limit; limit *= 10)
        ++digits;
    for (wchar_t* place = out + digits; place != out; value /= 10)
        *--place = static_cast<wchar_t>(L'0' + value % 10);
    return out + digits;
}

wchar_t* WriteSeparated(wchar_t* out, unsigned value, int width, wchar_t separator) noexcept
{
    out = WriteNumber(out, value, width);
    *out = separator;
    return out + 1;
}

wchar_t* WriteHexadecimal(wchar_t* out, DWORD value) noexcept
{
    for (int shift = 28; shift >= 0; shift -= 4)
        *out++ = L"0123456789ABCDEF"[value >> shift & 0xF];
    return out;
}
} // namespace

std::size_t WriteRecordPrefix(wchar_t (&buffer)[RecordPrefixCapacity], const SYSTEMTIME& time, DWORD threadId,
                              int level) noexcept
{
    wchar_t* out = buffer;
    out = WriteSeparated(out, time.wYear, 4, L'/');
    out = WriteSeparated(out, time.wMonth, 2, L'/');
    out = WriteSeparated(out, time.wDay, 2, L' ');
    out = WriteSeparated(out, time.wHour, 2, L':');
    out = WriteSeparated(out, time.wMinute, 2, L':');
    out = WriteSeparated(out, time.wSecond, 2, L'.');
    out = WriteSeparated(out, time.wMilliseconds, 3, L'|');
    out = WriteHexadecimal(out, threadId);
    *out++ = L'|';
    const std::wstring_view name = LevelName(level);
    out = std::copy(name.begin(), name.end(), out);
    out = std::fill_n(out, g_levelWidth - name.size(), L' ');
    *out++ = L'|';
    *out = L'\0';
    return static_cast<std::size_t>(out - buffer);
}
} // namespace Orvik::Shared
