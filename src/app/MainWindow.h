#pragma once

#include <windows.h>

// Registers the class of the hidden main window under the loaded class name. Main thread.
void RegisterMainWindowClass(HINSTANCE instance);

// Keeps the instance handle, creates the hidden main window of the registered class and asks for the notifications of
// this session. True when the window was created. Main thread.
[[nodiscard]] BOOL InitInstance(HINSTANCE instance);

// Procedure of the main window. Main thread.
LRESULT CALLBACK WndProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
