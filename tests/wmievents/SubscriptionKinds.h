#pragma once

#include "tests/wmievents/MachineTest.h"
#include "wmievents/PublicWmiEvent.h"
#include "wmievents/WmiEvent.h"

#include <string>

namespace Tests
{
// The two classes that share the steps of a subscription, each with what a test of those steps needs to know of it.
struct BiosKind
{
    using Subscription = Notifications::OrvikWmiEvents::WmiEvent;

    static constexpr const char* Class = "Notifications::OrvikWmiEvents::WmiEvent";
    static constexpr const char* Worker = "Notifications::OrvikWmiEvents::WmiEvent::RegisterWMIEvent";
    static constexpr const char* Unregister = "Notifications::OrvikWmiEvents::WmiEvent::Unregister";
    static constexpr const char* Sink = "Notifications::OrvikWmiEvents::WmiEventSink";
    static constexpr const char* Query = "SELECT * FROM orvikBEvnt WHERE EventID = 21";
    static constexpr const char* EventClass = "orvikBEvnt";

    static HRESULT Register(Subscription& subscription, HubProbe* hub)
    {
        return subscription.Register(21, hub, HubProbe::BiosHandler());
    }
    static HRESULT RegisterNull(Subscription& subscription, HubProbe* hub)
    {
        return subscription.Register(21, hub, HubProbe::Bios(nullptr));
    }
    static nlohmann::json Event() { return {{"EventID", 21}, {"EventData", 7}}; }
};

struct PublicKind
{
    using Subscription = Notifications::OrvikWmiEvents::PublicWmiEvent;

    static constexpr const char* Class = "Notifications::OrvikWmiEvents::PublicWmiEvent";
    static constexpr const char* Worker = "Notifications::OrvikWmiEvents::PublicWmiEvent::RegisterPublicWMIEvent";
    static constexpr const char* Unregister = "Notifications::OrvikWmiEvents::PublicWmiEvent::Unregister";
    static constexpr const char* Sink = "Notifications::OrvikWmiEvents::PublicWMIEventSink";
    static constexpr const char* Query = "SELECT * FROM OrvikBIOS_BIOSEvent";
    static constexpr const char* EventClass = "OrvikBIOS_BIOSEvent";

    static HRESULT Register(Subscription& subscription, HubProbe* hub)
    {
        return subscription.RegisterEvent(L"OrvikBIOS_BIOSEvent", hub, HubProbe::PublicHandler());
    }
    static HRESULT RegisterNull(Subscription& subscription, HubProbe* hub)
    {
        return subscription.RegisterEvent(L"OrvikBIOS_BIOSEvent", hub, nullptr);
    }
    static nlohmann::json Event() { return {{"Description", "Lid opened"}}; }
};

using SubscriptionKinds = testing::Types<BiosKind, PublicKind>;

// A hub and one subscription of a kind.
template <class Kind>
class SubscriptionTest : public HubTest
{
protected:
    HRESULT Register() { return Kind::Register(m_subscription, &this->m_hub); }

    typename Kind::Subscription m_subscription;
};
} // namespace Tests
