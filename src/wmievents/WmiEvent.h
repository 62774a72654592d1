#pragma once

#include "wmievents/WmiEventSink.h"
#include "wmievents/WmiSubscription.h"

namespace Notifications::OrvikWmiEvents
{
// The subscription to one firmware event number of the class orvikBEvnt. Belongs to the hub; main thread.
class WmiEvent final : public WmiSubscription
{
public:
    WmiEvent() = default;
    ~WmiEvent();

    // One of the two. E_FAIL while the object holds a connection or a stub from an earlier call. A null callback gives
    // E_INVALIDARG and changes nothing. The owner outlives the deliveries.
    [[nodiscard]] HRESULT Register(int nEventID, COrvikWmiEvents* owner,
                                   BiosEventCallbacks::WithParams callbackWithParams);
    [[nodiscard]] HRESULT Register(int nEventID, COrvikWmiEvents* owner, BiosEventCallbacks::Plain callback);

    // Cancels and releases what a registration reached, also a failed one.
    [[nodiscard]] HRESULT Unregister();

private:
    [[nodiscard]] HRESULT RegisterWMIEvent(int nEventID);
    [[nodiscard]] bool HasCallback() const override;
    [[nodiscard]] IWbemObjectSink* CreateSink() const override;

    BiosEventCallbacks m_callbacks;
};
} // namespace Notifications::OrvikWmiEvents
