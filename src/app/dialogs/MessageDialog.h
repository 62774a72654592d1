#pragma once

#include "app/dialogs/MessageKind.h"

#include <windows.h>

// Dialog 102: a message of the firmware with its icon and, for some kinds, a link. Opened with a MessageParameters;
// without one it shows what the template has. Every command and its close button end it with 0.
INT_PTR CALLBACK MessageDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

// Shows a string of the module in dialog 102, above all windows and without an owner, until the person closes it.
// Without the string the message is empty. Any thread; it pumps the thread's messages meanwhile.
void ShowMessageDialog(UINT stringId, MessageKind kind);
