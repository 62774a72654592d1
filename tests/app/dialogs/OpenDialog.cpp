#include "tests/app/dialogs/OpenDialog.h"

#include "res/Resource.h"

#include <gtest/gtest.h>

namespace Tests
{
namespace
{
constexpr DWORD g_patience = 100000; // milliseconds

// Brings Run's function to the dialog's thread.
UINT RunMessage()
{
    static const UINT message = RegisterWindowMessageW(L"Orvik.Tests.RunOnDialogThread");
    return message;
}

// Asks the dialog's thread for a click on the control of that id.
UINT ClickMessage()
{
    static const UINT message = RegisterWindowMessageW(L"Orvik.Tests.ClickOnDialogThread");
    return message;
}

LPARAM MiddleOf(HWND control)
{
    RECT area{};
    GetClientRect(control, &area);
    return MAKELPARAM(area.right / 2, area.bottom / 2);
}
} // namespace

OpenDialog::OpenDialog(std::function<void()> show)
    : m_hOpenOrEnded(CreateEventW(nullptr, TRUE, FALSE, nullptr)),
      m_hEnded(CreateEventW(nullptr, TRUE, FALSE, nullptr)),
      m_thread([this, show = std::move(show)] { RunThread(show); })
{
    EXPECT_EQ(WaitForSingleObject(m_hOpenOrEnded.get(), g_patience), WAIT_OBJECT_0);
    WaitUntilShown();
}

OpenDialog::OpenDialog(UINT templateId, DLGPROC procedure, const MessageParameters* parameters)
    : OpenDialog(
          [=, this]
          {
              m_nResult = DialogBoxParamW(nullptr, MAKEINTRESOURCEW(templateId), nullptr, procedure,
                                          reinterpret_cast<LPARAM>(parameters));
          })
{
}

OpenDialog::~OpenDialog()
{
    if (m_thread.joinable())
        Close();
}

std::wstring OpenDialog::Text(int id) const
{
    wchar_t text[4096]{};
    GetDlgItemTextW(m_hwnd, id, text, static_cast<int>(std::size(text)));
    return text;
}

HICON OpenDialog::KindIcon() const
{
    return reinterpret_cast<HICON>(SendDlgItemMessageW(m_hwnd, IDC_KIND_ICON, STM_GETICON, 0, 0));
}

void OpenDialog::Run(const std::function<void()>& action) const
{
    SendMessageW(m_hwnd, RunMessage(), 0, reinterpret_cast<LPARAM>(&action));
}

void OpenDialog::Press(WPARAM key) const
{
    PostMessageW(m_hwnd, WM_KEYDOWN, key, 1);
    PostMessageW(m_hwnd, WM_KEYUP, key, static_cast<LPARAM>(0xC0000001));
}

void OpenDialog::Click(int id) const
{
    SendNotifyMessageW(m_hwnd, ClickMessage(), static_cast<WPARAM>(id), 0);
}

bool OpenDialog::HasEnded() const
{
    return WaitForSingleObject(m_hEnded.get(), g_patience) == WAIT_OBJECT_0;
}

void OpenDialog::Close()
{
    if (m_hwnd != nullptr)
        PostMessageW(m_hwnd, WM_CLOSE, 0, 0);
    m_thread.join();
}

LRESULT CALLBACK OpenDialog::OnCall(int code, WPARAM wParam, LPARAM lParam)
{
    const auto& call = *reinterpret_cast<const CWPSTRUCT*>(lParam);
    if (call.message == RunMessage() && call.hwnd == t_pCurrent->m_hwnd)
        (*reinterpret_cast<const std::function<void()>*>(call.lParam))();
    if (call.message == ClickMessage() && call.hwnd == t_pCurrent->m_hwnd)
    {
        // Both in one go: between two messages another program on the display may take the pointer away.
        const HWND control = GetDlgItem(call.hwnd, static_cast<int>(call.wParam));
        SendMessageW(control, WM_LBUTTONDOWN, MK_LBUTTON, MiddleOf(control));
        SendMessageW(control, WM_LBUTTONUP, 0, MiddleOf(control));
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

LRESULT CALLBACK OpenDialog::OnReturn(int code, WPARAM wParam, LPARAM lParam)
{
    const auto& call = *reinterpret_cast<const CWPRETSTRUCT*>(lParam);
    if (call.message == WM_INITDIALOG && t_pCurrent->m_hwnd == nullptr)
    {
        t_pCurrent->m_hwnd = call.hwnd;
        SetEvent(t_pCurrent->m_hOpenOrEnded.get());
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

// A click that comes before the dialog is shown loses the pointer to its activation.
void OpenDialog::WaitUntilShown() const
{
    const ULONGLONG end = GetTickCount64() + g_patience;
    while (!IsWindowVisible(m_hwnd) && WaitForSingleObject(m_hEnded.get(), 1) == WAIT_TIMEOUT)
        ASSERT_LT(GetTickCount64(), end);
    // Answered between two messages: the call that shows the dialog has returned.
    SendMessageW(m_hwnd, WM_NULL, 0, 0);
}

void OpenDialog::RunThread(const std::function<void()>& show)
{
    t_pCurrent = this;
    const HHOOK calls = SetWindowsHookExW(WH_CALLWNDPROC, &OnCall, nullptr, GetCurrentThreadId());
    const HHOOK returns = SetWindowsHookExW(WH_CALLWNDPROCRET, &OnReturn, nullptr, GetCurrentThreadId());
    show();
    UnhookWindowsHookEx(returns);
    UnhookWindowsHookEx(calls);
    SetEvent(m_hEnded.get());
    SetEvent(m_hOpenOrEnded.get());
}
} // namespace Tests
