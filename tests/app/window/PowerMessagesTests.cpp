#include "tests/app/window/WindowMessageTest.h"
#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;
using Tests::DoneCalls;
using TestSupport::LogLines;

namespace
{
constexpr const wchar_t* g_suspended = L"Verbose|WM_POWERBROADCAST wParam: 4";
constexpr const wchar_t* g_resumed = L"Verbose|WM_POWERBROADCAST wParam: 7";
constexpr const wchar_t* g_resumedByItself = L"Verbose|WM_POWERBROADCAST wParam: 18";
constexpr const wchar_t* g_showing =
    L"Verbose|Get and Show message for any USBC event that might occur while system is sleeping";
constexpr const wchar_t* g_adapter = L"Verbose|check smart adapter status";

constexpr const wchar_t* g_veritor = L"Verbose|log any new Veritor log occurred while system is sleeping";
constexpr const char* g_copy = "ThreadProcVeritorLogging 0";
constexpr const char* g_copyFunction = "Notifications::OrvikWmiEvents::COrvikWmiEvents::ProcessVeritorLog";

using PowerMessageTest = Tests::WindowMessageTest;
} // namespace

TEST_F(PowerMessageTest, Resume_ChecksEverythingAfterASecond)
{
    MakeHub();
    MakeHandler("8A11", true);
    EXPECT_EQ(Send(WM_POWERBROADCAST, PBT_APMRESUMEAUTOMATIC), 0);
    EXPECT_THAT(LogLines("WndProc"), ElementsAre(g_resumedByItself, g_showing, g_adapter, g_veritor));
    EXPECT_THAT(DoneCalls(), ElementsAre("Sleep 1000", "Platform.USBC.Messages 255", "VerifyVersionInfoW",
                                         "SmartAdapter.Status", g_copy, "SetForegroundWindow"));
    EXPECT_THAT(m_system.m_lstLinesAtSleep, ElementsAre(ElementsAre(g_resumedByItself)));
    EXPECT_EQ(m_system.m_hwndForeground, m_hwnd);
    EXPECT_THAT(ToastTexts(), ElementsAre(MessageOfWmi));
    EXPECT_THAT(m_system.m_lstHandedOn, IsEmpty());
}

TEST_F(PowerMessageTest, Resume_AcpiMachine_ShowsPortZero)
{
    MakeHub();
    MakeHandler("8042", true);
    EXPECT_EQ(Send(WM_POWERBROADCAST, PBT_APMRESUMESUSPEND), 0);
    EXPECT_THAT(LogLines("WndProc"), ElementsAre(g_resumed, g_showing, g_adapter, g_veritor));
    EXPECT_THAT(DoneCalls(), ElementsAre("Sleep 1000", "Platform.USBC.Messages 0", "VerifyVersionInfoW",
                                         "SmartAdapter.Status", g_copy, "SetForegroundWindow"));
    EXPECT_THAT(ToastTexts(), ElementsAre(MessageOfAcpi));
}

TEST_F(PowerMessageTest, Resume_WithoutUsbCSupport_AsksForNoMessages)
{
    MakeHub();
    MakeHandler("8A11", false);
    EXPECT_EQ(Send(WM_POWERBROADCAST, PBT_APMRESUMESUSPEND), 0);
    EXPECT_THAT(LogLines("WndProc"), ElementsAre(g_resumed, g_showing, g_adapter, g_veritor));
    EXPECT_THAT(DoneCalls(),
                ElementsAre("Sleep 1000", "VerifyVersionInfoW", "SmartAdapter.Status", g_copy, "SetForegroundWindow"));
    EXPECT_THAT(Toasts(), IsEmpty());
}

TEST_F(PowerMessageTest, Resume_BeforeWindows8_LeavesTheAdapterAloneAndCopiesTheAuditLog)
{
    MakeHub();
    MakeHandler("8A11", true);
    m_system.m_bIsVersion = FALSE;
    EXPECT_EQ(Send(WM_POWERBROADCAST, PBT_APMRESUMESUSPEND), 0);
    EXPECT_THAT(LogLines("WndProc"), ElementsAre(g_resumed, g_showing, g_veritor));
    EXPECT_THAT(DoneCalls(), ElementsAre("Sleep 1000", "Platform.USBC.Messages 255", "VerifyVersionInfoW", g_copy,
                                         "SetForegroundWindow"));
}

