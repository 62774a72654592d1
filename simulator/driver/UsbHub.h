#pragma once

#include "simulator/driver/Device.h"
#include "simulator/driver/DeviceControl.h"

// A USB hub and the devices at its ports. A device arrives and goes as the system sees it, and the hub tells of it.
namespace Simulator::Devices
{
[[nodiscard]] Device& UsbHub();
void InitializeUsbHub();
void ResetUsbHub();

// The requests of the control device; DeviceControl.h says what each does.
NTSTATUS PlugDevice(const Plug& plug);
NTSTATUS UnplugDevice(ULONG port);
NTSTATUS SetPortAnswers(const PortAnswers& answers);
NTSTATUS SetReportedPorts(ULONG count);
// Fills in the counters of this device.
void CountHub(Counters& counters);
} // namespace Simulator::Devices
