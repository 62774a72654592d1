#pragma once

#include <windows.h>

// Posted to the main window when the firmware reports that the USB-C status changed; both parameters are 0.
inline constexpr UINT WM_NOTIFY_ACPI_USB_C = 0x4FE;
// The event device's answer that means so; every other answer is logged only.
inline constexpr BYTE USB_TYPEC_ACPI_EVENT_ID = 0xA0;

// Body of the ACPI monitor thread: keeps one request pending on the event device and posts WM_NOTIFY_ACPI_USB_C for
// each USB-C answer, until it is told to stop or the device fails. Its parameter is not used. The result is the last
// one of CIoctlWrapper::ListenForEvent, 0 when the device could not be opened or there was no stop event. Nothing is
// raised.
DWORD WINAPI ACPIUSBCMonitor(void* parameter);

// Starts the monitor thread, which finds the main window and says when it ends by itself, and keeps its id; without a
// thread the id is 0. Main thread, once.
void StartAcpiMonitor() noexcept;

// Tells the monitor thread to end; without one nothing happens. Any thread; does not wait.
void SignalAcpiMonitorStop() noexcept;
