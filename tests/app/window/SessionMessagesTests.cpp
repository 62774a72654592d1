#include "tests/app/window/WindowMessageTest.h"
#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>

#include <utility>

using testing::ElementsAre;
using testing::IsEmpty;
using Tests::DoneCalls;
using TestSupport::LogLines;

namespace
{
constexpr const wchar_t* g_in = L"Verbose| In WTS_SESSION_LOGON/WTS_SESSION_UNLOCK";
constexpr const wchar_t* g_showing =
    L"Verbose|Show message for any USBC event that might occur while user is logged out";
constexpr const wchar_t* g_adapter = L"Verbose|show smart adapter event that might occur when user is logged out.";

std::wstring Changed(WPARAM change)
{
    return L"Verbose|WM_WTSSESSION_CHANGE wParam: " + std::to_wstring(change);
}

class SessionMessageTest : public Tests::WindowMessageTest, public testing::WithParamInterface<WPARAM>
{
};

INSTANTIATE_TEST_SUITE_P(LogonAndUnlock, SessionMessageTest, testing::Values(WTS_SESSION_LOGON, WTS_SESSION_UNLOCK),
                         [](const auto& kind)
                         { return kind.param == WTS_SESSION_LOGON ? std::string("Logon") : std::string("Unlock"); });

using OtherSessionMessageTest = Tests::WindowMessageTest;
} // namespace

TEST_P(SessionMessageTest, ShowsMessagesThenTheAdapter)
{
    MakeHub();
    MakeHandler("8A11", true);
    EXPECT_EQ(Send(WM_WTSSESSION_CHANGE, GetParam(), 1), 0);
    EXPECT_THAT(LogLines("WndProc"), ElementsAre(Changed(GetParam()), g_in, g_showing, g_adapter));
    EXPECT_THAT(DoneCalls(), ElementsAre("Platform.USBC.Messages 255", "VerifyVersionInfoW", "SmartAdapter.Status"));
    EXPECT_THAT(ToastTexts(), ElementsAre(MessageOfWmi));
    EXPECT_THAT(m_system.m_lstHandedOn, IsEmpty());
}

TEST_P(SessionMessageTest, AcpiMachine_ShowsPortZero)
{
    MakeHub();
    MakeHandler("8042", false);
    EXPECT_EQ(Send(WM_WTSSESSION_CHANGE, GetParam()), 0);
    EXPECT_THAT(DoneCalls(), ElementsAre("Platform.USBC.Messages 0", "VerifyVersionInfoW", "SmartAdapter.Status"));
    EXPECT_THAT(ToastTexts(), ElementsAre(MessageOfAcpi));
}

TEST_P(SessionMessageTest, BeforeWindows8_NothingOfTheAdapter)
{
    MakeHub();
    MakeHandler("8A11", true);
    m_system.m_bIsVersion = FALSE;
    EXPECT_EQ(Send(WM_WTSSESSION_CHANGE, GetParam()), 0);
    EXPECT_THAT(LogLines("WndProc"), ElementsAre(Changed(GetParam()), g_in, g_showing));
    EXPECT_THAT(DoneCalls(), ElementsAre("Platform.USBC.Messages 255", "VerifyVersionInfoW"));
}

TEST_P(SessionMessageTest, WithoutHub_SaysSo)
{
    MakeHandler("8A11", true);
    EXPECT_EQ(Send(WM_WTSSESSION_CHANGE, GetParam()), 0);
    EXPECT_THAT(LogLines("WndProc"),
                ElementsAre(Changed(GetParam()), g_in, g_showing, L"Verbose|g_pWmiHandler is null"));
    EXPECT_THAT(DoneCalls(), ElementsAre("Platform.USBC.Messages 255", "VerifyVersionInfoW"));
}

TEST_P(SessionMessageTest, BeforeWindows8WithoutHub_SaysNothing)
{
    m_system.m_bIsVersion = FALSE;
    EXPECT_EQ(Send(WM_WTSSESSION_CHANGE, GetParam()), 0);
    EXPECT_THAT(LogLines("WndProc"), ElementsAre(Changed(GetParam()), g_in, g_showing));
}

TEST_P(SessionMessageTest, BeforeTheInstancesExist_AsksForNothing)
{
    EXPECT_EQ(Send(WM_WTSSESSION_CHANGE, GetParam()), 0);
    EXPECT_THAT(LogLines("WndProc"),
                ElementsAre(Changed(GetParam()), g_in, g_showing, L"Verbose|g_pWmiHandler is null"));
    EXPECT_THAT(DoneCalls(), ElementsAre("VerifyVersionInfoW"));
}

TEST_P(SessionMessageTest, EachTimeAnew_WithoutOldMessages)
{
    MakeHandler("8A11", true);
    for (int round = 0; round < 2; ++round)
    {
        Send(WM_WTSSESSION_CHANGE, GetParam());
        EXPECT_THAT(ToastTexts(), ElementsAre(MessageOfWmi));
    }
}

TEST_P(SessionMessageTest, ShowsInSpiteOfThePolicies)
{
    for (const auto& [machineId, text] : {std::pair("8A11", MessageOfWmi), std::pair("8042", MessageOfAcpi)})
    {
        MakeHandler(machineId, true);
        for (const wchar_t* const value : {L"SuppressAllNotifications", L"SuppressUsbCNotifications"})
        {
            const TestSupport::SuppressPolicy suppress(value);
            EXPECT_EQ(Send(WM_WTSSESSION_CHANGE, GetParam()), 0);
            EXPECT_THAT(ToastTexts(), ElementsAre(text));
        }
    }
}

TEST_P(SessionMessageTest, HasNoPartInTheResumeFlag)
{
    g_bResumeHandled = true;
    MakeHandler("8A11", true);
    Send(WM_WTSSESSION_CHANGE, GetParam());
    EXPECT_THAT(ToastTexts(), ElementsAre(MessageOfWmi));
    EXPECT_TRUE(g_bResumeHandled);
}

TEST_F(OtherSessionMessageTest, IsLoggedWithItsCodeAndIgnored)
{
    MakeHub();
    MakeHandler("8A11", true);
    for (const WPARAM change : {WPARAM{0}, WPARAM{WTS_CONSOLE_CONNECT}, WPARAM{WTS_CONSOLE_DISCONNECT},
                                WPARAM{WTS_REMOTE_CONNECT}, WPARAM{WTS_REMOTE_DISCONNECT}, WPARAM{WTS_SESSION_LOGOFF},
                                WPARAM{WTS_SESSION_LOCK}, WPARAM{WTS_SESSION_REMOTE_CONTROL}, WPARAM{11}})
    {
        EXPECT_EQ(Send(WM_WTSSESSION_CHANGE, change), 0);
        EXPECT_THAT(LogLines(),
                    ElementsAre(L"Verbose|WndProc|WM_WTSSESSION_CHANGE wParam: " + std::to_wstring(change)));
        EXPECT_THAT(Calls(), IsEmpty());
        EXPECT_THAT(m_system.m_lstHandedOn, IsEmpty());
    }
}
