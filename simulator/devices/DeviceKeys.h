#pragma once

#include <string>

namespace Simulator
{
// "ACPI\KVL0001\0"
[[nodiscard]] std::wstring AcpiInstanceId();
[[nodiscard]] std::wstring HubInstanceId();
// port: from 1 to PortCount.
[[nodiscard]] std::wstring UsbInstanceId(unsigned long port);

// Writes the keys of the simulated devices into the device tree of the registry, where the system looks when a driver
// registers an interface of a device. Throws std::system_error.
void WriteDeviceKeys();
} // namespace Simulator
