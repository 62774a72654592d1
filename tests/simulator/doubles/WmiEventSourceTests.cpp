#include "simulator/doubles/WmiEventSource.h"

#include "shared/OwnerTypes.h"
#include "simulator/doubles/JournalText.h"
#include "tests/simulator/doubles/DoublesTest.h"
#include "tests/simulator/doubles/RecordingSink.h"

#include <algorithm>
#include <set>

namespace Simulator
{
namespace
{
using Orvik::Shared::UniqueHandle;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class WmiEventSourceTest : public DoublesTest
{
protected:
    void Subscribe(RecordingSink& sink, const wchar_t* query)
    {
        ASSERT_EQ(m_spServices->ExecNotificationQueryAsync(_bstr_t(L"WQL"), _bstr_t(query), 0, nullptr, &sink), S_OK);
    }

    RecordingSink m_sink;
    RecordingSink m_other;
    IWbemServicesPtr m_spServices = Connect();
};

TEST_F(WmiEventSourceTest, Raise_ReachesTheSubscriptionsThatMatch)
{
    Subscribe(m_sink, L"SELECT * FROM orvikBEvnt WHERE EventID = 3");
    Subscribe(m_other, L"SELECT * FROM orvikBEvnt WHERE EventID = 20");
    EXPECT_THAT(WmiEventSource::Raise("orvikBEvnt", {{"EventID", 3}}), ElementsAre(S_OK));
    EXPECT_THAT(WmiEventSource::Raise("orvikBEvnt", {{"EventID", {{"ui4", 20}}}}), ElementsAre(S_OK));
    EXPECT_THAT(WmiEventSource::Raise("orvikBEvnt", {{"EventID", 21}}), IsEmpty());
    EXPECT_THAT(WmiEventSource::Raise("orvikBEvnt", nlohmann::json::object()), IsEmpty());
    EXPECT_THAT(WmiEventSource::Raise("OtherClass", {{"EventID", 3}}), IsEmpty());
    EXPECT_THAT(m_sink.EventIds(), ElementsAre(3));
    EXPECT_THAT(m_other.EventIds(), ElementsAre(-2));
    EXPECT_EQ(LiveObjects::Count("WbemClassObject"), 0);
}

TEST_F(WmiEventSourceTest, Raise_KeepsNamespacesApart)
{
    m_spServices = Connect(L"root\\cimv2");
    Subscribe(m_sink, L"SELECT * FROM orvikBEvnt");
    EXPECT_THAT(WmiEventSource::Raise("orvikBEvnt", {{"EventID", 3}}), IsEmpty());
    EXPECT_THAT(
        WmiEventSource::Raise({.m_strClass = "orvikBEvnt", .m_lstObjects = {{}}, .m_strNamespace = "root\\cimv2"}),
        SizeIs(1));
}

TEST_F(WmiEventSourceTest, Raise_UsesAThreadWithoutAnApartmentOfItsOwn)
{
    Subscribe(m_sink, L"SELECT * FROM orvikBEvnt");
    EXPECT_THAT(WmiEventSource::Raise("orvikBEvnt", {}), SizeIs(1));
    OnThread(COINIT_MULTITHREADED, [] { EXPECT_THAT(WmiEventSource::Raise("orvikBEvnt", {}), SizeIs(1)); });
    const auto deliveries = m_sink.Deliveries();
    ASSERT_THAT(deliveries, SizeIs(2));
    EXPECT_NE(deliveries[0].m_dwThreadId, GetCurrentThreadId());
    EXPECT_EQ(deliveries[0].m_strApartment, "none");
    EXPECT_EQ(deliveries[1].m_strApartment, "implicit-mta");
}

TEST_F(WmiEventSourceTest, RaiseHere_StaysOnTheThread)
{
    Subscribe(m_sink, L"SELECT * FROM orvikBEvnt");
    EXPECT_THAT(WmiEventSource::RaiseHere({.m_strClass = "orvikBEvnt", .m_lstObjects = {{}}}), ElementsAre(S_OK));
    EXPECT_EQ(m_sink.Deliveries().at(0).m_dwThreadId, GetCurrentThreadId());
}

TEST_F(WmiEventSourceTest, Batch_KeepsOrderAndNullEntries)
{
    Subscribe(m_sink, L"SELECT * FROM orvikBEvnt WHERE EventID = 3");
    const nlohmann::json three = {{"EventID", 3}};
    EXPECT_THAT(WmiEventSource::Raise(
                    {.m_strClass = "orvikBEvnt", .m_lstObjects = {nullptr, three, {{"EventID", 9}}, nullptr}}),
                ElementsAre(S_OK));
    EXPECT_THAT(m_sink.Deliveries(), SizeIs(1));
    EXPECT_THAT(m_sink.EventIds(), ElementsAre(-1, 3, 9, -1));
}

TEST_F(WmiEventSourceTest, Batch_MayBeMatchedByAnIdThatItDoesNotCarry)
{
    Subscribe(m_sink, L"SELECT * FROM orvikBEvnt WHERE EventID = 3");
    EXPECT_THAT(WmiEventSource::Raise({.m_strClass = "orvikBEvnt", .m_lstObjects = {nullptr}, .m_nEventId = 3}),
                SizeIs(1));
    EXPECT_THAT(WmiEventSource::Raise({.m_strClass = "orvikBEvnt", .m_lstObjects = {}, .m_nEventId = 3}), SizeIs(1));
    EXPECT_THAT(m_sink.EventIds(), ElementsAre(-1));
}

TEST_F(WmiEventSourceTest, Journal_TellsWhatWasRaisedAndDelivered)
{
    Subscribe(m_sink, L"SELECT * FROM orvikBEvnt WHERE EventID = 3");
    m_sink.m_action = [] { return E_FAIL; };
    EXPECT_THAT(WmiEventSource::Raise("orvikBEvnt", {{"EventID", 3}}), ElementsAre(E_FAIL));
    EXPECT_EQ(LastDetails("wmi", "raised"),
              nlohmann::json({{"class", "orvikBEvnt"}, {"event-id", 3}, {"objects", 1}, {"subscriptions", 1}}));
    EXPECT_EQ(LastDetails("wmi", "delivered"),
              nlohmann::json({{"class", "orvikBEvnt"}, {"event-id", 3}, {"hr", "0x80004005"}}));
}

TEST_F(WmiEventSourceTest, SendStatus_ReachesEverySubscription)
{
    Subscribe(m_sink, L"SELECT * FROM orvikBEvnt");
    Subscribe(m_other, L"SELECT * FROM OrvikBIOS_BIOSEvent");
    EXPECT_THAT(WmiEventSource::SendStatus(1, E_FAIL), ElementsAre(S_OK, S_OK));
    EXPECT_THAT(m_sink.Statuses(), ElementsAre("1:0x80004005"));
    EXPECT_THAT(m_other.Statuses(), ElementsAre("1:0x80004005"));
}

TEST_F(WmiEventSourceTest, RunningDelivery_DoesNotWaitForTheSink)
{
    Subscribe(m_sink, L"SELECT * FROM orvikBEvnt");
    const UniqueHandle go(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    m_sink.m_action = [&go]
    {
        WaitForSingleObject(go.get(), INFINITE);
        return S_OK;
    };
    RunningDelivery delivery({.m_strClass = "orvikBEvnt", .m_lstObjects = {{}}});
    while (m_sink.Deliveries().empty())
        Sleep(1);
    EXPECT_FALSE(delivery.IsDone());
    SetEvent(go.get());
    EXPECT_THAT(delivery.Results(), ElementsAre(S_OK));
    EXPECT_TRUE(delivery.IsDone());
}

TEST_F(WmiEventSourceTest, Deliveries_RunAtTheSameTime)
{
    Subscribe(m_sink, L"SELECT * FROM orvikBEvnt");
    std::atomic<int> inside = 0;
    m_sink.m_action = [&]
    {
        // Returns only when both deliveries are in here.
        ++inside;
        while (inside < 2)
            Sleep(1);
        return S_OK;
    };
    EXPECT_THAT(WmiEventSource::RaiseFromThreads({.m_strClass = "orvikBEvnt", .m_lstObjects = {{}}}, 2, 1), SizeIs(2));
}

TEST_F(WmiEventSourceTest, RaiseFromThreads_DeliversEachEventOnceAndLeaksNothing)
{
    Subscribe(m_sink, L"SELECT * FROM orvikBEvnt WHERE EventID = 3");
    const auto results =
        WmiEventSource::RaiseFromThreads({.m_strClass = "orvikBEvnt", .m_lstObjects = {{{"EventID", 3}}}}, 4, 50);
    EXPECT_THAT(results, SizeIs(200));
    EXPECT_THAT(results, Each(S_OK));
    EXPECT_THAT(m_sink.EventIds(), SizeIs(200));
    std::set<DWORD> threads;
    for (const auto& delivery : m_sink.Deliveries())
        threads.insert(delivery.m_dwThreadId);
    EXPECT_EQ(threads.size(), 4u);
    EXPECT_EQ(LiveObjects::Count("WbemClassObject"), 0);
    EXPECT_EQ(m_sink.References(), 2u);
}

TEST_F(WmiEventSourceTest, Cancel_DuringADeliveryLetsItFinish)
{
    Subscribe(m_sink, L"SELECT * FROM orvikBEvnt");
    const UniqueHandle go(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    m_sink.m_action = [&go]
    {
        WaitForSingleObject(go.get(), INFINITE);
        return S_OK;
    };
    RunningDelivery delivery({.m_strClass = "orvikBEvnt", .m_lstObjects = {{}}});
    while (m_sink.Deliveries().empty())
        Sleep(1);
    EXPECT_EQ(m_spServices->CancelAsyncCall(&m_sink), S_OK);
    EXPECT_EQ(m_sink.References(), 2u);
    SetEvent(go.get());
    EXPECT_THAT(delivery.Results(), ElementsAre(S_OK));
    EXPECT_EQ(m_sink.References(), 1u);
}

TEST_F(WmiEventSourceTest, SubscribingWhileEventsAreRaised_IsSafe)
{
    std::atomic<bool> stop = false;
    std::thread raiser(
        [&]
        {
            while (!stop)
                static_cast<void>(
                    WmiEventSource::RaiseHere({.m_strClass = "orvikBEvnt", .m_lstObjects = {{{"EventID", 3}}}}));
        });
    for (int time = 0; time != 200; ++time)
    {
        Subscribe(m_sink, L"SELECT * FROM orvikBEvnt WHERE EventID = 3");
        EXPECT_EQ(m_spServices->CancelAsyncCall(&m_sink), S_OK);
    }
    stop = true;
    raiser.join();
    EXPECT_EQ(m_sink.References(), 1u);
    EXPECT_EQ(m_sink.Statuses().size(), 200u);
}
} // namespace
} // namespace Simulator
