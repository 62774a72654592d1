#pragma once

#include <windows.h>

// WM_DEVICECHANGE: shows the billboard message when the USB device that arrived is a billboard device and no policy
// silences it. Anything but the arrival of a device interface is ignored. Main thread.
void OnDeviceChange(HWND hwnd, WPARAM event, LPARAM broadcast);
