#include "tests/simulator/driver/ArrivalWindow.h"

#include "simulator/devices/ArrivalProbe.h"
#include "tests/simulator/driver/DeviceFilesTest.h"

#include <dbt.h>

namespace
{
constexpr wchar_t g_className[] = L"ArrivalWindow";
} // namespace

ArrivalWindow::ArrivalWindow()
{
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = &Procedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = g_className;
    RegisterClassW(&windowClass);
    m_hwnd = CreateWindowExW(0, g_className, L"", WS_OVERLAPPEDWINDOW, 0, 0, 10, 10, nullptr, nullptr,
                             windowClass.hInstance, nullptr);
    SetWindowLongPtrW(m_hwnd, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    DEV_BROADCAST_DEVICEINTERFACE_W wanted{};
    wanted.dbcc_size = sizeof(wanted);
    wanted.dbcc_devicetype = DBT_DEVTYP_DEVICEINTERFACE;
    wanted.dbcc_classguid = UsbInterface;
    m_hNotification = RegisterDeviceNotificationW(m_hwnd, &wanted, DEVICE_NOTIFY_WINDOW_HANDLE);
    EXPECT_NE(m_hNotification, nullptr);
    EXPECT_TRUE(Simulator::WaitUntilArrivalsAreTold(Limit));
}

ArrivalWindow::~ArrivalWindow()
{
    UnregisterDeviceNotification(m_hNotification);
    DestroyWindow(m_hwnd);
    UnregisterClassW(g_className, GetModuleHandleW(nullptr));
}

const std::vector<ArrivalWindow::Change>& ArrivalWindow::WaitFor(std::size_t count, std::chrono::milliseconds limit)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    while (m_lstChanges.size() < count && std::chrono::steady_clock::now() < end)
    {
        MSG message{};
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageW(&message);
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
    }
    return m_lstChanges;
}

LRESULT CALLBACK ArrivalWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto* const self = reinterpret_cast<ArrivalWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (message != WM_DEVICECHANGE || self == nullptr)
        return DefWindowProcW(window, message, wParam, lParam);
    const auto* const header = reinterpret_cast<const DEV_BROADCAST_HDR*>(lParam);
    if (header == nullptr || header->dbch_devicetype != DBT_DEVTYP_DEVICEINTERFACE)
        return TRUE;
    self->m_lstChanges.push_back({wParam, reinterpret_cast<const DEV_BROADCAST_DEVICEINTERFACE_W*>(header)->dbcc_name});
    return TRUE;
}
