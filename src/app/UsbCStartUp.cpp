#include "app/UsbCStartUp.h"

#include "app/ProcessInstances.h"
#include "app/system/OsVersion.h"
#include "app/TakeStep.h"
#include "app/UsbCMessages.h"
#include "usbc/AcpiUsbCMonitor.h"
#include "usbc/UsbInterfaceClasses.h"

#include <windows.h>

#include <dbt.h>
#include <objbase.h>

#include <memory>
#include <utility>

using Orvik::Shared::Log;
namespace Level = Orvik::Shared::Level;

namespace
{
using Handler = Notifications::OrvikNotifications::CNotificationsHandler;

void ShowWhatIsThere(const char* functionName, Handler& handler, unsigned port)
{
    Log(Level::Verbose, functionName, L"Get message that might be on system before the app is running");
    TakeStep(functionName, [&] { handler.ShowUsbCMessages(port); });
}

HDEVNOTIFY RegisterForDevices(const GUID& interfaceClass)
{
    DEV_BROADCAST_DEVICEINTERFACE_W wanted{};
    wanted.dbcc_size = sizeof(wanted);
    wanted.dbcc_devicetype = DBT_DEVTYP_DEVICEINTERFACE;
    wanted.dbcc_classguid = interfaceClass;
    return RegisterDeviceNotificationW(g_hwndMain, &wanted, DEVICE_NOTIFY_WINDOW_HANDLE);
}

void StartWmiEvents(const char* functionName, Handler& handler, const std::wstring& iconPath)
{
    if (auto* const hub = g_pWmiHandler.Get(); hub != nullptr)
        TakeStep(functionName, [&] { static_cast<void>(hub->RegisterUSBCWMIEvent(iconPath)); });
    ShowWhatIsThere(functionName, handler, g_nWmiPort);
    // Windows 10 and later are left out on purpose: there the billboard message is not the agent's.
    if (Win10AndHiger())
        return;
    g_hUsbDeviceNotification = RegisterForDevices(g_usbDeviceClass);
    g_hUsbHubNotification = RegisterForDevices(g_usbHubClass);
}
} // namespace

void CreateNotificationsHandler(const char* functionName, const std::wstring& imagePath)
{
    std::unique_ptr<Handler> made;
    TakeStep(functionName, [&] { made = std::make_unique<Handler>(g_hInstance); });
    static_cast<void>(CoInitialize(nullptr));
    if (!made)
        return;
    TakeStep(functionName, [&] { made->Init(); });
    // Only now: the platform's answers let window messages in, which find no handler that is not initialised.
    Handler& handler = g_pNotificationsHandler.Keep(std::move(made));
    TakeStep(functionName, [&] { handler.SetToastImagePath(imagePath); });
}

void StartUsbCEvents(const char* functionName, const std::wstring& iconPath)
{
    Handler* const handler = g_pNotificationsHandler.Get();
    if (handler == nullptr)
        return;
    if (handler->IsUsingACPIUsbCEvent())
    {
        Log(Level::Verbose, functionName, L"IsUsingACPIUsbCEvent returns true");
        StartAcpiMonitor();
        ShowWhatIsThere(functionName, *handler, g_nAcpiPort);
    }
    else if (handler->IsUSBCSupported())
        StartWmiEvents(functionName, *handler, iconPath);
}
