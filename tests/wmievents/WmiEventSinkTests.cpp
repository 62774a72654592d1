#include "wmievents/WmiEventSink.h"

#include "platform/WmiQuery.h"
#include "shared/LogLevel.h"
#include "simulator/doubles/WbemClassObjectDouble.h"
#include "tests/support/BstrLedger.h"
#include "tests/support/LogCapture.h"
#include "tests/wmievents/FailingBstr.h"
#include "tests/wmievents/MachineTest.h"
#include "tests/wmievents/PlainEvent.h"

#include <comdef.h>

#include <gmock/gmock.h>

#include <thread>

using Notifications::OrvikWmiEvents::WmiEventSink;
using testing::ElementsAre;
using testing::IsEmpty;
using Tests::Hr;
using Tests::HubProbe;
using TestSupport::Logged;
using TestSupport::LogLines;
using TestSupport::OperationalLines;
namespace Level = Orvik::Shared::Level;

namespace
{
constexpr const char* Indicate = "Notifications::OrvikWmiEvents::WmiEventSink::Indicate";
constexpr const char* SetStatus = "Notifications::OrvikWmiEvents::WmiEventSink::SetStatus";
constexpr const char* Destructor = "Notifications::OrvikWmiEvents::WmiEventSink::~WmiEventSink";

class WmiEventSinkTest : public Tests::HubTest
{
protected:
    ~WmiEventSinkTest() override
    {
        m_pPlain->Release();
        m_pWithParams->Release();
    }

    static IWbemClassObjectPtr Event(const nlohmann::json& properties)
    {
        return {new Simulator::WbemClassObjectDouble("orvikBEvnt", properties), false};
    }

    HRESULT Deliver(WmiEventSink* sink, std::vector<IWbemClassObjectPtr> objects)
    {
        std::vector<IWbemClassObject*> entries(objects.begin(), objects.end());
        return sink->Indicate(static_cast<long>(entries.size()), entries.data());
    }

    WmiEventSink* m_pPlain = new WmiEventSink(&m_hub, HubProbe::PlainHandler());
    WmiEventSink* m_pWithParams = new WmiEventSink(&m_hub, HubProbe::BiosHandler());
};
} // namespace

TEST_F(WmiEventSinkTest, Indicate_WithParams_GetsIdAndData)
{
    EXPECT_EQ(Deliver(m_pWithParams, {Event({{"EventID", 21}, {"EventData", 7}})}), WBEM_S_NO_ERROR);
    const auto calls = m_hub.Calls();
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].m_strHandler, "bios");
    EXPECT_EQ(calls[0].m_nEventId, 21);
    EXPECT_EQ(calls[0].m_nValue, 7);
    EXPECT_EQ(calls[0].m_dwThreadId, GetCurrentThreadId());
}

TEST_F(WmiEventSinkTest, Indicate_OneObject_WritesTheseRecords)
{
    Deliver(m_pWithParams, {Event({{"EventID", 21}, {"EventData", 7}})});
    EXPECT_THAT(LogLines(Indicate), ElementsAre(L"TraceIn|", L"Verbose|Event occured", L"Verbose|Event ID: 21",
                                                L"Verbose|Event data: 7", L"TraceOut|hr: 0x00000000"));
}

TEST_F(WmiEventSinkTest, Indicate_ReadsIdThenData)
{
    Deliver(m_pWithParams, {Event({{"EventID", 21}, {"EventData", 7}})});
    EXPECT_EQ(Details("IWbemClassObject::Get", 1)["property"], "EventID");
    EXPECT_EQ(Details("IWbemClassObject::Get", 2)["property"], "EventData");
    EXPECT_EQ(Calls().size(), 2u);
}

TEST_F(WmiEventSinkTest, Indicate_SeveralObjects_OneCallEachInOrder)
{
    Deliver(m_pWithParams, {Event({{"EventID", 21}, {"EventData", 1}}), Event({{"EventID", 22}, {"EventData", 2}}),
                            Event({{"EventID", 23}, {"EventData", 3}})});
    const auto calls = m_hub.Calls();
    ASSERT_EQ(calls.size(), 3u);
    for (int i = 0; i < 3; ++i)
    {
        EXPECT_EQ(calls[static_cast<std::size_t>(i)].m_nEventId, 21 + i);
        EXPECT_EQ(calls[static_cast<std::size_t>(i)].m_nValue, 1 + i);
    }
}

TEST_F(WmiEventSinkTest, Indicate_CountBelowOne_NothingHappens)
{
    EXPECT_EQ(m_pPlain->Indicate(0, nullptr), WBEM_S_NO_ERROR);
    EXPECT_EQ(m_pPlain->Indicate(-1, nullptr), WBEM_S_NO_ERROR);
    EXPECT_THAT(m_hub.Calls(), IsEmpty());
    EXPECT_THAT(OperationalLines(), IsEmpty());
}

