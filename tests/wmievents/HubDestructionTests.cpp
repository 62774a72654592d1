#include "app/ProcessInstances.h"
#include "shared/LogLevel.h"
#include "simulator/doubles/WmiEventSource.h"
#include "simulator/model/Facts.h"
#include "simulator/model/LiveObjects.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/support/LogCapture.h"
#include "tests/wmievents/MachineTest.h"
#include "wmievents/OrvikWmiEvents.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>

using Notifications::OrvikWmiEvents::COrvikWmiEvents;
using Simulator::CallPlan;
using Simulator::LiveObjects;
using testing::ElementsAre;
using testing::IsEmpty;
using Tests::Hr;

namespace
{
constexpr HRESULT g_hrFailure = static_cast<HRESULT>(0x800706BA);

class HubDestructionTest : public Tests::MachineTest
{
protected:
    // Both registrations reach the given call, which fails, and the hub is destroyed.
    void DestroyAfterFailuresOf(const char* call)
    {
        SCOPED_TRACE(call);
        auto hub = std::make_unique<COrvikWmiEvents>();
        StartWatching();
        CallPlan::Instance().Fail(call, g_hrFailure, 1, Simulator::Repeat::Always);
        EXPECT_EQ(hub->RegisterSmartAdapterEvent(L""), g_hrFailure);
        EXPECT_EQ(hub->RegisterGPIOWMIEvent(), g_hrFailure);
        EXPECT_EQ(CallPlan::Instance().FailedCount(), 2u);
        StartWatching();
        hub.reset();
    }

    // In an order that is not that of the end.
    static void RegisterAll(COrvikWmiEvents& hub, HRESULT hr)
    {
        EXPECT_EQ(hub.RegisterGPIOWMIEvent(), hr);
        EXPECT_EQ(hub.RegisterFirmwareRuntimeWMIEvent(), hr);
        EXPECT_EQ(hub.RegisterPrivacyPanelWMIEvent(), hr);
        EXPECT_EQ(hub.RegisterVeritorEvent(L"C:\\ORVR.ico"), hr);
        EXPECT_EQ(hub.RegisterFirmwareWMIEvent(), hr);
        EXPECT_EQ(hub.RegisterUSBCWMIEvent(L"C:\\Orvik.ico"), hr);
        EXPECT_EQ(hub.RegisterSmartAdapterEvent(L"C:\\Orvik.ico"), hr);
    }
};

// Whether COM had been left when the hub's critical sections were deleted.
std::vector<bool> g_lstWasComLeft;

void WINAPI NotedDeleteCriticalSection(LPCRITICAL_SECTION)
{
    g_lstWasComLeft.push_back(CallPlan::Instance().CallCount("CoUninitialize") == 1);
}
} // namespace

TEST_F(HubDestructionTest, RegistrationsFailedBeforeTheStub_MakesNoWmiCallAndReleasesAll)
{
    for (const char* call :
         {"IWbemLocator::ConnectServer", "CoSetProxyBlanket", "IUnsecuredApartment::CreateObjectStub"})
    {
        DestroyAfterFailuresOf(call);
        EXPECT_THAT(Calls(), ElementsAre("CoUninitialize")) << call;
        EXPECT_THAT(LiveObjects::All(), IsEmpty()) << call;
    }
}

TEST_F(HubDestructionTest, QueriesWereRefused_CancelsThem)
{
    DestroyAfterFailuresOf("IWbemServices::ExecNotificationQueryAsync");
    EXPECT_THAT(Calls(),
                ElementsAre("IWbemServices::CancelAsyncCall", "IWbemServices::CancelAsyncCall", "CoUninitialize"));
    EXPECT_THAT(LiveObjects::All(), IsEmpty());
}

