#include "shared/LogLevel.h"

#include <algorithm>
#include <cstddef>
#include <cwctype>
#include <iterator>

namespace Orvik::Shared
{
namespace
{
constexpr std::wstring_view g_levelNames[] = {L"TraceIn", L"TraceOut", L"Verbose", L"Information",
                                              L"Warning", L"Error",    L"Diag"};

wchar_t Lower(wchar_t c) noexcept
{
    return static_cast<wchar_t>(std::towlower(c));
}
} // namespace

std::wstring_view LevelName(int level) noexcept
{
    const auto index = static_cast<std::size_t>(level);
    return index < std::size(g_levelNames) ? g_levelNames[index] : L"Undefined";
}

int LevelFromName(std::wstring_view name) noexcept
{
    for (std::size_t i = 0; i < std::size(g_levelNames); ++i)
    {
        if (std::ranges::equal(name, g_levelNames[i], {}, Lower, Lower))
            return static_cast<int>(i);
    }
    return Level::Never;
}
} // namespace Orvik::Shared
