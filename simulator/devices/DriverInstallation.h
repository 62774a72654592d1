#pragma once

#include <filesystem>

namespace Simulator
{
inline constexpr wchar_t DriverFileName[] = L"orvik_devices.sys";

// Makes the driver a service of this Windows and starts it; where it runs already it stays as it is. For Wine: another
// Windows refuses a driver that nobody signed. Throws std::system_error.
void InstallDriver(const std::filesystem::path& file);

// Starts the driver when it is installed and does not run. False when it is not installed. Throws std::system_error.
bool StartInstalledDriver();
} // namespace Simulator
