#include "app/dialogs/PrivacyPanelDialog.h"

#include "app/dialogs/DialogOpening.h"
#include "app/dialogs/DialogText.h"
#include "app/dialogs/PrivacyNotice.h"
#include "res/Resource.h"

namespace
{
void FollowCheckBox(HWND dialog)
{
    if (SendDlgItemMessageW(dialog, IDC_DO_NOT_DISPLAY, BM_GETCHECK, 0, 0) == BST_CHECKED)
        SilencePrivacyNotice();
    else
        ReactivatePrivacyNotice();
}
} // namespace

INT_PTR CALLBACK PrivacyPanelDialogProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_INITDIALOG:
        if (lParam == 0)
            return TRUE;
        SetDlgItemTextW(dialog, IDC_DO_NOT_DISPLAY, DialogText(IDS_DO_NOT_DISPLAY_AGAIN).Text());
        OpenMessage(dialog, *reinterpret_cast<const MessageParameters*>(lParam));
        return TRUE;
    case WM_CLOSE:
    case WM_COMMAND:
        FollowCheckBox(dialog);
        // A click on the check box is a command too: the dialog stays.
        if (wParam != 0 && (message != WM_COMMAND || wParam != IDOK))
            return FALSE;
        EndDialog(dialog, 0);
        return TRUE;
    case WM_CTLCOLORSTATIC:
        return ColourLink(reinterpret_cast<HDC>(wParam), reinterpret_cast<HWND>(lParam));
    default:
        return FALSE;
    }
}

void ShowPrivacyPanelDialog(UINT stringId, MessageKind kind)
{
    const DialogText text(stringId);
    const MessageParameters parameters{text.Text(), kind};
    DialogBoxParamW(nullptr, MAKEINTRESOURCEW(IDD_PRIVACY_PANEL), nullptr, &PrivacyPanelDialogProc,
                    reinterpret_cast<LPARAM>(&parameters));
}
