#pragma once

#include "simulator/driver/Device.h"

namespace Simulator::Devices
{
[[nodiscard]] Device& ProbeDevice();

// The request of the control device.
NTSTATUS ProbeArrivals();
} // namespace Simulator::Devices