TEST_F(WmiEventSinkTest, Indicate_DataUnreadable_ReachesPlainOnly)
{
    const auto event = Event({{"EventID", 3}, {"EventData", {{"hr", "0x80041001"}}}});
    EXPECT_EQ(Deliver(m_pWithParams, {event}), WBEM_S_NO_ERROR);
    EXPECT_THAT(m_hub.Calls(), IsEmpty());
    EXPECT_EQ(Deliver(m_pPlain, {event}), WBEM_S_NO_ERROR);
    EXPECT_EQ(m_hub.Calls().size(), 1u);
    EXPECT_EQ(TestSupport::LogCount(Level::Verbose, Indicate, L"Event ID: 3"), 2u);
}

TEST_F(WmiEventSinkTest, Indicate_IdUnreadable_IdIsZero)
{
    Deliver(m_pWithParams, {Event({{"EventData", 7}})});
    const auto calls = m_hub.Calls();
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].m_nEventId, 0);
    EXPECT_THAT(OperationalLines(),
                ElementsAre(std::wstring(L"Verbose|") + L"Notifications::OrvikWmiEvents::WmiEventSink::Indicate" +
                                L"|Event occured",
                            L"Verbose|Notifications::OrvikWmiEvents::WmiEventSink::Indicate|Event data: 7"));
}

TEST_F(WmiEventSinkTest, Indicate_IdUnreadableAfterAGoodOne_IsZeroAgain)
{
    Deliver(m_pWithParams, {Event({{"EventID", 21}, {"EventData", 1}}), Event({{"EventData", 2}})});
    const auto calls = m_hub.Calls();
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[0].m_nEventId, 21);
    EXPECT_EQ(calls[1].m_nEventId, 0);
}

TEST_F(WmiEventSinkTest, Indicate_DataOfAnotherType_IsHandedOnAsItIs)
{
    Deliver(m_pWithParams, {Event({{"EventID", 21}, {"EventData", "text"}})});
    ASSERT_EQ(m_hub.Calls().size(), 1u);
    EXPECT_EQ(m_hub.Calls()[0].m_vt, VT_BSTR);
    EXPECT_EQ(m_hub.Calls()[0].m_strValue, L"text");
}

TEST_F(WmiEventSinkTest, Indicate_NumbersOfOtherTypes_AreReadAsTheyLie)
{
    Deliver(m_pWithParams, {Event({{"EventID", {{"ui4", 21}}}, {"EventData", {{"ui4", 7}}}})});
    ASSERT_EQ(m_hub.Calls().size(), 1u);
    EXPECT_EQ(m_hub.Calls()[0].m_nEventId, 21);
    EXPECT_EQ(m_hub.Calls()[0].m_vt, VT_UI4);
    EXPECT_THAT(LogLines(Indicate), ElementsAre(L"TraceIn|", L"Verbose|Event occured", L"Verbose|Event ID: 21",
                                                L"Verbose|Event data: 7", L"TraceOut|hr: 0x00000000"));
}

TEST_F(WmiEventSinkTest, Indicate_ValuesWithoutANumber_CountAsZero)
{
    Tests::PlainEvent event;
    IWbemClassObject* entry = &event;
    for (const int type : {+VT_EMPTY, +VT_NULL})
    {
        StartWatching();
        event.m_vtNumbers = static_cast<VARTYPE>(type);
        EXPECT_EQ(m_pWithParams->Indicate(1, &entry), WBEM_S_NO_ERROR);
        EXPECT_EQ(m_hub.Calls().back().m_nEventId, 0);
        EXPECT_THAT(LogLines(Indicate), ElementsAre(L"TraceIn|", L"Verbose|Event occured", L"Verbose|Event ID: 0",
                                                    L"Verbose|Event data: 0", L"TraceOut|hr: 0x00000000"));
    }
}

TEST_F(WmiEventSinkTest, Indicate_NullEntry_ReachesPlainOnlyAndTheNextIsHandled)
{
    EXPECT_EQ(Deliver(m_pWithParams, {IWbemClassObjectPtr(), Event({{"EventID", 21}, {"EventData", 7}})}),
              WBEM_S_NO_ERROR);
    ASSERT_EQ(m_hub.Calls().size(), 1u);
    EXPECT_EQ(m_hub.Calls()[0].m_nEventId, 21);
    EXPECT_EQ(Deliver(m_pPlain, {IWbemClassObjectPtr()}), WBEM_S_NO_ERROR);
    EXPECT_EQ(m_hub.Calls().size(), 2u);
}

TEST_F(WmiEventSinkTest, Indicate_NullArray_IsAnArrayOfNulls)
{
    EXPECT_EQ(m_pWithParams->Indicate(2, nullptr), WBEM_S_NO_ERROR);
    EXPECT_THAT(m_hub.Calls(), IsEmpty());
    EXPECT_EQ(TestSupport::LogCount(Level::Verbose, Indicate, L"Event occured"), 2u);
}

