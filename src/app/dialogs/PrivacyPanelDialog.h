#pragma once

#include "app/dialogs/MessageKind.h"

#include <windows.h>

// Dialog 142: a message with a check box that keeps it from being shown again. Opened with a MessageParameters; without
// one it shows what the template has. At every command, a click of the check box among them, and at its close button
// the marker file follows the check box. OK and the close button end it with 0; ESC does not.
INT_PTR CALLBACK PrivacyPanelDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);

// Shows a string of the module in dialog 142, as ShowMessageDialog does in the other one.
void ShowPrivacyPanelDialog(UINT stringId, MessageKind kind);