TEST_F(PowerMessageTest, Resume_WithoutHub_WaitsShowsAndComesToTheForeground)
{
    MakeHandler("8A11", true);
    EXPECT_EQ(Send(WM_POWERBROADCAST, PBT_APMRESUMESUSPEND), 0);
    EXPECT_THAT(LogLines("WndProc"), ElementsAre(g_resumed, g_showing));
    EXPECT_THAT(DoneCalls(), ElementsAre("Sleep 1000", "Platform.USBC.Messages 255", "SetForegroundWindow"));
    EXPECT_THAT(ToastTexts(), ElementsAre(MessageOfWmi));
}

TEST_F(PowerMessageTest, Resume_BeforeTheInstancesExist_WaitsAndComesToTheForeground)
{
    EXPECT_EQ(Send(WM_POWERBROADCAST, PBT_APMRESUMESUSPEND), 0);
    EXPECT_THAT(LogLines("WndProc"), ElementsAre(g_resumed, g_showing));
    EXPECT_THAT(DoneCalls(), ElementsAre("Sleep 1000", "SetForegroundWindow"));
}

TEST_F(PowerMessageTest, Resume_ShowsInSpiteOfThePolicies)
{
    MakeHandler("8A11", true);
    for (const wchar_t* const value : {L"SuppressAllNotifications", L"SuppressUsbCNotifications"})
    {
        const TestSupport::SuppressPolicy suppress(value);
        g_bResumeHandled = false;
        EXPECT_EQ(Send(WM_POWERBROADCAST, PBT_APMRESUMESUSPEND), 0);
        EXPECT_THAT(ToastTexts(), ElementsAre(MessageOfWmi));
    }
}

TEST_F(PowerMessageTest, Resume_CopyIsSuppressed_StartsNoThreadAndComesToTheForeground)
{
    MakeHub();
    for (const wchar_t* const value : {L"SuppressAllLoggings", L"SuppressVeritorLoggings"})
    {
        const TestSupport::SuppressPolicy suppress(value);
        g_bResumeHandled = false;
        EXPECT_EQ(Send(WM_POWERBROADCAST, PBT_APMRESUMESUSPEND), 0);
        EXPECT_THAT(LogLines("WndProc"), ElementsAre(g_resumed, g_showing, g_adapter, g_veritor));
        EXPECT_THAT(LogLines(g_copyFunction),
                    ElementsAre(L"TraceIn|", L"Verbose|Loggings are suppressed.", L"TraceOut|"));
        EXPECT_THAT(DoneCalls(),
                    ElementsAre("Sleep 1000", "VerifyVersionInfoW", "SmartAdapter.Status", "SetForegroundWindow"));
    }
}

TEST_F(PowerMessageTest, Resume_ThreadOfTheCopyIsRefused_IsLoggedAndTheWindowComesToTheForeground)
{
    MakeHub();
    m_system.m_bRefusesThread = true;
    EXPECT_EQ(Send(WM_POWERBROADCAST, PBT_APMRESUMESUSPEND), 0);
    EXPECT_THAT(LogLines(g_copyFunction),
                ElementsAre(L"TraceIn|", testing::StartsWith(L"Error|CreateThread failed (0x"), L"TraceOut|"));
    EXPECT_THAT(DoneCalls(),
                ElementsAre("Sleep 1000", "VerifyVersionInfoW", "SmartAdapter.Status", g_copy, "SetForegroundWindow"));
}

TEST_F(PowerMessageTest, TwoResumes_OneRound_TheThirdNone)
{
    MakeHub();
    MakeHandler("8A11", true);
    Send(WM_POWERBROADCAST, PBT_APMRESUMEAUTOMATIC);
    EXPECT_TRUE(g_bResumeHandled);
    for (const WPARAM event : {PBT_APMRESUMESUSPEND, PBT_APMRESUMEAUTOMATIC})
    {
        EXPECT_EQ(Send(WM_POWERBROADCAST, event), 0);
        EXPECT_THAT(LogLines(), ElementsAre(L"Verbose|WndProc|WM_POWERBROADCAST wParam: " + std::to_wstring(event)));
        EXPECT_THAT(Calls(), IsEmpty());
        EXPECT_TRUE(g_bResumeHandled);
    }
}

