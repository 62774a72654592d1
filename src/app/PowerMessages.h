#pragma once

#include <windows.h>

// WM_POWERBROADCAST: the first notification of a wake-up shows what happened during sleep, after a second in which the
// firmware settles; the further ones of the same wake-up do nothing. event: the message's wParam. Main thread.
void OnPowerBroadcast(HWND hwnd, WPARAM event);
