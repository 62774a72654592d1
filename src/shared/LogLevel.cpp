#include "shared/LogLevel.h"

#include <cstddef>
#include <cwchar>
#include <iterator>

namespace Orvik::Shared
{
namespace
{
constexpr std::wstring_view g_levelNames[] = {L"TraceIn", L"TraceOut", L"Verbose", L"Information",
                                              L"Warning", L"Error",    L"Diag"};
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
        const std::wstring_view candidate = g_levelNames[i];
        if (name.size() == candidate.size() && _wcsnicmp(name.data(), candidate.data(), name.size()) == 0)
            return static_cast<int>(i);
    }
    return Level::Never;
}
} // namespace Orvik::Shared
