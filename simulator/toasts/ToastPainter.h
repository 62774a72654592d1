#pragma once

#include "simulator/toasts/ToastContent.h"

#include <windows.h>

namespace Simulator
{
// What a toast looks like: the dark card of Windows 10, 364 pixels wide and as high as its texts need, with the image,
// a bold title, the other lines, the application's name and a cross to close it.

[[nodiscard]] SIZE MeasureToast(const ToastContent& content);
void DrawToast(const ToastContent& content, HDC target, SIZE size);
// Where a click closes a toast of that size.
[[nodiscard]] RECT CloseCross(SIZE size);
} // namespace Simulator
