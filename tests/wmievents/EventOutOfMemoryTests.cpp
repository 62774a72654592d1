#include "tests/wmievents/AppDataFolder.h"
#include "tests/wmievents/HubProbe.h"
#include "tests/wmievents/PlainEvent.h"
#include "tests/wmievents/SmallMachine.h"
#include "wmievents/WmiEventsState.h"

#include <comdef.h>

#include <gmock/gmock.h>

using Notifications::OrvikWmiEvents::g_szPublicEventClass;
using Notifications::OrvikWmiEvents::PublicWMIEventSink;
using Notifications::OrvikWmiEvents::WmiEventSink;
using testing::Contains;
using Tests::HubProbe;
using Tests::SmallMachine;
using Tests::SweepAllocations;

// Want of memory inside the handlers and the sinks: every allocation fails in turn.
namespace
{
class EventOutOfMemoryTest : public testing::Test
{
protected:
    Tests::AppDataFolder m_appData;
    SmallMachine m_machine;
    HubProbe m_hub;
    Tests::PlainEvent m_event;
};
} // namespace

TEST_F(EventOutOfMemoryTest, SmartAdapterHandler_LetsNothingOutAndTheNextEventIsShown)
{
    const auto records = SweepAllocations([this] { m_hub.ProcessSmartAdapterEvent(); });
    EXPECT_THAT(records, Contains(L"Exception occurred when calling SmartAdapter.Status, [hr:0x8007000E]"));
    static_cast<void>(SmallMachine::TakeToasts());
    m_hub.ProcessSmartAdapterEvent();
    EXPECT_EQ(SmallMachine::TakeToasts(), 1u);
}

TEST_F(EventOutOfMemoryTest, PublicHandler_LetsNothingOutAndTheNextEventIsShown)
{
    const CStringW eventClass = g_szPublicEventClass;
    _variant_t data(L"A description that is longer than what a string object holds in itself");
    const auto records = SweepAllocations([&] { m_hub.ProcessWMIEvent(eventClass, &data); });
    EXPECT_THAT(records, Contains(L"Exception when call Popup. hr = 0x8007000E"));
    static_cast<void>(SmallMachine::TakeToasts());
    m_hub.ProcessWMIEvent(eventClass, &data);
    EXPECT_EQ(SmallMachine::TakeToasts(), 1u);
}

TEST_F(EventOutOfMemoryTest, Indicate_LetsNothingOutAndTheNextEventIsHandled)
{
    auto* bios = new WmiEventSink(&m_hub, HubProbe::BiosHandler());
    auto* shared = new PublicWMIEventSink(&m_hub, HubProbe::PublicHandler());
    IWbemClassObject* event = &m_event;
    for (IWbemObjectSink* sink : {static_cast<IWbemObjectSink*>(bios), static_cast<IWbemObjectSink*>(shared)})
    {
        unsigned lost = 0;
        static_cast<void>(SweepAllocations(
            [&]
            {
                const HRESULT hr = sink->Indicate(1, &event);
                EXPECT_TRUE(hr == WBEM_S_NO_ERROR || hr == E_OUTOFMEMORY) << hr;
                lost += hr == E_OUTOFMEMORY;
            }));
        EXPECT_GT(lost, 0u);
        const std::size_t before = m_hub.Calls().size();
        EXPECT_EQ(sink->Indicate(1, &event), WBEM_S_NO_ERROR);
        EXPECT_EQ(m_hub.Calls().size(), before + 1);
        sink->Release();
    }
}
