#pragma once

#include <windows.h>

// Port argument that stands for all that the firmware has to tell: where events come from the ACPI event device, and
// where they come through WMI.
inline constexpr unsigned g_nAcpiPort = 0;
inline constexpr unsigned g_nWmiPort = 255;

// Shows the USB-C messages that the firmware holds, by the event source that the platform uses; nothing without one or
// before the handler exists. Main thread.
void DisplayExistingMessages();

// The monitor's message: a USB-C event of the ACPI event device, unless policy silences it. Main thread.
void OnAcpiUsbCEvent();
