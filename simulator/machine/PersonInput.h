#pragma once

#include <windows.h>

namespace Simulator
{
// What a person's mouse and keyboard make Windows post. Each returns when it is posted; the window may belong to any
// thread.

// The left button goes down and up on the middle of a control.
void ClickOn(HWND control);
// A click on the cross in the title bar.
void ClickOnCross(HWND window);
// The key, to the control of the window that has the keyboard.
void PressEscape(HWND window);
} // namespace Simulator
