#include "simulator/toasts/ToastWindow.h"

#include "simulator/toasts/ToastDesktop.h"
#include "simulator/toasts/ToastPainter.h"

#include <windowsx.h>

namespace Simulator
{
namespace
{
constexpr wchar_t g_className[] = L"OrvikSimulatorToast";

void RegisterToastClass(WNDPROC procedure)
{
    WNDCLASSW toastClass{};
    toastClass.lpfnWndProc = procedure;
    toastClass.hInstance = GetModuleHandleW(nullptr);
    toastClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    toastClass.lpszClassName = g_className;
    // Fails harmlessly when it is registered already.
    RegisterClassW(&toastClass);
}
} // namespace

ToastWindow::ToastWindow(unsigned number, const ToastContent& content)
    : m_nNumber(number), m_picture(MeasureToast(content))
{
    DrawToast(content, m_picture.Context(), m_picture.Size());
    RegisterToastClass(&ToastWindow::Procedure);
    const SIZE size = m_picture.Size();
    m_hwnd = CreateWindowExW(WS_EX_TOPMOST | WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE, g_className, content.Title().c_str(),
                             WS_POPUP, 0, 0, size.cx, size.cy, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
    if (m_hwnd != nullptr)
        SetWindowLongPtrW(m_hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

ToastWindow::~ToastWindow()
{
    if (m_hwnd == nullptr)
        return;
    SetWindowLongPtrW(m_hwnd, GWLP_USERDATA, 0);
    DestroyWindow(m_hwnd);
}

void ToastWindow::MoveTo(int left, int top)
{
    SetWindowPos(m_hwnd, HWND_TOPMOST, left, top, 0, 0, SWP_NOSIZE | SWP_NOACTIVATE | SWP_SHOWWINDOW);
    UpdateWindow(m_hwnd);
}

LRESULT CALLBACK ToastWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    const auto* toast = reinterpret_cast<const ToastWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (toast == nullptr)
        return DefWindowProcW(window, message, wParam, lParam);
    switch (message)
    {
    case WM_MOUSEACTIVATE:
        return MA_NOACTIVATE;
    case WM_PAINT:
        toast->Paint();
        return 0;
    case WM_LBUTTONUP:
        toast->Clicked({GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
        return 0;
    default:
        return DefWindowProcW(window, message, wParam, lParam);
    }
}

void ToastWindow::Paint() const
{
    PAINTSTRUCT paint{};
    HDC target = BeginPaint(m_hwnd, &paint);
    BitBlt(target, 0, 0, m_picture.Size().cx, m_picture.Size().cy, m_picture.Context(), 0, 0, SRCCOPY);
    EndPaint(m_hwnd, &paint);
}

void ToastWindow::Clicked(POINT place) const
{
    const RECT cross = CloseCross(m_picture.Size());
    // The time-out may have been faster: then there is nothing to click.
    static_cast<void>(PtInRect(&cross, place) ? ToastDesktop::Instance().Dismiss(m_nNumber)
                                              : ToastDesktop::Instance().Click(m_nNumber));
}
} // namespace Simulator
