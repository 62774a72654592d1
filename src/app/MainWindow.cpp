#include "app/MainWindow.h"

#include "app/DeviceMessages.h"
#include "app/MessageLog.h"
#include "app/PowerMessages.h"
#include "app/ProcessInstances.h"
#include "app/SessionMessages.h"
#include "app/TakeStep.h"
#include "app/UsbCMessages.h"
#include "res/Resource.h"
#include "shared/TraceScope.h"
#include "usbc/AcpiUsbCMonitor.h"

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
    SignalAcpiMonitorStop();
    PostQuitMessage(0);
}

// False for a message that is not the agent's.
bool HandleMessage(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case WM_CREATE:
        LogMessage(L"WM_CREATE");
        return true;
    case WM_DESTROY:
        OnDestroy();
        return true;
    case WM_POWERBROADCAST:
        OnPowerBroadcast(hwnd, wParam);
        return true;
    case WM_DEVICECHANGE:
        OnDeviceChange(hwnd, wParam, lParam);
        return true;
    case WM_WTSSESSION_CHANGE:
        OnSessionChange(wParam);
        return true;
    case WM_NOTIFY_ACPI_USB_C:
        OnAcpiUsbCEvent();
        return true;
    case WM_COMMAND:
    // Kept from DefWindowProcW on purpose: nothing of the window is ever drawn.
    case WM_DWMNCRENDERINGCHANGED:
    case WM_APP + 2:
        return true;
    default:
        return false;
    }
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
    // A message in which memory runs out counts as handled.
    bool isHandled = true;
    TakeStep(ORVIK_FUNCTION, [&] { isHandled = HandleMessage(hwnd, message, wParam, lParam); });
    return isHandled ? 0 : DefWindowProcW(hwnd, message, wParam, lParam);
}
