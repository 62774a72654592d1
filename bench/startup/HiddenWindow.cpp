#include "bench/startup/HiddenWindow.h"

namespace
{
LRESULT CALLBACK WindowProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message != WM_DESTROY)
        return DefWindowProcW(hwnd, message, wParam, lParam);
    PostQuitMessage(0);
    return 0;
}
} // namespace

int RunHiddenWindow(HINSTANCE instance, const wchar_t* className)
{
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof(windowClass);
    windowClass.lpfnWndProc = WindowProcedure;
    windowClass.hInstance = instance;
    windowClass.lpszClassName = className;
    RegisterClassExW(&windowClass);
    const HWND hwnd = CreateWindowExW(0, className, L"", WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, 0, CW_USEDEFAULT, 0,
                                      nullptr, nullptr, instance, nullptr);
    if (hwnd == nullptr)
        return 1;
    ShowWindow(hwnd, SW_HIDE);

    MSG message{};
    while (GetMessageW(&message, nullptr, 0, 0) > 0)
    {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return static_cast<int>(message.wParam);
}
