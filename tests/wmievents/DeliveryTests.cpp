#include "shared/LogLevel.h"
#include "shared/OwnerTypes.h"
#include "simulator/doubles/JournalText.h"
#include "simulator/doubles/ObjectIdentity.h"
#include "simulator/doubles/WmiDelivery.h"
#include "simulator/doubles/WmiEventSource.h"
#include "simulator/model/Facts.h"
#include "simulator/model/LiveObjects.h"
#include "tests/support/LogCapture.h"
#include "tests/wmievents/FailingBstr.h"
#include "tests/wmievents/SubscriptionKinds.h"

#include <gmock/gmock.h>

#include <atomic>
#include <set>

using Orvik::Shared::UniqueHandle;
using Simulator::WmiEventSource;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

namespace Tests
{
namespace
{
bool HasSubject(const char* subject)
{
    const auto subjects = Simulator::Journal::Instance().Subjects("wmi");
    return std::find(subjects.begin(), subjects.end(), subject) != subjects.end();
}
} // namespace

template <class Kind>
class DeliveryTest : public SubscriptionTest<Kind>
{
protected:
    DeliveryTest() { EXPECT_EQ(this->Register(), S_OK); }

    static Simulator::WmiEventBatch Batch()
    {
        return {.m_strClass = Kind::EventClass, .m_lstObjects = {Kind::Event()}};
    }
};

TYPED_TEST_SUITE(DeliveryTest, SubscriptionKinds);

TYPED_TEST(DeliveryTest, Event_WhileTheMainThreadDoesNotPump_IsHandledOnTheDeliveringThread)
{
    // The main thread waits inside Raise and dispatches nothing meanwhile; the message behind it stays in the queue.
    PostThreadMessageW(GetCurrentThreadId(), WM_APP, 0, 0);
    EXPECT_THAT(WmiEventSource::Raise(this->Batch()), ElementsAre(S_OK));
    ASSERT_EQ(this->m_hub.Calls().size(), 1u);
    EXPECT_NE(this->m_hub.Calls()[0].m_dwThreadId, GetCurrentThreadId());
    MSG message{};
    EXPECT_TRUE(PeekMessageW(&message, nullptr, WM_APP, WM_APP, PM_REMOVE));
}

TYPED_TEST(DeliveryTest, Handler_RunsInTheMultithreadedApartment)
{
    std::string apartment;
    this->m_hub.m_onCall = [&] { apartment = Simulator::ApartmentText(); };
    WmiEventSource::Raise(this->Batch());
    EXPECT_EQ(apartment, "implicit-mta");
    EXPECT_FALSE(HasSubject("disconnected"));
}

TYPED_TEST(DeliveryTest, SeveralThreads_HandlersRunAtTheSameTime)
{
    std::atomic<int> inside = 0;
    const UniqueHandle bothInside(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    this->m_hub.m_onCall = [&]
    {
        if (++inside == 2)
            SetEvent(bothInside.get());
        EXPECT_EQ(WaitForSingleObject(bothInside.get(), 10'000), WAIT_OBJECT_0);
    };
    WmiEventSource::RaiseFromThreads(this->Batch(), 2, 1);
    EXPECT_EQ(inside, 2);
}

TYPED_TEST(DeliveryTest, ManyEventsFromManyThreads_EachIsHandledOnce)
{
    Simulator::ObjectIdentity::JournalReferences(false);
    EXPECT_THAT(WmiEventSource::RaiseFromThreads(this->Batch(), 4, 50), Each(S_OK));
    const auto calls = this->m_hub.Calls();
    EXPECT_EQ(calls.size(), 200u);
    std::set<DWORD> threads;
    for (const auto& call : calls)
        threads.insert(call.m_dwThreadId);
    EXPECT_EQ(threads.size(), 4u);
    EXPECT_EQ(threads.count(GetCurrentThreadId()), 0u);
}

TYPED_TEST(DeliveryTest, MemoryRunsOut_ErrorLeavesIndicateAndTheNextEventIsHandled)
{
    {
        const FailingBstr noMemory(1);
        EXPECT_THAT(WmiEventSource::Raise(this->Batch()), ElementsAre(RPC_E_SERVERFAULT));
    }
    EXPECT_TRUE(HasSubject("exception"));
    EXPECT_THAT(this->m_hub.Calls(), IsEmpty());
    EXPECT_THAT(WmiEventSource::Raise(this->Batch()), ElementsAre(S_OK));
    EXPECT_EQ(this->m_hub.Calls().size(), 1u);
}

TYPED_TEST(DeliveryTest, Cancellation_FinalStatusChangesNothing)
{
    EXPECT_EQ(this->m_subscription.Unregister(), S_OK);
    EXPECT_EQ(TestSupport::LogCount(Orvik::Shared::Level::TraceIn, std::string(TypeParam::Sink) + "::SetStatus",
                                    L"hResult: 0x80041032, lFlags: 0x00000000 (WBEM_STATUS_COMPLETE)"),
              1u);
    WmiEventSource::Raise(this->Batch());
    EXPECT_THAT(this->m_hub.Calls(), IsEmpty());
}

TYPED_TEST(DeliveryTest, Cancellation_StatusComesLate_SinkIsStillThere)
{
    Simulator::Facts::Instance().Set("/wmi/status-after-cancel", "later");
    EXPECT_EQ(this->m_subscription.Unregister(), S_OK);
    Simulator::FinishLateStatusCalls();
    EXPECT_EQ(TestSupport::LogCount(Orvik::Shared::Level::TraceIn, std::string(TypeParam::Sink) + "::SetStatus",
                                    L"hResult: 0x80041032, lFlags: 0x00000000 (WBEM_STATUS_COMPLETE)"),
              1u);
    EXPECT_THAT(Simulator::LiveObjects::All(), IsEmpty());
}

TYPED_TEST(DeliveryTest, Cancellation_DuringADelivery_DeliveryEndsNormally)
{
    const UniqueHandle entered(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const UniqueHandle leave(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    this->m_hub.m_onCall = [&]
    {
        SetEvent(entered.get());
        WaitForSingleObject(leave.get(), 10'000);
    };
    Simulator::RunningDelivery delivery(this->Batch());
    EXPECT_EQ(WaitForSingleObject(entered.get(), 10'000), WAIT_OBJECT_0);
    EXPECT_EQ(this->m_subscription.Unregister(), S_OK);
    SetEvent(leave.get());
    EXPECT_THAT(delivery.Results(), ElementsAre(S_OK));
}

TYPED_TEST(DeliveryTest, Status_WhileRegistered_IsOnlyTraced)
{
    EXPECT_THAT(WmiEventSource::SendStatus(1, S_OK), ElementsAre(S_OK));
    EXPECT_THAT(TestSupport::LogLines(std::string(TypeParam::Sink) + "::SetStatus"),
                ElementsAre(L"TraceIn|hResult: 0x00000000, lFlags: 0x00000001 (?)"));
    WmiEventSource::Raise(this->Batch());
    EXPECT_EQ(this->m_hub.Calls().size(), 1u);
}
} // namespace Tests
