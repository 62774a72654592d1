#pragma once

#include <windows.h>

// The least that a program with a hidden window does: registers a class of the given name, creates the window, hides it
// and pumps messages until WM_DESTROY. The exit code of WM_QUIT; 1 when there is no window.
int RunHiddenWindow(HINSTANCE instance, const wchar_t* className);
