#pragma once

#include "shared/Log.h"

#include <type_traits>

// The handlers of single messages are parts of the window procedure: their records bear its name.
inline constexpr char g_szWndProc[] = "WndProc";

// Writes a record of the window procedure, at the level that all of them have.
template <class... Args>
void LogMessage(Orvik::Shared::WideFormat<std::type_identity_t<Args>...> format, Args... args)
{
    Orvik::Shared::Log(Orvik::Shared::Level::Verbose, g_szWndProc, format, args...);
}
