#pragma once

#include "app/dialogs/MessageKind.h"

#include <windows.h>

// Text of links.
inline constexpr COLORREF g_linkColour = 0xC00000; // blue, in the order of Windows

// Makes a static control of a dialog a link that shows a message when it is clicked: it reads as the support page's
// address, is underlined while the pointer is on it and has the hand for a pointer. Always 1. Without a control nothing
// happens. The dialog's thread.
int ConvertStaticToHyperlink(HWND control, const MessageParameters& parameters);

// Window procedure of a link.
LRESULT CALLBACK HyperlinkProc(HWND control, UINT message, WPARAM wParam, LPARAM lParam);

// Window procedure for a dialog that colours its links by itself. No dialog has it: the dialog procedures colour them.
LRESULT CALLBACK HyperlinkParentProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam);
