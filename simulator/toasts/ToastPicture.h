#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace Simulator
{
// Keeps GDI+ running in this process from the first call on.
[[nodiscard]] bool StartGdiPlus();

// Copies what the windows show, frames included, from their own device contexts, into one PNG file: each at its place
// on the screen, the desktop's colour between them and margin pixels around them. Belongs on the thread of the windows.
[[nodiscard]] HRESULT SavePicture(const std::vector<HWND>& windows, int margin, const std::wstring& path);
} // namespace Simulator
