#pragma once

#include <windows.h>

// Whether this is Windows 10 or later, as WMI tells it: unlike the version functions it also answers the truth to a
// program whose manifest names no such Windows. FALSE when WMI does not answer or memory runs out; never throws.
// Initialises COM for its own length.
[[nodiscard]] BOOL Win10AndHiger();

// Whether this is Windows 8 (6.2) or later.
[[nodiscard]] BOOL IsWindows8OrGreater();
