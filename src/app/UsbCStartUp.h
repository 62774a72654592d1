#pragma once

#include <string>

// The steps of start-up that have to do with USB-C, in the order in which wWinMain takes them. functionName: under
// which they log. Main thread.

// Makes the notifications handler, unless there is no memory, initialises COM for the main thread, lets the handler ask
// the platform and only then keeps it as the process's one. imagePath: what toasts show by default.
void CreateNotificationsHandler(const char* functionName, const std::wstring& imagePath);

// Starts the source of USB-C events that the platform uses and shows what the firmware already holds. Where events come
// through WMI, before Windows 10 also asks for arrivals of USB devices. Nothing without a source. iconPath: as the
// hub's registrations have it.
void StartUsbCEvents(const char* functionName, const std::wstring& iconPath);
