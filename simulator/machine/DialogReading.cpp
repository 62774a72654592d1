#include "simulator/machine/DialogReading.h"

#include "res/Resource.h"
#include "simulator/doubles/JournalText.h"

#include <string>
#include <string_view>

namespace Simulator
{
namespace
{
constexpr int g_boxText = 0xFFFF; // the control of a message box that holds its message
constexpr wchar_t g_linkMark[] = L"_Hyperlink_From_Static_";

std::wstring ClassOf(HWND window)
{
    wchar_t name[64] = {};
    GetClassNameW(window, name, ARRAYSIZE(name));
    return name;
}

// Also that of another thread's window.
std::wstring TextOf(HWND window)
{
    std::wstring text(static_cast<std::size_t>(SendMessageW(window, WM_GETTEXTLENGTH, 0, 0)) + 1, L'\0');
    text.resize(
        static_cast<std::size_t>(SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
    return text;
}

bool HasType(HWND window, std::wstring_view className, LONG_PTR types, LONG_PTR type)
{
    return (GetWindowLongPtrW(window, GWL_STYLE) & types) == type && ClassOf(window) == className;
}

// Next to the last one; null after the last.
HWND NextControl(HWND dialog, HWND last)
{
    return last == nullptr ? GetWindow(dialog, GW_CHILD) : GetWindow(last, GW_HWNDNEXT);
}

template <class Test>
HWND FindControl(HWND dialog, Test test)
{
    HWND control = NextControl(dialog, nullptr);
    while (control != nullptr && !test(control))
        control = NextControl(dialog, control);
    return control;
}

// The style itself: no control of a dialog that is not yet shown can be seen.
bool IsToBeSeen(HWND control)
{
    return (GetWindowLongPtrW(control, GWL_STYLE) & WS_VISIBLE) != 0;
}

HICON SystemIcon(LPCWSTR name)
{
    constexpr int size = 32;
    return static_cast<HICON>(LoadImageW(nullptr, name, IMAGE_ICON, size, size, LR_SHARED | LR_DEFAULTSIZE));
}

std::string IconOf(HWND dialog)
{
    const HWND control =
        FindControl(dialog, [](HWND candidate) { return HasType(candidate, L"Static", SS_TYPEMASK, SS_ICON); });
    auto* const icon = control == nullptr ? nullptr : reinterpret_cast<HICON>(SendMessageW(control, STM_GETICON, 0, 0));
    if (icon == nullptr)
        return "none";
    if (icon == SystemIcon(IDI_INFORMATION))
        return "information";
    if (icon == SystemIcon(IDI_WARNING))
        return "warning";
    return icon == SystemIcon(IDI_ERROR) ? "error" : "unknown";
}

nlohmann::json TextOrNull(HWND control)
{
    return control == nullptr ? nlohmann::json() : nlohmann::json(Narrow(TextOf(control)));
}

nlohmann::json CheckBoxOf(HWND dialog)
{
    const HWND control = FindCheckBox(dialog);
    if (control == nullptr)
        return {};
    return {{"text", Narrow(TextOf(control))}, {"checked", SendMessageW(control, BM_GETCHECK, 0, 0) == BST_CHECKED}};
}

nlohmann::json ControlsOf(HWND dialog)
{
    nlohmann::json controls = nlohmann::json::array();
    for (HWND control = NextControl(dialog, nullptr); control != nullptr; control = NextControl(dialog, control))
    {
        if (IsToBeSeen(control))
            controls.push_back({{"id", GetDlgCtrlID(control)},
                                {"class", Narrow(ClassOf(control))},
                                {"text", Narrow(TextOf(control))}});
    }
    return controls;
}
} // namespace

bool IsDialog(HWND window)
{
    return GetAncestor(window, GA_ROOT) == window && ClassOf(window) == L"#32770";
}

nlohmann::json DescribeDialog(HWND dialog)
{
    const HWND message = GetDlgItem(dialog, IDC_MESSAGE_TEXT);
    const HWND boxMessage = message == nullptr ? GetDlgItem(dialog, g_boxText) : nullptr;
    return {{"title", Narrow(TextOf(dialog))},
            {"text", TextOrNull(message != nullptr ? message : boxMessage)},
            {"box", boxMessage != nullptr},
            {"icon", IconOf(dialog)},
            {"link", TextOrNull(FindLink(dialog))},
            {"check-box", CheckBoxOf(dialog)},
            {"controls", ControlsOf(dialog)},
            {"topmost", (GetWindowLongPtrW(dialog, GWL_EXSTYLE) & WS_EX_TOPMOST) != 0},
            {"foreground", GetForegroundWindow() == dialog}};
}

// The only button of a message box closes it like ESC does, and has the number of that.
HWND FindOkButton(HWND dialog)
{
    const HWND button = GetDlgItem(dialog, IDOK);
    return button != nullptr && IsToBeSeen(button) ? button : GetDlgItem(dialog, IDCANCEL);
}

HWND FindCheckBox(HWND dialog)
{
    return FindControl(dialog, [](HWND control) { return HasType(control, L"Button", BS_TYPEMASK, BS_AUTOCHECKBOX); });
}

HWND FindLink(HWND dialog)
{
    return FindControl(dialog, [](HWND control) { return GetPropW(control, g_linkMark) != nullptr; });
}
} // namespace Simulator
