#pragma once

#include "simulator/driver/Device.h"
#include "simulator/driver/DeviceControl.h"

// The firmware's Kavel ACPI event device: a request stays pending until the firmware has an event, whose byte is the
// answer. Events that nobody waits for are kept in order.
namespace Simulator::Devices
{
[[nodiscard]] Device& AcpiDevice();
void InitializeAcpiDevice();
void ResetAcpiDevice();

// The requests of the control device; DeviceControl.h says what each does.
NTSTATUS CompleteAcpiRequest(const AcpiEvent& event);
NTSTATUS FailAcpiRequest(NTSTATUS status);
void RefuseAcpiRequests(NTSTATUS status);
NTSTATUS SetAcpiPresence(bool present);
NTSTATUS WaitForAcpiRequest(const ControlRequest& request);
// The client of that file waits for requests no longer.
void StopWaitingForAcpiRequest(const FILE_OBJECT* file);
// Fills in the counters of this device.
void CountAcpi(Counters& counters);
} // namespace Simulator::Devices
