#include "wmievents/WmiSubscription.h"

#include "shared/LogLevel.h"
#include "tests/support/LogCapture.h"
#include "tests/wmievents/MachineTest.h"

#include <gmock/gmock.h>

using Orvik::Shared::TraceScope;
using testing::IsEmpty;
using TestSupport::Logged;
namespace Level = Orvik::Shared::Level;

namespace
{
// A subscription without a sink, whose two interfaces a test can set.
class BareSubscription final : public Notifications::OrvikWmiEvents::WmiSubscription
{
public:
    explicit BareSubscription(bool hasCallback) : m_bHasCallback(hasCallback) {}

    HRESULT Register(const TraceScope& trace) { return Subscribe(trace, L"SELECT * FROM orvikBEvnt"); }
    HRESULT Unregister(const TraceScope& trace) { return CancelSubscription(trace); }
    void SetSink(IWbemObjectSink* sink) { m_pWbemObjSink = sink; }

private:
    bool HasCallback() const override { return m_bHasCallback; }
    IWbemObjectSink* CreateSink() const override { return nullptr; }

    const bool m_bHasCallback;
};

using WmiSubscriptionStateTest = Tests::HubTest;
} // namespace

TEST_F(WmiSubscriptionStateTest, Subscribe_WithoutCallback_IsRefused)
{
    BareSubscription subscription(false);
    const TraceScope trace("Caller");
    EXPECT_EQ(subscription.Register(trace), E_FAIL);
    EXPECT_TRUE(Logged(Level::Information, "Caller", L"There is no callback function; register not done."));
    EXPECT_THAT(Calls(), IsEmpty());
}

TEST_F(WmiSubscriptionStateTest, Subscribe_SinkAlreadyThere_IsRefusedBeforeTheCallbackIsLookedAt)
{
    BareSubscription subscription(false);
    auto* sink = new Notifications::OrvikWmiEvents::WmiEventSink(&m_hub, Tests::HubProbe::PlainHandler());
    subscription.SetSink(sink);
    const TraceScope trace("Caller");
    EXPECT_EQ(subscription.Register(trace), E_FAIL);
    EXPECT_TRUE(Logged(Level::Information, "Caller", L"IWbemObjectSink object already created."));
    EXPECT_THAT(Calls(), IsEmpty());
    sink->Release();
}

TEST_F(WmiSubscriptionStateTest, Subscribe_NoSinkMade_StubGetsNull)
{
    BareSubscription subscription(true);
    const TraceScope trace("Caller");
    EXPECT_EQ(subscription.Register(trace), E_POINTER);
    EXPECT_EQ(Details("IUnsecuredApartment::CreateObjectStub")["object"], false);
    EXPECT_EQ(subscription.Unregister(trace), S_OK);
}
