#pragma once

#include "usbc/AcpiStopEvent.h"

#include <windows.h>

#include <string>

// What the process has once for USB-C.

// The hidden main window, target of the ACPI monitor's message. Written by InitInstance on the main thread, before the
// monitor thread is started.
inline constinit HWND g_hwndMain = nullptr;

// Id of the ACPI monitor thread, 0 when there is none. Written by StartAcpiMonitor on the main thread and by the
// monitor when it ends, each atomically: the monitor may end before its creator knows its id.
inline constinit DWORD g_dwAcpiMonitorThreadId = 0;
// Ends the ACPI monitor thread.
inline constinit AcpiStopEvent g_acpiStopEvent;

// Instance id of the USB device that arrived last; empty when its interface name held none. Main thread only.
inline std::wstring g_strArrivedInstanceId;
// Whether the device that arrived last is a USB billboard device; it keeps its value when the device is not found on a
// hub. Main thread only.
inline constinit bool g_bBillboardDevice = false;
