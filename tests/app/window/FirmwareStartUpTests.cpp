#include "app/FirmwareStartUp.h"

#include "simulator/doubles/WmiEventSource.h"
#include "simulator/model/Facts.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/app/window/WindowMessageTest.h"
#include "tests/support/LogCapture.h"
#include "tests/wmievents/EmptyHandedCommand.h"

#include <gmock/gmock.h>

#include <cstdio>

using Simulator::CallPlan;
using Simulator::Redirection;
using Simulator::WmiEventSource;
using testing::ElementsAre;
using testing::IsEmpty;
using Tests::DoneCalls;
using Tests::Hr;
using TestSupport::LogLines;

namespace
{
constexpr const char* g_veritor = "SELECT * FROM orvikBEvnt WHERE EventID = 131074";
constexpr const char* g_firmware = "SELECT * FROM orvikBEvnt WHERE EventID = 21";
constexpr const char* g_privacyPanel = "SELECT * FROM orvikBEvnt WHERE EventID = 20";
constexpr const char* g_runtime = "SELECT * FROM orvikBEvnt WHERE EventID = 33";
constexpr const char* g_public = "SELECT * FROM OrvikBIOS_BIOSEvent";
constexpr const char* g_scan = "ThreadProcCreateHashKeysForVeritorEventLogs 0";
constexpr const char* g_copy = "ThreadProcVeritorLogging 1";
constexpr const wchar_t* g_passed =
    L"Verbose|RegisterVeritorEvent passed.  Get current log data from BIOS and log to Windows event viewer.";

std::vector<std::wstring> g_lstOpened;
std::vector<ULONG_PTR> g_lstResources;

FILE* NoFile(const wchar_t* path, const wchar_t*)
{
    g_lstOpened.emplace_back(path);
    return nullptr;
}

HRSRC WINAPI NoResource(HMODULE, LPCWSTR name, LPCWSTR)
{
    g_lstResources.push_back(reinterpret_cast<ULONG_PTR>(name));
    return nullptr;
}

class FirmwareStartUpTest : public Tests::WindowMessageTest
{
protected:
    FirmwareStartUpTest()
    {
        MakeHub();
        StartWatching();
    }

    static void Register() { RegisterFirmwareEvents("wWinMain", *g_pWmiHandler.Get()); }

    // What was done, but for the starts of threads that subscriptions make.
    static std::vector<std::string> Done()
    {
        auto done = DoneCalls();
        std::erase(done, "CreateThread");
        return done;
    }

    // The first step ended without an audit log; the others were taken.
    static void ExpectTheOthersAlone()
    {
        EXPECT_THAT(Done(), ElementsAre(g_veritor, g_firmware, g_privacyPanel, g_runtime, g_public));
        EXPECT_THAT(LogLines("wWinMain"), IsEmpty());
        EXPECT_EQ(WmiEventSource::SubscriptionCount(), 4u);
    }
};
} // namespace

TEST_F(FirmwareStartUpTest, Registrations_InOrderWithScanThenCopyBehindTheFirst)
{
    Register();
    EXPECT_THAT(Done(), ElementsAre(g_veritor, g_scan, g_copy, g_firmware, g_privacyPanel, g_runtime, g_public));
    EXPECT_THAT(LogLines("wWinMain"), ElementsAre(g_passed));
    // Not yet when the scan is started, but before the copy is.
    EXPECT_THAT(m_system.m_lstLinesAtThread, ElementsAre(IsEmpty(), ElementsAre(g_passed)));
    EXPECT_EQ(WmiEventSource::SubscriptionCount(), 5u);
}

TEST_F(FirmwareStartUpTest, VeritorRegistration_Refused_NoScanAndNoCopyButTheOthers)
{
    CallPlan::Instance().Fail("IWbemServices::ExecNotificationQueryAsync", Hr(WBEM_E_ACCESS_DENIED));
    Register();
    ExpectTheOthersAlone();
    EXPECT_TRUE(TestSupport::Logged(Orvik::Shared::Level::Verbose,
                                    "Notifications::OrvikWmiEvents::COrvikWmiEvents::RegisterVeritorEvent",
                                    L"Failed to register for Veritor event, [hr:0x80041003]"));
}

TEST_F(FirmwareStartUpTest, NoPlatformLibrary_NothingIsStarted)
{
    Simulator::Facts::Instance().Set("/platform/registered", false);
    Register();
    EXPECT_THAT(Done(), IsEmpty());
    EXPECT_THAT(LogLines("wWinMain"), IsEmpty());
    EXPECT_EQ(WmiEventSource::SubscriptionCount(), 0u);
}

TEST_F(FirmwareStartUpTest, VeritorRegistration_SuccessWithoutASubscription_CopiesAllTheSame)
{
    const Tests::EmptyHandedCommand emptyHanded;
    StartWatching();
    Register();
    EXPECT_THAT(Done(), ElementsAre(g_scan, g_copy));
    EXPECT_THAT(LogLines("wWinMain"), ElementsAre(g_passed));
    EXPECT_EQ(WmiEventSource::SubscriptionCount(), 0u);
}

TEST_F(FirmwareStartUpTest, LaterRegistration_Refused_TheNextOnesAreMade)
{
    for (const unsigned nth : {2u, 3u, 4u, 5u})
    {
        MakeHub();
        StartWatching();
        CallPlan::Instance().Fail("IWbemServices::ExecNotificationQueryAsync", E_FAIL, nth);
        Register();
        EXPECT_THAT(Done(), ElementsAre(g_veritor, g_scan, g_copy, g_firmware, g_privacyPanel, g_runtime, g_public));
        EXPECT_EQ(WmiEventSource::SubscriptionCount(), 4u) << nth;
    }
}

TEST_F(FirmwareStartUpTest, LoggingsAreSuppressed_ScansButCopiesNothing)
{
    const TestSupport::SuppressPolicy suppress(L"SuppressVeritorLoggings");
    Register();
    EXPECT_THAT(Done(), ElementsAre(g_veritor, g_scan, g_firmware, g_privacyPanel, g_runtime, g_public));
    EXPECT_THAT(LogLines("wWinMain"), ElementsAre(g_passed));
    EXPECT_THAT(LogLines("Notifications::OrvikWmiEvents::COrvikWmiEvents::ProcessVeritorLog"),
                ElementsAre(L"TraceIn|", L"Verbose|Loggings are suppressed.", L"TraceOut|"));
}

TEST_F(FirmwareStartUpTest, ThreadsAreRefused_TheOtherRegistrationsAreMade)
{
    m_system.m_bRefusesThread = true;
    Register();
    EXPECT_THAT(Done(), ElementsAre(g_veritor, g_scan, g_copy, g_firmware, g_privacyPanel, g_runtime, g_public));
    EXPECT_EQ(WmiEventSource::SubscriptionCount(), 5u);
}

TEST_F(FirmwareStartUpTest, VeritorIcon_IsAskedForByItsFileAndItsNumber)
{
    g_lstOpened.clear();
    g_lstResources.clear();
    const Redirection<decltype(_wfopen)> noted("_wfopen", &NoFile);
    const Redirection<decltype(FindResourceW)> found("FindResourceW", &NoResource);
    Register();
    EXPECT_THAT(g_lstOpened, ElementsAre(testing::EndsWith(L"\\ORVR.ico")));
    EXPECT_THAT(g_lstResources, ElementsAre(136u));
    // It is not needed.
    EXPECT_EQ(WmiEventSource::SubscriptionCount(), 5u);
}
