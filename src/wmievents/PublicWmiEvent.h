#pragma once

#include "shared/WideString.h"
#include "wmievents/PublicWMIEventSink.h"
#include "wmievents/WmiSubscription.h"

namespace Notifications::OrvikWmiEvents
{
// The subscription to all events of one public event class. Belongs to the hub; main thread.
class PublicWmiEvent final : public WmiSubscription
{
public:
    PublicWmiEvent() = default;
    ~PublicWmiEvent();

    // E_FAIL while the object holds a connection or a stub from an earlier call. A null callback gives E_INVALIDARG and
    // changes nothing. The owner outlives the deliveries.
    [[nodiscard]] HRESULT RegisterEvent(const CStringW& eventName, COrvikWmiEvents* owner,
                                        PublicEventCallbacks::WithParams callback);

    // Cancels and releases what a registration reached, also a failed one.
    [[nodiscard]] HRESULT Unregister();

private:
    [[nodiscard]] HRESULT RegisterPublicWMIEvent(const CStringW& eventName);
    [[nodiscard]] bool HasCallback() const override;
    [[nodiscard]] IWbemObjectSink* CreateSink() const override;

    PublicEventCallbacks m_callbacks;
};
} // namespace Notifications::OrvikWmiEvents
