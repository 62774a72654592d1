#include "simulator/devices/ArrivalProbe.h"

#include "simulator/devices/DeviceDriver.h"

#include <dbt.h>

#include <thread>

namespace Simulator
{
namespace
{
using Clock = std::chrono::steady_clock;

constexpr wchar_t g_className[] = L"OrvikArrivalProbe";
constexpr DWORD g_dwStep = 20; // milliseconds

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message != WM_DEVICECHANGE || wParam != DBT_DEVICEARRIVAL)
        return DefWindowProcW(window, message, wParam, lParam);
    SetWindowLongPtrW(window, GWLP_USERDATA, TRUE);
    return TRUE;
}

bool WaitForProbe(HWND window, DeviceDriver& driver, Clock::time_point end)
{
    do
    {
        if (driver.ProbeArrivals() != ERROR_SUCCESS)
            return false;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, g_dwStep, QS_ALLINPUT);
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageW(&message);
        if (GetWindowLongPtrW(window, GWLP_USERDATA) != 0)
            return true;
    } while (Clock::now() < end);
    return false;
}

bool Probe(Clock::time_point end)
{
    DeviceDriver driver;
    if (!driver)
        return false;
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = &Procedure;
    windowClass.lpszClassName = g_className;
    RegisterClassW(&windowClass);
    const HWND window = CreateWindowExW(0, g_className, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    DEV_BROADCAST_DEVICEINTERFACE_W wanted{};
    wanted.dbcc_size = sizeof(wanted);
    wanted.dbcc_devicetype = DBT_DEVTYP_DEVICEINTERFACE;
    wanted.dbcc_classguid = Devices::ProbeInterface;
    const HDEVNOTIFY notification = RegisterDeviceNotificationW(window, &wanted, DEVICE_NOTIFY_WINDOW_HANDLE);
    const bool isTold = WaitForProbe(window, driver, end);
    UnregisterDeviceNotification(notification);
    DestroyWindow(window);
    return isTold;
}
} // namespace

bool WaitUntilArrivalsAreTold(std::chrono::milliseconds limit)
{
    bool isTold = false;
    std::thread([&] { isTold = Probe(Clock::now() + limit); }).join();
    return isTold;
}
} // namespace Simulator
