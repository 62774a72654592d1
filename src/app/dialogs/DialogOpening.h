#pragma once

#include "app/dialogs/MessageKind.h"

#include <windows.h>

// What both message dialogs do in the same way. The dialog's thread.

// WM_INITDIALOG: the icon and the link of the kind, the program's icon, the text. What fails is left out. Brings the
// dialog to the front.
void OpenMessage(HWND dialog, const MessageParameters& parameters);

// WM_CTLCOLORSTATIC: the brush behind the control of the link, whose text gets the colour of links; 0 for every other
// control, which the system paints.
[[nodiscard]] INT_PTR ColourLink(HDC context, HWND control);
