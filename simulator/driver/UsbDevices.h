#pragma once

#include "simulator/driver/Device.h"

namespace Simulator::Devices
{
// The place for a device at a port, from 1 to PortCount.
[[nodiscard]] Device& UsbDevice(ULONG port);
} // namespace Simulator::Devices
