#pragma once

#include "shared/WideString.h"
#include "wmievents/PublicWmiEvent.h"
#include "wmievents/WmiEvent.h"

#include <windows.h>

#include <atomic>
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
//   event              number or class          registered by                    handled by
//   smart adapter      3                        RegisterSmartAdapterEvent        ProcessSmartAdapterEvent
//   USB-C              131073                   RegisterUSBCWMIEvent             ProcessUSBCWMIEvent
//   Veritor            131074                   RegisterVeritorEvent             ProcessVeritorEvent
//   firmware           21                       RegisterFirmwareWMIEvent         ProcessFirmwareEvent
//   privacy panel      20                       RegisterPrivacyPanelWMIEvent     ProcessPrivacyPanelEvent
//   firmware runtime   33                       RegisterFirmwareRuntimeWMIEvent  ProcessFirmwareRuntimeEvent
//   public BIOS event  "OrvikBIOS_BIOSEvent"    RegisterGPIOWMIEvent             ProcessWMIEvent
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
    // iconPath replaces what RegisterSmartAdapterEvent was given.
    [[nodiscard]] HRESULT RegisterVeritorEvent(const std::wstring& iconPath);
    [[nodiscard]] HRESULT RegisterFirmwareWMIEvent();
    [[nodiscard]] HRESULT RegisterPrivacyPanelWMIEvent();
    [[nodiscard]] HRESULT RegisterFirmwareRuntimeWMIEvent();
    [[nodiscard]] HRESULT RegisterGPIOWMIEvent();

    // Asks the platform for the adapter's status and shows a toast for each status that matters. Any thread.
    void ProcessSmartAdapterEvent();

    // Shows the firmware's messages for the port in the first byte of the event's data, unless policy silences them.
    // E_INVALIDARG without data, or for another event number. Any thread.
    [[nodiscard]] HRESULT ProcessUSBCWMIEvent(int eventId, VARIANT* eventData);

    // Tells of what the firmware's protection found, by the event identifier in the data, and copies the audit log,
    // both on threads of their own. Data that holds no VT_I4 is logged and copies the audit log only. eventId is not
    // used.
    void ProcessVeritorEvent(int eventId, VARIANT* eventData);

    // Starts a copy of the firmware's audit log into the Windows event log on a thread of its own, unless policy
    // silences it. delayFlag: 1 waits two minutes first, so that a scan of the event log that was started before is
    // done.
    void ProcessVeritorLog(int delayFlag);

    // Starts the scan of the event log that keeps copies from writing its entries again, on a thread of its own.
    void CreateHashKeysForVeritorEventLogs();

    // The following show a modal dialog on the delivering thread and return when the person has closed it.

    // Event 21 tells of outdated keyboard firmware; others nothing. eventData is not looked at.
    void ProcessFirmwareEvent(int eventId, VARIANT* eventData);
    // Event 83 tells that intrusion detection is off; others nothing. eventData is not looked at.
    void ProcessFirmwareRuntimeEvent(int eventId, VARIANT* eventData);
    // Data 1 tells that the privacy panel is not supported, unless the person silenced that; eventId is not used.
    void ProcessPrivacyPanelEvent(int eventId, VARIANT* eventData);

    // Shows the description of an event of the public class, when firmware set-up allows that. eventData may be null.
    void ProcessWMIEvent(const CStringW& eventClass, VARIANT* eventData);

private:
    [[nodiscard]] HRESULT SubscribeToUsbC(const Orvik::Shared::TraceScope& trace);
    // What the subscription calls.
    void OnUSBCWMIEvent(int eventId, VARIANT* eventData);

    // Whether the privacy-panel notice may be shown. Set by the registrations of its own and of the public event, set
    // anew by each privacy-panel event; by several threads at once.
    std::atomic<bool> m_bShowPrivacyDialog = false;
    std::unique_ptr<WmiEvent> m_pSmartAdapterEvent;
    std::unique_ptr<WmiEvent> m_pVeritorEvent;
    std::unique_ptr<WmiEvent> m_pUSBCEvent;
    std::unique_ptr<WmiEvent> m_pFirmwareEvent;
    std::unique_ptr<WmiEvent> m_pPrivacyPanelEvent;
    std::unique_ptr<WmiEvent> m_pFirmwareRuntimeEvent;
    std::unique_ptr<PublicWmiEvent> m_pPublicEvent;
    std::wstring m_strIconPath;
    std::wstring m_strSmartAdapterHelperPath;
};

// Full path of the smart adapter help program, which lies beside the agent.
[[nodiscard]] std::wstring GetSmartAdapterHelperPath();
} // namespace Notifications::OrvikWmiEvents
