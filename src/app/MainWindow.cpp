#include "app/MainWindow.h"

#include "app/ProcessInstances.h"
#include "res/Resource.h"
#include "shared/TraceScope.h"

#include <wtsapi32.h>

using Orvik::Shared::Log;
namespace Level = Orvik::Shared::Level;

namespace
{
void OnDestroy()
{
    // Both calls are made whether or not the window was registered.
    UnregisterDeviceNotification(g_hUsbDeviceNotification);
    UnregisterDeviceNotification(g_hUsbHubNotification);
    PostQuitMessage(0);
}
} // namespace

void RegisterMainWindowClass(HINSTANCE instance)
{
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof(windowClass);
    windowClass.style = CS_HREDRAW | CS_VREDRAW;
    windowClass.lpfnWndProc = WndProc;
    windowClass.hInstance = instance;
    windowClass.hIcon = LoadIconW(instance, MAKEINTRESOURCEW(IDI_ORVIKNOTIFICATIONS));
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
    windowClass.lpszMenuName = MAKEINTRESOURCEW(IDR_ORVIKNOTIFICATIONS);
    windowClass.lpszClassName = g_szWindowClass;
    windowClass.hIconSm = LoadIconW(instance, MAKEINTRESOURCEW(IDI_ORVIKNOTIFICATIONS));
    RegisterClassExW(&windowClass);
}

BOOL InitInstance(HINSTANCE instance)
{
    Log(Level::TraceIn, ORVIK_FUNCTION, L"");
    g_hInstance = instance;
    GetUserDefaultLCID();

    const HWND hwnd = CreateWindowExW(0, g_szWindowClass, g_szTitle, WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, 0,
                                      CW_USEDEFAULT, 0, nullptr, nullptr, instance, nullptr);
    // Only the successful way out is traced, so no scope object.
    if (hwnd == nullptr)
        return FALSE;

    WTSRegisterSessionNotification(hwnd, NOTIFY_FOR_THIS_SESSION);
    g_hwndMain = hwnd;
    ShowWindow(hwnd, SW_HIDE);
    UpdateWindow(hwnd);
    Log(Level::TraceOut, ORVIK_FUNCTION, L"%d", TRUE);
    return TRUE;
}

LRESULT CALLBACK WndProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_CREATE:
        Log(Level::Verbose, ORVIK_FUNCTION, L"WM_CREATE");
        return 0;
    case WM_DESTROY:
        OnDestroy();
        return 0;
    default:
        return DefWindowProcW(hwnd, message, wParam, lParam);
    }
}
