#pragma once

#include "simulator/driver/Device.h"

// The device by which a program lets things happen to the others; DeviceControl.h has its requests.
namespace Simulator::Devices
{
[[nodiscard]] Device& ControlDevice();

// The name under which programs open it, and its end.
NTSTATUS NameControlDevice();
void RemoveControlDeviceName();
} // namespace Simulator::Devices
