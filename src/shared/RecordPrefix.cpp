#include "shared/RecordPrefix.h"

#include <algorithm>

namespace Orvik::Shared
{
namespace
{
constexpr std::size_t g_levelWidth = 11;

// The first number that has more digits than that.
consteval unsigned LimitOfDigits(int digits)
{
    unsigned limit = 1;
    while (digits-- > 0)
        limit *= 10;
    return limit;
}

// "%0<Width>d" of a number that may have more digits than the width, and a separator.
template <int Width>
wchar_t* WriteNumber(wchar_t* out, unsigned value, wchar_t separator) noexcept
{
    int digits = Width;
    for (unsigned limit = LimitOfDigits(Width); value >= limit; limit *= 10)
        ++digits;
    for (wchar_t* place = out + digits; place != out; value /= 10)
        *--place = static_cast<wchar_t>(L'0' + value % 10);
    out[digits] = separator;
    return out + digits + 1;
}

wchar_t* WriteHexadecimal(wchar_t* out, DWORD value) noexcept
{
    for (int shift = 28; shift >= 0; shift -= 4)
        *out++ = L"0123456789ABCDEF"[value >> shift & 0xF];
    return out;
}
} // namespace

std::size_t WriteRecordPrefix(wchar_t (&buffer)[RecordPrefixCapacity], const SYSTEMTIME& time, DWORD threadId,
                              std::wstring_view levelName) noexcept
{
    wchar_t* out = buffer;
    out = WriteNumber<4>(out, time.wYear, L'/');
    out = WriteNumber<2>(out, time.wMonth, L'/');
    out = WriteNumber<2>(out, time.wDay, L' ');
    out = WriteNumber<2>(out, time.wHour, L':');
    out = WriteNumber<2>(out, time.wMinute, L':');
    out = WriteNumber<2>(out, time.wSecond, L'.');
    out = WriteNumber<3>(out, time.wMilliseconds, L'|');
    out = WriteHexadecimal(out, threadId);
    *out++ = L'|';
    out = std::ranges::copy(levelName, out).out;
    out = std::fill_n(out, g_levelWidth - levelName.size(), L' ');
    *out++ = L'|';
    *out = L'\0';
    return static_cast<std::size_t>(out - buffer);
}
} // namespace Orvik::Shared
