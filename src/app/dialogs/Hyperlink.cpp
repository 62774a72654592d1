#include "app/dialogs/Hyperlink.h"

#include "app/dialogs/DialogText.h"
#include "app/dialogs/OwnerTypes.h"
#include "res/Resource.h"

#include <cstdint>

namespace
{
// Properties of a link; the first one also stands on the dialog.
constexpr const wchar_t* g_originalProc = L"_Hyperlink_Original_Proc_";
constexpr const wchar_t* g_originalFont = L"_Hyperlink_Original_Font_";
constexpr const wchar_t* g_underlineFont = L"_Hyperlink_Underline_Font_";
constexpr const wchar_t* g_fromStatic = L"_Hyperlink_From_Static_";

WNDPROC ProcedureOf(HWND window)
{
    return reinterpret_cast<WNDPROC>(GetWindowLongPtrW(window, GWLP_WNDPROC));
}

WNDPROC RecordedProcedure(HWND window)
{
    return reinterpret_cast<WNDPROC>(GetPropW(window, g_originalProc));
}

// Takes over the text of the support page; the dialog's procedure is recorded and stays in its place, since the dialog
// procedures colour the link.
void TakeSupportAddress(HWND control, HWND parent)
{
    SetWindowTextW(control, DialogText(IDS_VERITOR_SUPPORT_URL).Text());
    const WNDPROC procedure = ProcedureOf(parent);
    if (procedure != &HyperlinkParentProc)
        SetPropW(parent, g_originalProc, reinterpret_cast<HANDLE>(procedure));
}

void PrepareFonts(HWND control)
{
    auto* const font = reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0));
    if (!SetPropW(control, g_originalFont, font))
        return; // there would be no way back to it
    LOGFONTW shape{};
    if (GetObjectW(font, sizeof(shape), &shape) == 0)
        return;
    shape.lfUnderline = TRUE;
    UniqueFont underlined(CreateFontIndirectW(&shape));
    // The control owns it from here on.
    if (underlined && SetPropW(control, g_underlineFont, underlined.get()))
        static_cast<void>(underlined.release());
}

// Without that font the control keeps the one that it has.
void UseFont(HWND control, const wchar_t* property)
{
    if (const HANDLE font = GetPropW(control, property); font != nullptr)
        SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    InvalidateRect(control, nullptr, FALSE);
}

// The capture tells that the pointer is on the link, and brings the movement by which it leaves.
void OnMouseMove(HWND control, LPARAM position)
{
    if (GetCapture() != control)
    {
        UseFont(control, g_underlineFont);
        SetCapture(control);
        return;
    }
    POINT pointer{static_cast<short>(LOWORD(position)), static_cast<short>(HIWORD(position))};
    ClientToScreen(control, &pointer);
    RECT area{};
    GetWindowRect(control, &area);
    if (PtInRect(&area, pointer))
        return;
    UseFont(control, g_originalFont);
    ReleaseCapture();
}

// A link never opens a browser, whatever address it reads as.
void OnClick()
{
    UINT messageId = 0;
    switch (g_nLinkKind)
    {
    case static_cast<int>(MessageKind::Recovered):
        messageId = IDS_VERITOR_BOOT_IMAGE_REPAIRED;
        break;
    case static_cast<int>(MessageKind::NotRecovered):
        messageId = IDS_VERITOR_NOT_RECOVERED;
        break;
    case static_cast<int>(MessageKind::RuntimeIntrusion):
        messageId = IDS_VERITOR_RUNTIME_INTRUSION;
        break;
    default:
        return;
    }
    MessageBoxW(nullptr, DialogText(messageId).Text(), L"", MB_OK);
}

void ShowHand()
{
    HCURSOR cursor = LoadCursorW(nullptr, IDC_HAND);
    if (cursor == nullptr)
        cursor = LoadCursorW(nullptr, IDC_ARROW);
    SetCursor(cursor);
}

// Back to a plain static control, whose own procedure sees the rest of its end.
void OnDestroy(HWND control, WNDPROC original)
{
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(GetPropW(control, g_originalFont)), FALSE);
    const UniqueFont underlined(static_cast<HFONT>(RemovePropW(control, g_underlineFont)));
    RemovePropW(control, g_originalFont);
    RemovePropW(control, g_fromStatic);
    RemovePropW(control, g_originalProc);
    SetWindowLongPtrW(control, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(original));
}
} // namespace

int ConvertStaticToHyperlink(HWND control, const MessageParameters&)
{
    if (control == nullptr)
        return 1;
    if (const HWND parent = GetParent(control); parent != nullptr)
        TakeSupportAddress(control, parent);
    // Without it a static control is transparent to the mouse.
    SetWindowLongPtrW(control, GWL_STYLE, GetWindowLongPtrW(control, GWL_STYLE) | SS_NOTIFY);
    if (!SetPropW(control, g_originalProc, reinterpret_cast<HANDLE>(ProcedureOf(control))))
        return 1; // a link that cannot find its way back stays a text
    SetWindowLongPtrW(control, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&HyperlinkProc));
    PrepareFonts(control);
    SetPropW(control, g_fromStatic, reinterpret_cast<HANDLE>(ULONG_PTR{1}));
    return 1;
}

LRESULT CALLBACK HyperlinkProc(HWND control, UINT message, WPARAM wParam, LPARAM lParam)
{
    const WNDPROC original = RecordedProcedure(control);
    switch (message)
    {
    case WM_SETCURSOR:
        ShowHand();
        return TRUE;
    case WM_MOUSEMOVE:
        OnMouseMove(control, lParam);
        break;
    case WM_LBUTTONDOWN:
        OnClick();
        break;
    case WM_DESTROY:
        OnDestroy(control, original);
        break;
    default:
        break;
    }
    return CallWindowProcW(original, control, message, wParam, lParam);
}

LRESULT CALLBACK HyperlinkParentProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    const WNDPROC original = RecordedProcedure(dialog);
    if (message == WM_CTLCOLORSTATIC && GetPropW(reinterpret_cast<HWND>(lParam), g_fromStatic) != nullptr)
    {
        const LRESULT brush = CallWindowProcW(original, dialog, message, wParam, lParam);
        SetTextColor(reinterpret_cast<HDC>(wParam), g_linkColour);
        return brush;
    }
    if (message == WM_DESTROY)
    {
        // Only the lower half of the address, as a signed number: what this procedure would put back has always been
        // cut to it.
        const auto lowHalf = static_cast<std::int32_t>(reinterpret_cast<LONG_PTR>(original));
        SetWindowLongPtrW(dialog, GWLP_WNDPROC, lowHalf);
        RemovePropW(dialog, g_originalProc);
    }
    return CallWindowProcW(original, dialog, message, wParam, lParam);
}
