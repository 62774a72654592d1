#include "app/dialogs/DialogOpening.h"

#include "app/dialogs/Hyperlink.h"
#include "res/Resource.h"

namespace
{
LPCWSTR IconOf(MessageKind kind)
{
    switch (kind)
    {
    case MessageKind::NotRecovered:
    case MessageKind::RuntimeIntrusion:
    case MessageKind::Warning:
        return IDI_WARNING;
    case MessageKind::PowerOff:
        return IDI_ERROR;
    default:
        return IDI_INFORMATION;
    }
}

void PrepareLink(HWND dialog, const MessageParameters& parameters)
{
    switch (parameters.m_kind)
    {
    case MessageKind::Recovered:
    case MessageKind::NotRecovered:
    case MessageKind::RuntimeIntrusion:
        ConvertStaticToHyperlink(GetDlgItem(dialog, IDC_MORE_INFORMATION), parameters);
        g_nLinkKind = static_cast<int>(parameters.m_kind);
        break;
    case MessageKind::Warning:
        // The link kind stays on purpose: this link repeats what the last one told.
        ConvertStaticToHyperlink(GetDlgItem(dialog, IDC_MORE_INFORMATION), parameters);
        break;
    case MessageKind::PowerOff:
    case MessageKind::Notice:
        SetDlgItemTextW(dialog, IDC_MORE_INFORMATION, L"");
        break;
    default:
        break;
    }
}

// Shared icons belong to the system.
LPARAM LoadSharedIcon(HINSTANCE module, LPCWSTR name, int size)
{
    return reinterpret_cast<LPARAM>(LoadImageW(module, name, IMAGE_ICON, size, size, LR_SHARED | LR_DEFAULTSIZE));
}
} // namespace

void OpenMessage(HWND dialog, const MessageParameters& parameters)
{
    constexpr int iconSize = 32;
    const LPARAM kindIcon = LoadSharedIcon(nullptr, IconOf(parameters.m_kind), iconSize);
    PrepareLink(dialog, parameters);
    SendMessageW(dialog, WM_SETICON, ICON_BIG,
                 LoadSharedIcon(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDI_VERITOR), 0));
    SendDlgItemMessageW(dialog, IDC_KIND_ICON, STM_SETICON, static_cast<WPARAM>(kindIcon), 0);
    SetDlgItemTextW(dialog, IDC_MESSAGE_TEXT, parameters.m_pText);
    SetForegroundWindow(dialog);
}

INT_PTR ColourLink(HDC context, HWND control)
{
    if (GetDlgCtrlID(control) != IDC_MORE_INFORMATION)
        return 0;
    SetTextColor(context, g_linkColour);
    SetBkMode(context, TRANSPARENT);
    return reinterpret_cast<INT_PTR>(GetSysColorBrush(COLOR_BTNFACE));
}
