#pragma once

#include <string>

namespace Simulator
{
// What this Windows says it is, whatever the program's manifest declares: 601 for Windows 7, 603 for 8.1, 1000 for 10.
[[nodiscard]] int WindowsVersion();
// "Windows 7", "Windows 8", "Windows 8.1", "Windows 10"
[[nodiscard]] std::string WindowsName();
} // namespace Simulator
