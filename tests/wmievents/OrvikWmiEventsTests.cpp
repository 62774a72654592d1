#include "wmievents/OrvikWmiEvents.h"

#include "shared/LogLevel.h"
#include "simulator/model/Facts.h"
#include "simulator/model/LiveObjects.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/support/LogCapture.h"
#include "tests/support/PretendedModulePath.h"
#include "tests/wmievents/MachineTest.h"
#include "wmievents/WmiEventsState.h"

#include <gmock/gmock.h>

#include <memory>

using Notifications::OrvikWmiEvents::COrvikWmiEvents;
using Notifications::OrvikWmiEvents::GetSmartAdapterHelperPath;
using Simulator::CallPlan;
using Simulator::LiveObjects;
using Simulator::Redirection;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::LogLines;
using TestSupport::PretendedModulePath;

namespace
{
constexpr const char* Constructor = "Notifications::OrvikWmiEvents::COrvikWmiEvents::COrvikWmiEvents";
constexpr const char* Destructor = "Notifications::OrvikWmiEvents::COrvikWmiEvents::~COrvikWmiEvents";

using OrvikWmiEventsTest = Tests::MachineTest;

std::wstring HelperPathFor(const std::wstring& modulePath)
{
    const PretendedModulePath pretended(modulePath);
    return GetSmartAdapterHelperPath();
}

struct SectionCalls
{
    static inline std::vector<std::pair<std::string, LPCRITICAL_SECTION>> s_lstCalls;

    static void WINAPI Initialise(LPCRITICAL_SECTION section) { s_lstCalls.emplace_back("initialise", section); }
    static void WINAPI Delete(LPCRITICAL_SECTION section) { s_lstCalls.emplace_back("delete", section); }
};
} // namespace

TEST_F(OrvikWmiEventsTest, Constructor_InitialisesComAndTracesOnly)
{
    const COrvikWmiEvents hub;
    EXPECT_THAT(Calls(), ElementsAre("CoInitialize"));
    EXPECT_THAT(LogLines(Constructor), ElementsAre(L"TraceIn|", L"TraceOut|"));
    EXPECT_THAT(TestSupport::OperationalLines(), IsEmpty());
}

TEST_F(OrvikWmiEventsTest, Constructor_ComRefuses_GoesOn)
{
    CallPlan::Instance().Fail("CoInitialize", RPC_E_CHANGED_MODE);
    const COrvikWmiEvents hub;
    EXPECT_EQ(CallPlan::Instance().FailedCount(), 1u);
}

TEST_F(OrvikWmiEventsTest, CriticalSections_ExistFromConstructorToDestructor)
{
    using namespace Notifications::OrvikWmiEvents;
    {
        // The logger has one of its own, made with the first record.
        const COrvikWmiEvents warmUp;
    }
    SectionCalls::s_lstCalls.clear();
    {
        const Redirection<decltype(InitializeCriticalSection)> initialise("InitializeCriticalSection",
                                                                          &SectionCalls::Initialise);
        const Redirection<decltype(DeleteCriticalSection)> remove("DeleteCriticalSection", &SectionCalls::Delete);
        const COrvikWmiEvents hub;
    }
    EXPECT_THAT(SectionCalls::s_lstCalls,
                ElementsAre(std::pair("initialise", &g_csLogging), std::pair("initialise", &g_csScan),
                            std::pair("initialise", &g_csCopy), std::pair("delete", &g_csLogging),
                            std::pair("delete", &g_csScan), std::pair("delete", &g_csCopy)));
}

TEST_F(OrvikWmiEventsTest, Destructor_NothingRegistered_MakesNoWmiCall)
{
    auto hub = std::make_unique<COrvikWmiEvents>();
    StartWatching();
    hub.reset();
    EXPECT_THAT(Calls(), ElementsAre("CoUninitialize"));
    EXPECT_THAT(LogLines(Destructor), ElementsAre(L"TraceIn|", L"TraceOut|"));
}

TEST_F(OrvikWmiEventsTest, Destructor_AllRegistrationsFailed_MakesNoWmiCall)
{
    auto hub = std::make_unique<COrvikWmiEvents>();
    Simulator::Facts::Instance().Set("/platform/registered", false);
    EXPECT_EQ(hub->RegisterSmartAdapterEvent(L""), REGDB_E_CLASSNOTREG);
    EXPECT_EQ(hub->RegisterGPIOWMIEvent(), REGDB_E_CLASSNOTREG);
    StartWatching();
    hub.reset();
    EXPECT_THAT(Calls(), ElementsAre("CoUninitialize"));
    EXPECT_THAT(LiveObjects::All(), IsEmpty());
}

TEST_F(OrvikWmiEventsTest, Destructor_CancelsSmartAdapterThenPublicThenLeavesCom)
{
    auto hub = std::make_unique<COrvikWmiEvents>();
    ASSERT_EQ(hub->RegisterGPIOWMIEvent(), S_OK);
    ASSERT_EQ(hub->RegisterSmartAdapterEvent(L""), S_OK);
    StartWatching();
    hub.reset();
    EXPECT_THAT(Calls(),
                ElementsAre("IWbemServices::CancelAsyncCall", "IWbemServices::CancelAsyncCall", "CoUninitialize"));
    std::vector<std::string> cancelled;
    for (const auto& entry : Simulator::Journal::Instance().Entries())
    {
        if (entry.m_strSubject == "cancelled")
            cancelled.push_back(entry.m_details.at("class"));
    }
    EXPECT_THAT(cancelled, ElementsAre("orvikBEvnt", "OrvikBIOS_BIOSEvent"));
    EXPECT_THAT(LiveObjects::All(), IsEmpty());
}

TEST_F(OrvikWmiEventsTest, HelperPath_LiesBesideTheProgram)
{
    EXPECT_EQ(HelperPathFor(L"C:\\Program Files\\Orvik\\OrvikNotifications.exe"),
              L"C:\\Program Files\\Orvik\\orvikSmartAdapterHelp.exe");
    EXPECT_EQ(PretendedModulePath::AskedModule(), nullptr);
    EXPECT_EQ(PretendedModulePath::AskedCapacity(), 260u);
}

TEST_F(OrvikWmiEventsTest, HelperPath_OfAnOverlongPath_IsCutToTheBuffer)
{
    const std::wstring folder = L"C:\\" + std::wstring(240, L'f');
    EXPECT_EQ(HelperPathFor(folder + L"\\" + std::wstring(100, L'n') + L".exe"),
              folder + L"\\orvikSmartAdapterHelp.exe");
}

TEST_F(OrvikWmiEventsTest, HelperPath_WithoutBackslash_IsKeptWhole)
{
    EXPECT_EQ(HelperPathFor(L"agent.exe"), L"agent.exe\\orvikSmartAdapterHelp.exe");
    EXPECT_EQ(HelperPathFor(L""), L"\\orvikSmartAdapterHelp.exe");
}
