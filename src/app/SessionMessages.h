#pragma once

#include <windows.h>

// WM_WTSSESSION_CHANGE: log-on and unlock show what happened while the user was away; every other change is only
// logged. change: the message's wParam. Main thread.
void OnSessionChange(WPARAM change);