TEST_F(WmiEventSinkTest, Indicate_NameCannotBeAllocated_RaisesOutOfMemory)
{
    for (const unsigned nth : {1u, 2u})
    {
        const auto event = Event({{"EventID", 21}, {"EventData", 7}});
        const Tests::FailingBstr noMemory(nth);
        try
        {
            Deliver(m_pPlain, {event});
            ADD_FAILURE() << "nothing was raised";
        }
        catch (const _com_error& error)
        {
            EXPECT_EQ(error.Error(), E_OUTOFMEMORY);
        }
    }
    EXPECT_THAT(m_hub.Calls(), IsEmpty());
    EXPECT_FALSE(WasCalled("IWbemClassObject::Get"));
}

TEST_F(WmiEventSinkTest, Indicate_FreesNamesAndValues)
{
    const auto event = Event({{"EventID", "21"}, {"EventData", "text"}});
    const TestSupport::BstrLedger ledger;
    Deliver(m_pWithParams, {event, IWbemClassObjectPtr(), event});
    EXPECT_GE(ledger.Allocations(), 6u);
    EXPECT_THAT(ledger.LiveTexts(), IsEmpty());
}

TEST_F(WmiEventSinkTest, SetStatus_LabelsZeroAndTwoAsComplete)
{
    EXPECT_EQ(m_pPlain->SetStatus(0, Hr(WBEM_E_CALL_CANCELLED), nullptr, nullptr), WBEM_S_NO_ERROR);
    EXPECT_EQ(m_pPlain->SetStatus(2, S_OK, nullptr, nullptr), WBEM_S_NO_ERROR);
    EXPECT_EQ(m_pPlain->SetStatus(1, E_FAIL, nullptr, nullptr), WBEM_S_NO_ERROR);
    EXPECT_THAT(LogLines(SetStatus),
                ElementsAre(L"TraceIn|hResult: 0x80041032, lFlags: 0x00000000 (WBEM_STATUS_COMPLETE)",
                            L"TraceIn|hResult: 0x00000000, lFlags: 0x00000002 (WBEM_STATUS_COMPLETE)",
                            L"TraceIn|hResult: 0x80004005, lFlags: 0x00000001 (?)"));
    EXPECT_THAT(m_hub.Calls(), IsEmpty());
}

TEST_F(WmiEventSinkTest, SetStatus_OtherFlags_HaveNoLabel)
{
    for (const long flags : {3L, 4L, -1L})
        EXPECT_EQ(m_pPlain->SetStatus(flags, S_OK, nullptr, nullptr), WBEM_S_NO_ERROR);
    EXPECT_THAT(LogLines(SetStatus), ElementsAre(L"TraceIn|hResult: 0x00000000, lFlags: 0x00000003 (?)",
                                                 L"TraceIn|hResult: 0x00000000, lFlags: 0x00000004 (?)",
                                                 L"TraceIn|hResult: 0x00000000, lFlags: 0xFFFFFFFF (?)"));
}

TEST_F(WmiEventSinkTest, QueryInterface_KnowsUnknownAndSink)
{
    for (const IID& iid : {IID_IUnknown, IID_IWbemObjectSink})
    {
        void* object = nullptr;
        EXPECT_EQ(m_pPlain->QueryInterface(iid, &object), S_OK);
        EXPECT_EQ(object, m_pPlain);
        EXPECT_EQ(m_pPlain->Release(), 1u);
    }
}

TEST_F(WmiEventSinkTest, QueryInterface_Other_LeavesThePointerAsItWas)
{
    int marker = 0;
    void* object = &marker;
    EXPECT_EQ(m_pPlain->QueryInterface(IID_IMarshal, &object), E_NOINTERFACE);
    EXPECT_EQ(object, &marker);
}

TEST_F(WmiEventSinkTest, References_FromManyThreads_NoneIsLost)
{
    constexpr int times = 100'000;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
    {
        threads.emplace_back(
            [this]
            {
                for (int n = 0; n < times; ++n)
                {
                    m_pPlain->AddRef();
                    m_pPlain->AddRef();
                    m_pPlain->Release();
                }
            });
    }
    for (std::thread& thread : threads)
        thread.join();
    ULONG count = m_pPlain->AddRef();
    EXPECT_EQ(count, 4u * times + 2u);
    while (count > 1)
        count = m_pPlain->Release();
}

TEST_F(WmiEventSinkTest, References_AreCountedAndTheLastEndsTheSink)
{
    auto* sink = new WmiEventSink(&m_hub, HubProbe::PlainHandler());
    EXPECT_EQ(sink->AddRef(), 2u);
    EXPECT_EQ(sink->Release(), 1u);
    EXPECT_TRUE(TestSupport::NothingLogged());
    EXPECT_EQ(sink->Release(), 0u);
    EXPECT_THAT(LogLines(Destructor), ElementsAre(L"TraceIn|", L"TraceOut|"));
}
