#include "wmievents/VeritorThreads.h"

#include "app/dialogs/MessageDialog.h"
#include "tests/auditlog/VeritorTest.h"
#include "tests/support/PolicyKey.h"
#include "tests/wmievents/AskedPolicies.h"

#include <gmock/gmock.h>

#include <map>
#include <set>

using Notifications::OrvikWmiEvents::ThreadProcVeritorEvent;
using Simulator::CallPlan;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using Tests::RecordText;
using Tests::ShownDialog;
using TestSupport::LogLines;

namespace
{
constexpr const wchar_t* g_pFound =
    L"Orvik Veritor detected an unauthorized modification to the system firmware.\r\n\r\n";
const std::wstring g_recovered = std::wstring(g_pFound) + L"Orvik Veritor automatically recovered the system firmware.";
const std::wstring g_shutDown = std::wstring(g_pFound) +
                                L"Please save all data files and shut down the computer to enable Orvik Veritor to "
                                L"repair and recover the system firmware.";
const std::wstring g_powerOff = std::wstring(g_pFound) +
                                L"Your computer will automatically power off in 15 seconds as configured in the "
                                L"system BIOS Orvik Veritor Security Event Policy.";

const wchar_t* const g_pPolicies[] = {L"SuppressAllNotifications", L"SuppressVeritorNotifications",
                                      L"SuppressAllLoggings", L"SuppressVeritorLoggings"};

class VeritorEventThreadTest : public Tests::VeritorTest
{
protected:
    // On the thread of the test.
    static void Run(int eventId)
    {
        StartWatching();
        EXPECT_EQ(ThreadProcVeritorEvent(reinterpret_cast<void*>(static_cast<LONG_PTR>(eventId))), 0u);
    }

    // The dialogs that the identifier shows.
    std::vector<ShownDialog> DialogsOf(int eventId)
    {
        const std::size_t before = m_calls.Dialogs().size();
        Run(eventId);
        auto dialogs = m_calls.Dialogs();
        dialogs.erase(dialogs.begin(), dialogs.begin() + static_cast<std::ptrdiff_t>(before));
        return dialogs;
    }

    static std::vector<std::wstring> EventLines(int eventId)
    {
        return {L"TraceIn|", L"Verbose|ThreadProcVeritorEvent Logging EventID : " + std::to_wstring(eventId),
                L"TraceOut|0"};
    }
};
} // namespace

TEST_F(VeritorEventThreadTest, EachIdentifier_DoesItsPart)
{
    const std::map<int, std::pair<std::wstring, int>> messages = {
        {0, {g_recovered, 0}}, {1, {g_shutDown, 1}}, {2, {g_shutDown, 1}}, {4, {g_shutDown, 2}}, {5, {g_powerOff, 3}}};
    for (int eventId = 0; eventId <= 40; ++eventId)
    {
        const auto dialogs = DialogsOf(eventId);
        const auto message = messages.find(eventId);
        ASSERT_EQ(dialogs.size(), message != messages.end() ? 1u : 0u) << eventId;
        if (message != messages.end())
        {
            EXPECT_EQ(dialogs[0].m_strText, message->second.first) << eventId;
            EXPECT_EQ(dialogs[0].m_nKind, message->second.second) << eventId;
        }
        const bool copies = eventId >= 30 && eventId <= 39;
        EXPECT_EQ(Commands().size(), copies ? 1u : 0u) << eventId;
        EXPECT_EQ(LogLines(Tests::g_pEventThread), EventLines(eventId));
        EXPECT_EQ(Calls().back(), "SetForegroundWindow") << eventId;
        EXPECT_EQ(CallPlan::Instance().CallCount("SetForegroundWindow"), 1u) << eventId;
        EXPECT_EQ(Details("SetForegroundWindow")["window"], false);
    }
}

TEST_F(VeritorEventThreadTest, IdentifiersOutsideTheRange_DoNothing)
{
    for (const int eventId : {-1, -5, -30, INT_MIN, 41, 100, 131074, INT_MAX})
    {
        EXPECT_THAT(DialogsOf(eventId), IsEmpty());
        EXPECT_THAT(Calls(), ElementsAre("SetForegroundWindow"));
        EXPECT_EQ(LogLines(Tests::g_pEventThread), EventLines(eventId));
    }
}

