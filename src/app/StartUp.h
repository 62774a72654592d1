#pragma once

#include "shared/OwnerTypes.h"

#include <windows.h>

// The steps of start-up and of the message loop, in the order in which wWinMain takes them. Main thread.

// Loads the application title and the window class name from the string table.
void LoadProcessNames(HINSTANCE instance);

// Takes the session's mutex under the window class name. On return GetLastError tells whether it existed before.
[[nodiscard]] Orvik::Shared::UniqueHandle TakeSessionMutex();

// Pumps messages until WM_QUIT and returns its exit code.
[[nodiscard]] int RunMessageLoop(HACCEL accelerators);
