#pragma once

#include <windows.h>

namespace Notifications::OrvikWmiEvents
{
// Thread routine, without a parameter, that fills AuditLogKeyMap from the records of VeritorEventSourceName in the
// Windows event log, newest first. It holds the scan lock for its whole run. What fails is logged and ends the scan;
// the keys made so far stay. Exit code 0.
DWORD WINAPI ThreadProcCreateHashKeysForVeritorEventLogs(void* parameter);
} // namespace Notifications::OrvikWmiEvents
