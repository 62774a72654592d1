#pragma once

#include <windows.h>

namespace Notifications::OrvikWmiEvents
{
// Process-wide state of the firmware events. Never nested; initialised and deleted by the hub on the main thread, while
// it exists entered by the threads of the audit-log work.
inline CRITICAL_SECTION g_csLogging{};
inline CRITICAL_SECTION g_csScan{};
inline CRITICAL_SECTION g_csCopy{};

// The public class of firmware events. Constant, read by every thread until the very end of the process.
inline constexpr wchar_t g_szPublicEventClass[] = L"OrvikBIOS_BIOSEvent";
} // namespace Notifications::OrvikWmiEvents
