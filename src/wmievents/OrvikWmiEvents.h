#pragma once

#include "shared/WideString.h"
#include "wmievents/PublicWmiEvent.h"
#include "wmievents/WmiEvent.h"

#include <windows.h>

#include <memory>
#include <string>

namespace Orvik::Shared
{
class TraceScope;
}

namespace Notifications::OrvikWmiEvents
{
// The firmware event hub: owns every subscription and holds the handlers that the subscriptions call.
//
//   event              number or class          registered by              handled by
//   smart adapter      3                        RegisterSmartAdapterEvent  ProcessSmartAdapterEvent
//   USB-C              131073                   RegisterUSBCWMIEvent       ProcessUSBCWMIEvent
//   public BIOS event  "OrvikBIOS_BIOSEvent"    RegisterGPIOWMIEvent       ProcessWMIEvent
//
// Made, registered and destroyed on the main thread. Handlers run on WMI's threads, also several at once, and during
// start-up the smart adapter's on the main thread; they let no exception out. A registration returns the first failing
// result, that of a caught _com_error included; it logs its own failures and leaves the other registrations alone.
class COrvikWmiEvents
{
public:
    // Initialises COM for the calling thread.
    COrvikWmiEvents();
    COrvikWmiEvents(const COrvikWmiEvents&) = delete;
    COrvikWmiEvents& operator=(const COrvikWmiEvents&) = delete;
    // Cancels every subscription. Deliveries end with the cancellation.
    ~COrvikWmiEvents();

    // Subscribes when the platform says that it supports smart adapters. iconPath: icon of the messages, may be empty.
    [[nodiscard]] HRESULT RegisterSmartAdapterEvent(const std::wstring& iconPath);
    // Ends an earlier subscription before the new one starts; when the platform library or memory is missing the
    // earlier one stays. The text, the path of the default icon, is not used.
    [[nodiscard]] HRESULT RegisterUSBCWMIEvent(const std::wstring& iconPath);
    [[nodiscard]] HRESULT RegisterGPIOWMIEvent();

    // Asks the platform for the adapter's status and shows a toast for each status that matters. Any thread.
    void ProcessSmartAdapterEvent();

    // Shows the firmware's messages for the port in the first byte of the event's data, unless policy silences them.
    // E_INVALIDARG without data, or for another event number. Any thread.
    [[nodiscard]] HRESULT ProcessUSBCWMIEvent(int eventId, VARIANT* eventData);

    // Shows the description of an event of the public class, when firmware set-up allows that. eventData may be null.
    void ProcessWMIEvent(const CStringW& eventClass, VARIANT* eventData);

private:
    [[nodiscard]] HRESULT SubscribeToUsbC(const Orvik::Shared::TraceScope& trace);
    // What the subscription calls.
    void OnUSBCWMIEvent(int eventId, VARIANT* eventData);

    // Set by RegisterGPIOWMIEvent. Not synchronised.
    bool m_bShowPrivacyDialog = false;
    std::unique_ptr<WmiEvent> m_pSmartAdapterEvent;
    std::unique_ptr<WmiEvent> m_pUSBCEvent;
    std::unique_ptr<PublicWmiEvent> m_pPublicEvent;
    std::wstring m_strIconPath;
    std::wstring m_strSmartAdapterHelperPath;
};

// Full path of the smart adapter help program, which lies beside the agent.
[[nodiscard]] std::wstring GetSmartAdapterHelperPath();
} // namespace Notifications::OrvikWmiEvents
