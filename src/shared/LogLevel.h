#pragma once

#include <string_view>

namespace Orvik::Shared
{
namespace Level
{
// Level numbers of a record; the same numbers are event identifiers in the Windows event log.
inline constexpr int TraceIn = 0;
inline constexpr int TraceOut = 1;
inline constexpr int Verbose = 2;
inline constexpr int Information = 3;
inline constexpr int Warning = 4;
inline constexpr int Error = 5;
inline constexpr int Diag = 6;

// As a minimum it silences a listener; also the number of every unknown level name.
inline constexpr int Never = 99;
} // namespace Level

// The name that a record shows: "TraceIn" to "Diag" for 0 to 6, "Undefined" for every other number. At most 11
// characters.
[[nodiscard]] std::wstring_view LevelName(int level) noexcept;

// The number of a level name in any case; an unknown or empty name gives Level::Never.
[[nodiscard]] int LevelFromName(std::wstring_view name) noexcept;
} // namespace Orvik::Shared
