#include "app/dialogs/MessageDialog.h"

#include "app/dialogs/DialogOpening.h"
#include "app/dialogs/DialogText.h"
#include "res/Resource.h"

INT_PTR CALLBACK MessageDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_INITDIALOG:
        if (lParam != 0)
            OpenMessage(dialog, *reinterpret_cast<const MessageParameters*>(lParam));
        return TRUE;
    case WM_CLOSE:
    case WM_COMMAND:
        EndDialog(dialog, 0);
        return TRUE;
    case WM_CTLCOLORSTATIC:
        return ColourLink(reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam));
    default:
        return FALSE;
    }
}

void ShowMessageDialog(UINT stringId, MessageKind kind)
{
    const DialogText text(stringId);
    const MessageParameters parameters{text.Text(), kind};
    DialogBoxParamW(nullptr, MAKEINTRESOURCEW(IDD_MESSAGE), nullptr, &MessageDialogProc,
                    reinterpret_cast<LPARAM>(&parameters));
}
