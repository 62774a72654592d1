#pragma once

#include "platform/PlatformCommand.h"
#include "wmievents/PublicWmiEvent.h"
#include "wmievents/WmiEvent.h"

#include <atomic>
#include <memory>

namespace Notifications::OrvikWmiEvents
{
// One row of the hub's table of registrations.
template <class Subscription, class Key, class Handler>
struct EventRegistration
{
    // The hub's member that owns the subscription.
    std::unique_ptr<Subscription>& m_pSubscription;
    // Event number or class name.
    Key m_key;
    Handler m_pfnHandler;
    // A platform command that must answer true first; null when nothing is asked.
    const wchar_t* m_pSupportCommand;
    // Set once the platform command object exists; null when the event has no say in it.
    std::atomic<bool>* m_pbShowPrivacyDialog;
    Orvik::Shared::WideFormat<HRESULT> m_registerFailed;
    Orvik::Shared::WideFormat<HRESULT> m_invalidCommand;
    Orvik::Shared::WideFormat<HRESULT> m_otherFailure;
};

template <class Handler>
HRESULT Subscribe(WmiEvent& event, int eventId, COrvikWmiEvents* hub, Handler handler)
{
    return event.Register(eventId, hub, handler);
}

inline HRESULT Subscribe(PublicWmiEvent& event, const wchar_t* eventClass, COrvikWmiEvents* hub,
                         PublicEventCallbacks::WithParams handler)
{
    return event.RegisterEvent(eventClass, hub, handler);
}

// What comes before a subscription: the platform command object exists, which sets the flag unless that is null, and
// the support command answers true unless that is null. The object is given back. isWanted: whether to subscribe; the
// result is the last step's. Raises _com_error as SendCommand does.
[[nodiscard]] HRESULT AskPlatform(const Orvik::Shared::TraceScope& trace, const wchar_t* supportCommand,
                                  std::atomic<bool>* showPrivacyDialog, bool& isWanted);

// The steps of every registration, under the name of the operation whose trace is given. A former subscription in the
// row's member is destroyed without being unregistered; one whose registration fails stays there.
template <class Subscription, class Key, class Handler>
[[nodiscard]] HRESULT RegisterRow(const Orvik::Shared::TraceScope& trace, COrvikWmiEvents* hub,
                                  const EventRegistration<Subscription, Key, Handler>& row)
{
    try
    {
        bool isWanted = false;
        HRESULT hr = AskPlatform(trace, row.m_pSupportCommand, row.m_pbShowPrivacyDialog, isWanted);
        if (!isWanted)
            return hr;

        row.m_pSubscription = std::make_unique<Subscription>();
        hr = Subscribe(*row.m_pSubscription, row.m_key, hub, row.m_pfnHandler);
        if (FAILED(hr))
            trace.Verbose(row.m_registerFailed, hr);
        return hr;
    }
    catch (const _com_error& error)
    {
        return LogCommandFailure(trace, error, row.m_invalidCommand, row.m_otherFailure);
    }
}
} // namespace Notifications::OrvikWmiEvents