TEST_F(VeritorEventThreadTest, Dialog_IsTheMessageDialogWithoutAnOwner)
{
    const auto dialogs = DialogsOf(1);
    ASSERT_EQ(dialogs.size(), 1u);
    EXPECT_EQ(dialogs[0].m_nTemplate, 102u);
    EXPECT_EQ(dialogs[0].m_hwndOwner, nullptr);
    EXPECT_EQ(dialogs[0].m_pfnProcedure, &MessageDialogProc);
    EXPECT_THAT(Calls(), ElementsAre("DialogBoxParamW", "SetForegroundWindow"));
    EXPECT_THAT(Simulator::Journal::Instance().Subjects("lock"), IsEmpty());
}

TEST_F(VeritorEventThreadTest, DialogThatCannotBeShown_ChangesNothingElse)
{
    for (const int eventId : {0, 1, 2, 4, 5})
    {
        StartWatching();
        CallPlan::Instance().Fail("DialogBoxParamW", E_OUTOFMEMORY);
        EXPECT_EQ(ThreadProcVeritorEvent(reinterpret_cast<void*>(static_cast<LONG_PTR>(eventId))), 0u);
        EXPECT_THAT(Calls(), ElementsAre("DialogBoxParamW", "SetForegroundWindow"));
    }
}

TEST_F(VeritorEventThreadTest, EveryCombinationOfPolicies_SilencesWhatItNames)
{
    for (unsigned combination = 0; combination < 16; ++combination)
    {
        TestSupport::PolicyKey policies(TestSupport::SuppressKeys[0]);
        for (unsigned i = 0; i < 4; ++i)
            policies.Text(g_pPolicies[i], (combination >> i & 1) != 0 ? L"true" : L"false");
        const bool isSilent = (combination & 3) != 0;
        const bool copiesNothing = (combination & 12) != 0;
        EXPECT_EQ(DialogsOf(0).size(), isSilent ? 0u : 1u) << combination;
        for (const int eventId : {1, 2, 4, 5})
            EXPECT_EQ(DialogsOf(eventId).size(), 1u) << eventId << " " << combination;
        for (const int eventId : {30, 39})
        {
            Run(eventId);
            EXPECT_EQ(Commands().size(), copiesNothing ? 0u : 1u) << combination;
            EXPECT_EQ(CallPlan::Instance().CallCount("CoInitializeEx"), copiesNothing ? 0u : 1u) << combination;
            EXPECT_EQ(TestSupport::LogCount(Tests::Level::Verbose, Tests::g_pEventThread, L"Loggings are suppressed."),
                      copiesNothing ? 1u : 0u)
                << combination;
        }
    }
}

TEST_F(VeritorEventThreadTest, PolicyOfAll_IsAskedFirstAndTheOwnOneOnlyWhenThatIsOff)
{
    Tests::AskedPolicies asked;
    TestSupport::PolicyKey policies(TestSupport::SuppressKeys[0]);
    asked.Clear();
    Run(0);
    EXPECT_THAT(asked.Names(), ElementsAre(L"SuppressAllNotifications", L"SuppressVeritorNotifications"));
    asked.Clear();
    Run(30);
    EXPECT_THAT(asked.Names(), ElementsAre(L"SuppressAllLoggings", L"SuppressVeritorLoggings"));
    policies.Text(L"SuppressAllNotifications", L"true").Text(L"SuppressAllLoggings", L"true");
    asked.Clear();
    Run(0);
    EXPECT_THAT(asked.Names(), ElementsAre(L"SuppressAllNotifications"));
    asked.Clear();
    Run(30);
    EXPECT_THAT(asked.Names(), ElementsAre(L"SuppressAllLoggings"));
    for (const int eventId : {1, 2, 3, 4, 5, 6, 29, 40})
    {
        asked.Clear();
        Run(eventId);
        EXPECT_THAT(asked.Names(), IsEmpty()) << eventId;
    }
}

TEST_F(VeritorEventThreadTest, PolicyThatIsChanged_CountsFromTheNextEventOn)
{
    EXPECT_EQ(DialogsOf(0).size(), 1u);
    TestSupport::PolicyKey policies(TestSupport::SuppressKeys[0]);
    policies.Text(L"SuppressVeritorNotifications", L"TRUE");
    EXPECT_EQ(DialogsOf(0).size(), 0u);
    policies.Remove(L"SuppressVeritorNotifications");
    EXPECT_EQ(DialogsOf(0).size(), 1u);
}

