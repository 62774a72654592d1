#include "app/DeviceMessages.h"

#include "app/MessageLog.h"
#include "app/ProcessInstances.h"
#include "shared/SettingsControl.h"
#include "usbc/UsbDevice.h"

#include <dbt.h>

namespace
{
const DEV_BROADCAST_HDR* ArrivedInterface(WPARAM event, LPARAM broadcast)
{
    if (event != DBT_DEVICEARRIVAL || broadcast == 0)
        return nullptr;
    const auto* const header = reinterpret_cast<const DEV_BROADCAST_HDR*>(broadcast);
    return header->dbch_devicetype == DBT_DEVTYP_DEVICEINTERFACE ? header : nullptr;
}
} // namespace

void OnDeviceChange(HWND hwnd, WPARAM event, LPARAM broadcast)
{
    const DEV_BROADCAST_HDR* const arrived = ArrivedInterface(event, broadcast);
    if (arrived == nullptr)
        return;
    CUsbDevice::Init(hwnd, arrived);
    if (AreAllNotificationsSuppressed())
        return;
    if (CSettingsControl::GetRegistrySetting(L"SuppressUsbCNotifications") || !g_bBillboardDevice)
        return;
    LogMessage(L"Get billboard device message (device manager)");
    if (auto* const handler = g_pNotificationsHandler.Get(); handler != nullptr)
        handler->ShowBillboardMessage();
}
