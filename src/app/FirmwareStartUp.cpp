#include "app/FirmwareStartUp.h"

#include "app/system/IconPath.h"
#include "app/TakeStep.h"
#include "res/Resource.h"
#include "wmievents/OrvikWmiEvents.h"

using Notifications::OrvikWmiEvents::COrvikWmiEvents;

namespace
{
void StartProtection(const char* functionName, COrvikWmiEvents& hub)
{
    if (FAILED(hub.RegisterVeritorEvent(GetDefaultIconPath(L"ORVR.ico", IDI_VERITOR))))
        return;
    // Before the copy, whose delay lets the scan finish first.
    hub.CreateHashKeysForVeritorEventLogs();
    Orvik::Shared::Log(
        Orvik::Shared::Level::Verbose, functionName,
        L"RegisterVeritorEvent passed.  Get current log data from BIOS and log to Windows event viewer.");
    constexpr int afterDelay = 1;
    hub.ProcessVeritorLog(afterDelay);
}
} // namespace

void RegisterFirmwareEvents(const char* functionName, COrvikWmiEvents& hub)
{
    TakeStep(functionName, [&] { StartProtection(functionName, hub); });
    TakeStep(functionName, [&hub] { static_cast<void>(hub.RegisterFirmwareWMIEvent()); });
    TakeStep(functionName, [&hub] { static_cast<void>(hub.RegisterPrivacyPanelWMIEvent()); });
    TakeStep(functionName, [&hub] { static_cast<void>(hub.RegisterFirmwareRuntimeWMIEvent()); });
    TakeStep(functionName, [&hub] { static_cast<void>(hub.RegisterGPIOWMIEvent()); });
}