TEST_F(VeritorEventThreadTest, Copy_InitialisesComAndTakesTheCopyLockAlone)
{
    Run(30);
    EXPECT_THAT(WrittenTexts(), ElementsAre(RecordText(Entry())));
    EXPECT_EQ(Details("CoInitializeEx"), (nlohmann::json{{"reserved", false}, {"flags", COINIT_APARTMENTTHREADED}}));
    const auto calls = Tests::ThreadCalls::CallsAndLocks();
    EXPECT_THAT(calls, Not(Contains("enter logging")));
    EXPECT_EQ(calls.front(), "CoInitializeEx");
    ASSERT_GT(calls.size(), 7u);
    EXPECT_THAT((std::vector(calls.end() - 7, calls.end())),
                ElementsAre("enter copy", "RegisterEventSourceW", "ReportEventW", "DeregisterEventSource", "leave copy",
                            "CoUninitialize", "SetForegroundWindow"));
}

TEST_F(VeritorEventThreadTest, Copy_OnAThreadWithoutCom_Works)
{
    m_hub.ProcessVeritorEvent(131074, nullptr);
    m_threads.Forget();
    StartWatching();
    FirmwareHas(Tests::LogXml({Entry(1)}));
    VARIANT data{};
    data.vt = VT_I4;
    data.lVal = 35;
    m_hub.ProcessVeritorEvent(131074, &data);
    m_threads.WaitForAll();
    EXPECT_THAT(WrittenTexts(), ElementsAre(RecordText(Entry(1))));
    EXPECT_EQ(CallPlan::Instance().CallCount("CoInitializeEx"), 2u);
    EXPECT_EQ(CallPlan::Instance().CallCount("CoUninitialize"), 2u);
}

TEST_F(VeritorEventThreadTest, EachEventFrom30To39_CausesTwoCopies)
{
    Run(30);
    for (int eventId = 28; eventId <= 41; ++eventId)
    {
        StartWatching();
        VARIANT data{};
        data.vt = VT_I4;
        data.lVal = eventId;
        m_hub.ProcessVeritorEvent(131074, &data);
        m_threads.Forget();
        EXPECT_EQ(Commands().size(), eventId >= 30 && eventId <= 39 ? 2u : 1u) << eventId;
        // The entry is known: each walk writes one line between its two traces.
        EXPECT_EQ(LogLines(Tests::g_pWalker).size(), Commands().size() * 3) << eventId;
    }
}

TEST_F(VeritorEventThreadTest, FailedFetch_IsLoggedAndWritesNothing)
{
    Fail("EmbeddedController.AuditLog", E_ACCESSDENIED);
    Run(31);
    EXPECT_TRUE(TestSupport::Logged(Tests::Level::Information, Tests::g_pEventThread,
                                    L"GetVeritorLogFromPlix failed.  HR=0X80070005"));
    EXPECT_THAT(Simulator::Journal::Instance().Subjects("lock"), IsEmpty());
    EXPECT_EQ(LogLines(Tests::g_pEventThread).back(), L"TraceOut|0");
}

TEST_F(VeritorEventThreadTest, Dialogs_AreOpenAtOnceEachOnItsOwnThread)
{
    CallPlan::Instance().Hang("DialogBoxParamW");
    for (const int eventId : {0, 1, 4, 5})
    {
        VARIANT data{};
        data.vt = VT_I4;
        data.lVal = eventId;
        m_hub.ProcessVeritorEvent(131074, &data);
    }
    WaitForCall("DialogBoxParamW", 4);
    // The copies do not wait for the person.
    while (TestSupport::LogCount(Tests::Level::TraceOut, Tests::g_pCopyThread, L"hr: 0x00000000") < 4)
        Sleep(1);
    std::set<DWORD> threads;
    for (const ShownDialog& dialog : m_calls.Dialogs())
        threads.insert(dialog.m_dwThreadId);
    EXPECT_EQ(threads.size(), 4u);
    EXPECT_EQ(CallPlan::Instance().CallCount("SetForegroundWindow"), 0u);
    Settle();
    EXPECT_EQ(CallPlan::Instance().CallCount("SetForegroundWindow"), 4u);
    EXPECT_EQ(Written().size(), 1u);
}