TEST_F(PowerMessageTest, Suspend_MakesTheNextResumeCount)
{
    MakeHandler("8A11", true);
    Send(WM_POWERBROADCAST, PBT_APMRESUMESUSPEND);
    EXPECT_EQ(Send(WM_POWERBROADCAST, PBT_APMSUSPEND), 0);
    EXPECT_THAT(LogLines(), ElementsAre(L"Verbose|WndProc|WM_POWERBROADCAST wParam: 4"));
    EXPECT_THAT(Calls(), IsEmpty());
    EXPECT_FALSE(g_bResumeHandled);
    EXPECT_EQ(Send(WM_POWERBROADCAST, PBT_APMRESUMEAUTOMATIC), 0);
    EXPECT_THAT(LogLines("WndProc"), ElementsAre(g_resumedByItself, g_showing));
    EXPECT_THAT(DoneCalls(), ElementsAre("Sleep 1000", "Platform.USBC.Messages 255", "SetForegroundWindow"));
    EXPECT_EQ(Send(WM_POWERBROADCAST, PBT_APMRESUMESUSPEND), 0);
    EXPECT_THAT(Calls(), IsEmpty());
}

TEST_F(PowerMessageTest, TwoSuspends_StillOneRound)
{
    MakeHandler("8A11", true);
    Send(WM_POWERBROADCAST, PBT_APMSUSPEND);
    EXPECT_EQ(Send(WM_POWERBROADCAST, PBT_APMSUSPEND), 0);
    EXPECT_THAT(LogLines("WndProc"), ElementsAre(g_suspended));
    Send(WM_POWERBROADCAST, PBT_APMRESUMEAUTOMATIC);
    EXPECT_THAT(ToastTexts(), ElementsAre(MessageOfWmi));
    Send(WM_POWERBROADCAST, PBT_APMRESUMESUSPEND);
    EXPECT_THAT(Toasts(), IsEmpty());
}

TEST_F(PowerMessageTest, OtherEvents_AreAnsweredAndNothingElse)
{
    MakeHub();
    MakeHandler("8A11", true);
    for (const WPARAM event : {WPARAM{0}, WPARAM{PBT_APMRESUMECRITICAL}, WPARAM{9}, WPARAM{PBT_APMPOWERSTATUSCHANGE},
                               WPARAM{PBT_POWERSETTINGCHANGE}, WPARAM{0x100000007}})
    {
        EXPECT_EQ(Send(WM_POWERBROADCAST, event), 0);
        EXPECT_TRUE(TestSupport::NothingLogged());
        EXPECT_THAT(Calls(), IsEmpty());
        EXPECT_THAT(m_system.m_lstHandedOn, IsEmpty());
        EXPECT_FALSE(g_bResumeHandled);
    }
}

TEST_F(PowerMessageTest, Resume_FirmwareRefuses_TheRestIsDoneAndTheNextResumeShowsAgain)
{
    MakeHub();
    MakeHandler("8A11", true);
    Simulator::CallPlan::Instance().Reset();
    Fail("SmartAdapter.Status", E_FAIL);
    Tests::MachineTest::StartWatching();
    Simulator::CallPlan::Instance().Fail("IPlixCommand::ExecuteWithInput", E_FAIL, 1, Simulator::Repeat::Once);
    EXPECT_EQ(WndProc(m_hwnd, WM_POWERBROADCAST, PBT_APMRESUMESUSPEND, 0), 0);
    EXPECT_THAT(LogLines("WndProc"), ElementsAre(g_resumed, g_showing, g_adapter, g_veritor));
    EXPECT_THAT(DoneCalls(), ElementsAre("Sleep 1000", "Platform.USBC.Messages 255", "VerifyVersionInfoW",
                                         "SmartAdapter.Status", g_copy, "SetForegroundWindow"));
    EXPECT_THAT(Toasts(), IsEmpty());
    Send(WM_POWERBROADCAST, PBT_APMSUSPEND);
    Send(WM_POWERBROADCAST, PBT_APMRESUMESUSPEND);
    EXPECT_THAT(ToastTexts(), ElementsAre(MessageOfWmi));
}
