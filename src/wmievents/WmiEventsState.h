#pragma once

#include <windows.h>

namespace Notifications::OrvikWmiEvents
{
// Process-wide state of the firmware events; beside it AuditLogKeyMap, which has a lock of its own. The locks are
// initialised and deleted by the hub on the main thread and entered, while it exists, by the threads of the audit-log
// work.

// One requested copy at a time. Outside the copy lock, never with the scan lock.
inline CRITICAL_SECTION g_csLogging{};
// The scan of the event log, for its whole run. Alone.
inline CRITICAL_SECTION g_csScan{};
// The walk over the entries of one audit log.
inline CRITICAL_SECTION g_csCopy{};

// The public class of firmware events. Constant, read by every thread until the very end of the process.
inline constexpr wchar_t g_szPublicEventClass[] = L"OrvikBIOS_BIOSEvent";
} // namespace Notifications::OrvikWmiEvents
