#include "notifications/NotificationsHandler.h"
#include "shared/SettingsControl.h"
#include "shared/TraceScope.h"
#include "wmievents/EventRegistration.h"
#include "wmievents/OrvikWmiEvents.h"

#include <utility>

using Notifications::OrvikNotifications::CNotificationsHandler;
using Orvik::Shared::TraceScope;

namespace Notifications::OrvikWmiEvents
{
namespace
{
constexpr int g_nUsbCEvent = 131073;
}

HRESULT COrvikWmiEvents::RegisterUSBCWMIEvent(const std::wstring&)
{
    TraceScope trace(ORVIK_FUNCTION);
    try
    {
        return trace.Exit(SubscribeToUsbC(trace));
    }
    catch (const _com_error& error)
    {
        // The texts name a command that is never sent: administrators know the registration by it.
        return trace.Exit(
            LogCommandFailure(trace, error, L"Invalid Command Platform.USBC.Configuration. hr = 0x%X",
                              L"Exception occurred when calling Platform.USBC.Configuration, [hr:0x%08X]"));
    }
}

HRESULT COrvikWmiEvents::SubscribeToUsbC(const TraceScope& trace)
{
    bool isWanted = false;
    HRESULT hr = AskPlatform(trace, nullptr, nullptr, isWanted);
    if (!isWanted)
        return hr;

    // Made first: without memory for it the old subscription goes on. Unlike the other registrations this one ends the
    // subscription that it replaces.
    auto replacement = std::make_unique<WmiEvent>();
    if (m_pUSBCEvent)
        static_cast<void>(m_pUSBCEvent->Unregister());
    m_pUSBCEvent = std::move(replacement);
    hr = m_pUSBCEvent->Register(g_nUsbCEvent, this, &COrvikWmiEvents::OnUSBCWMIEvent);
    if (FAILED(hr))
        trace.Information(L"Failed to register for USB Type-C event, [hr:0x%08X]", hr);
    else
        trace.Verbose(L"Register for USB Type-C event passed.");
    return hr;
}

void COrvikWmiEvents::OnUSBCWMIEvent(int eventId, VARIANT* eventData)
{
    // The result is in the handler's own records.
    static_cast<void>(ProcessUSBCWMIEvent(eventId, eventData));
}

HRESULT COrvikWmiEvents::ProcessUSBCWMIEvent(int eventId, VARIANT* eventData)
{
    TraceScope trace(ORVIK_FUNCTION);
    trace.Verbose(L"Received USBC event");
    if (eventData == nullptr || eventId != g_nUsbCEvent)
    {
        trace.Information(L"Not an event with USBC event id. should not see this.");
        return trace.Exit(E_INVALIDARG);
    }
    const BYTE iPortID = eventData->bVal;
    trace.Verbose(L"USB Type-C event for iPortID: %d.", iPortID);
    if (AreAllNotificationsSuppressed() || CSettingsControl::GetRegistrySetting(L"SuppressUsbCBiosNotifications"))
        return trace.Exit(S_OK);

    // One handler for each event: this thread shares none with the main thread.
    CNotificationsHandler handler;
    handler.Init();
    handler.ShowUsbCMessages(iPortID);
    return trace.Exit(S_OK);
}
} // namespace Notifications::OrvikWmiEvents
