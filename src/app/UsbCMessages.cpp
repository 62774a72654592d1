#include "app/UsbCMessages.h"

#include "app/MessageLog.h"
#include "app/ProcessInstances.h"
#include "shared/SettingsControl.h"
#include "shared/TraceScope.h"

using Orvik::Shared::TraceScope;

void DisplayExistingMessages()
{
    const TraceScope trace(ORVIK_FUNCTION);
    auto* const handler = g_pNotificationsHandler.Get();
    if (handler == nullptr)
        return;
    if (handler->IsUsingACPIUsbCEvent())
        handler->ShowUsbCMessages(g_nAcpiPort);
    else if (handler->IsUSBCSupported())
        handler->ShowUsbCMessages(g_nWmiPort);
}

void OnAcpiUsbCEvent()
{
    LogMessage(L"Got WM_NOTIFY_ACPI_USB_C");
    if (AreAllNotificationsSuppressed() || CSettingsControl::GetRegistrySetting(L"SuppressUsbCNotifications"))
        return;
    if (auto* const handler = g_pNotificationsHandler.Get(); handler != nullptr)
        handler->HandleACPIUSbCEvent();
}