TEST_F(HubDestructionTest, Replaced_OldSubscriptionsAreCancelledBeforeTheNewHubIsMade)
{
    ProcessInstance<COrvikWmiEvents> place;
    COrvikWmiEvents& hub = place.Create();
    ASSERT_EQ(hub.RegisterSmartAdapterEvent(L""), S_OK);
    ASSERT_EQ(hub.RegisterGPIOWMIEvent(), S_OK);
    StartWatching();
    place.Create();
    EXPECT_THAT(Calls(), ElementsAre("IWbemServices::CancelAsyncCall", "IWbemServices::CancelAsyncCall",
                                     "CoUninitialize", "CoInitialize"));
    EXPECT_THAT(LiveObjects::All(), IsEmpty());
    place.Destroy();
}

TEST_F(HubDestructionTest, EverySubscription_IsCancelledInItsOrder)
{
    auto hub = std::make_unique<COrvikWmiEvents>();
    RegisterAll(*hub, S_OK);
    ASSERT_EQ(Simulator::WmiEventSource::SubscriptionCount(), 7u);
    StartWatching();
    hub.reset();
    std::vector<nlohmann::json> cancelled;
    for (const auto& entry : Simulator::Journal::Instance().Entries())
    {
        if (entry.m_strSubject == "cancelled")
            cancelled.push_back(entry.m_details.at("event-id"));
    }
    EXPECT_THAT(cancelled, ElementsAre(3, 131074, 131073, 21, 20, 33, nullptr));
    EXPECT_EQ(Calls().back(), "CoUninitialize");
    EXPECT_EQ(Calls().size(), 8u);
    EXPECT_THAT(LiveObjects::All(), IsEmpty());
}

TEST_F(HubDestructionTest, EveryRegistrationFailed_MakesNoWmiCall)
{
    auto hub = std::make_unique<COrvikWmiEvents>();
    Simulator::Facts::Instance().Set("/platform/registered", false);
    RegisterAll(*hub, REGDB_E_CLASSNOTREG);
    StartWatching();
    hub.reset();
    EXPECT_THAT(Calls(), ElementsAre("CoUninitialize"));
    EXPECT_THAT(LiveObjects::All(), IsEmpty());
}

TEST_F(HubDestructionTest, CriticalSections_AreDeletedAfterComWasLeft)
{
    auto hub = std::make_unique<COrvikWmiEvents>();
    StartWatching();
    {
        const Simulator::Redirection<decltype(DeleteCriticalSection)> noted("DeleteCriticalSection",
                                                                            &NotedDeleteCriticalSection);
        g_lstWasComLeft.clear();
        hub.reset();
    }
    EXPECT_THAT(g_lstWasComLeft, ElementsAre(true, true, true));
}

TEST_F(HubDestructionTest, Members_EndBehindTheDestructorThePublicSubscriptionFirst)
{
    auto hub = std::make_unique<COrvikWmiEvents>();
    ASSERT_EQ(hub->RegisterSmartAdapterEvent(L""), S_OK);
    ASSERT_EQ(hub->RegisterGPIOWMIEvent(), S_OK);
    StartWatching();
    hub.reset();
    auto lines = TestSupport::LogLines();
    std::erase_if(lines, [](const std::wstring& line) { return line.find(L"::~") == std::wstring::npos; });
    EXPECT_THAT(lines, ElementsAre(L"TraceIn|Notifications::OrvikWmiEvents::COrvikWmiEvents::~COrvikWmiEvents|",
                                   L"TraceOut|Notifications::OrvikWmiEvents::COrvikWmiEvents::~COrvikWmiEvents|",
                                   L"TraceIn|Notifications::OrvikWmiEvents::PublicWmiEvent::~PublicWmiEvent|",
                                   L"TraceOut|Notifications::OrvikWmiEvents::PublicWmiEvent::~PublicWmiEvent|",
                                   L"TraceIn|Notifications::OrvikWmiEvents::WmiEvent::~WmiEvent|",
                                   L"TraceOut|Notifications::OrvikWmiEvents::WmiEvent::~WmiEvent|"));
}
