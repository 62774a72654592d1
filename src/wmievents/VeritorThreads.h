#pragma once

#include <windows.h>

// The threads of the firmware's protection. Each lives for one request and is waited for by nobody; no exception leaves
// it.
namespace Notifications::OrvikWmiEvents
{
// Starts a thread with that routine and that number as its parameter. A failure is logged under the caller's name.
void StartThread(const char* functionName, LPTHREAD_START_ROUTINE routine, int parameter) noexcept;

// One copy of the audit log under the logging lock. parameter: 1 waits two minutes first. Exit code: result of the
// copy.
DWORD WINAPI ThreadProcVeritorLogging(void* parameter);

// What one Veritor event asks for. parameter: the event identifier. Some show a dialog, for which the thread waits;
// some copy the audit log.
DWORD WINAPI ThreadProcVeritorEvent(void* parameter);
} // namespace Notifications::OrvikWmiEvents
