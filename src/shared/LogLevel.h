#pragma once

namespace Orvik::Shared::Level
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
} // namespace Orvik::Shared::Level
