#include "wmievents/VeritorThreads.h"

#include "simulator/doubles/JournalText.h"
#include "simulator/model/Facts.h"
#include "simulator/model/LiveObjects.h"
#include "tests/auditlog/VeritorTest.h"
#include "tests/support/BstrLedger.h"
#include "tests/support/PolicyKey.h"
#include "tests/wmievents/FailingBstr.h"

#include <gmock/gmock.h>

#include <thread>

using Notifications::OrvikWmiEvents::ThreadProcVeritorEvent;
using Notifications::OrvikWmiEvents::ThreadProcVeritorLogging;
using Simulator::CallPlan;
using Simulator::Journal;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using Tests::LogXml;
using Tests::RecordText;
using TestSupport::LogLines;

namespace
{
constexpr CLSID g_domDocument30 = {0xF5078F32, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}};

class AuditLogThreadTest : public Tests::VeritorTest
{
protected:
    // On the thread of the test.
    static HRESULT Copy(LONG_PTR delayFlag = 0)
    {
        return static_cast<HRESULT>(ThreadProcVeritorLogging(reinterpret_cast<void*>(delayFlag)));
    }

    void StartCopyThatHangsIn(const char* call)
    {
        CallPlan::Instance().Hang(call);
        m_hub.ProcessVeritorLog(0);
        WaitForCall(call);
    }
};
} // namespace

TEST_F(AuditLogThreadTest, Copy_WritesWhatTheFirmwareHasAndSaysSo)
{
    EXPECT_EQ(Copy(), S_OK);
    EXPECT_THAT(WrittenTexts(), ElementsAre(RecordText(Entry())));
    EXPECT_THAT(LogLines(Tests::g_pCopyThread), ElementsAre(L"TraceIn|", L"TraceOut|hr: 0x00000000"));
}

TEST_F(AuditLogThreadTest, Copy_TakesItsLocksAndComInTheirOrder)
{
    EXPECT_EQ(Copy(), S_OK);
    EXPECT_THAT(Tests::ThreadCalls::CallsAndLocks(),
                ElementsAre("enter logging", "CoInitializeEx", "CoCreateInstance", "OleRun", "IPlixCommand::Execute",
                            "CoCreateInstance", "enter copy", "RegisterEventSourceW", "ReportEventW",
                            "DeregisterEventSource", "leave copy", "CoUninitialize", "leave logging"));
    EXPECT_EQ(Details("CoInitializeEx"), (nlohmann::json{{"reserved", false}, {"flags", COINIT_APARTMENTTHREADED}}));
    EXPECT_EQ(Details("CoCreateInstance")["apartment"], "sta");
    EXPECT_EQ(Details("CoCreateInstance", 2)["clsid"], Simulator::GuidText(g_domDocument30));
}

TEST_F(AuditLogThreadTest, DelayFlag_SleepsTwoMinutesOnceBeforeTheLock)
{
    EXPECT_EQ(Copy(1), S_OK);
    const auto calls = Tests::ThreadCalls::CallsAndLocks();
    ASSERT_GT(calls.size(), 2u);
    EXPECT_EQ(calls[0], "Sleep");
    EXPECT_EQ(calls[1], "enter logging");
    EXPECT_EQ(CallPlan::Instance().CallCount("Sleep"), 1u);
    EXPECT_EQ(Details("Sleep")["milliseconds"], 120000);
}

TEST_F(AuditLogThreadTest, OtherFlags_DoNotSleep)
{
    for (const LONG_PTR flag : {0, 2, -1, 120000})
        EXPECT_EQ(Copy(flag), S_OK);
    EXPECT_EQ(CallPlan::Instance().CallCount("Sleep"), 0u);
}

TEST_F(AuditLogThreadTest, DelayFlag_IsReadFromTheParameterWhenTheThreadRuns)
{
    m_hub.ProcessVeritorLog(1);
    m_hub.ProcessVeritorLog(0);
    m_threads.WaitForAll();
    EXPECT_EQ(CallPlan::Instance().CallCount("Sleep"), 1u);
    EXPECT_EQ(Commands().size(), 2u);
    EXPECT_EQ(Written().size(), 1u);
}

TEST_F(AuditLogThreadTest, CopyThatWaitsItsTwoMinutes_KeepsNoOtherCopyWaiting)
{
    CallPlan::Instance().Hang("Sleep");
    m_hub.ProcessVeritorLog(1);
    WaitForCall("Sleep");
    EXPECT_EQ(Copy(), S_OK);
    EXPECT_EQ(Written().size(), 1u);
    EXPECT_FALSE(m_threads.AreAllOver());
}

TEST_F(AuditLogThreadTest, FailedFetch_IsLoggedAndIsTheExitCode)
{
    const std::pair<HRESULT, std::wstring> codes[] = {{static_cast<HRESULT>(0x80000003), L"80000003"},
                                                      {E_INVALIDARG, L"80070057"},
                                                      {RPC_E_DISCONNECTED, L"80010108"}};
    for (const auto& [hr, code] : codes)
    {
        m_threads.Forget();
        StartWatching();
        Fail("EmbeddedController.AuditLog", hr);
        m_hub.ProcessVeritorLog(0);
        const auto threads = m_threads.WaitFor(&ThreadProcVeritorLogging);
        ASSERT_EQ(threads.size(), 1u);
        EXPECT_EQ(threads[0].m_dwExitCode, static_cast<DWORD>(hr));
        EXPECT_THAT(LogLines(Tests::g_pCopyThread),
                    ElementsAre(L"TraceIn|", L"Information|GetVeritorLogFromPlix failed.  HR=0X" + code,
                                L"TraceOut|hr: 0x" + code));
        EXPECT_THAT(Journal::Instance().Subjects("lock"), ElementsAre("enter logging", "leave logging"));
        EXPECT_EQ(CallPlan::Instance().CallCount("CoUninitialize"), 1u);
        EXPECT_THAT(LogLines(Tests::g_pWalker), IsEmpty());
    }
}

TEST_F(AuditLogThreadTest, NoPlatformLibrary_IsTheExitCode)
{
    Simulator::Facts::Instance().Set("/platform/registered", false);
    EXPECT_EQ(Copy(), REGDB_E_CLASSNOTREG);
    EXPECT_THAT(LogLines(Tests::g_pCopyThread), Contains(L"Information|GetVeritorLogFromPlix failed.  HR=0X80040154"));
    Simulator::Facts::Instance().Set("/platform/registered", true);
    EXPECT_EQ(Copy(), S_OK);
    EXPECT_EQ(Written().size(), 1u);
}

TEST_F(AuditLogThreadTest, NoParser_IsLoggedByTheWalk)
{
    CallPlan::Instance().Fail("CoCreateInstance", REGDB_E_CLASSNOTREG, 2);
    EXPECT_EQ(Copy(), S_OK);
    EXPECT_THAT(LogLines(Tests::g_pWalker),
                ElementsAre(L"TraceIn|", L"Information|xml.GetDocument() failed", L"TraceOut|"));
    EXPECT_THAT(Written(), IsEmpty());
}

TEST_F(AuditLogThreadTest, ComThatIsRefused_IsNotLeftAndTheFetchFails)
{
    CallPlan::Instance().Fail("CoInitializeEx", E_OUTOFMEMORY);
    m_hub.ProcessVeritorLog(0);
    const auto threads = m_threads.WaitFor(&ThreadProcVeritorLogging);
    ASSERT_EQ(threads.size(), 1u);
    EXPECT_EQ(threads[0].m_dwExitCode, static_cast<DWORD>(CO_E_NOTINITIALIZED));
    EXPECT_EQ(CallPlan::Instance().CallCount("CoUninitialize"), 0u);
    EXPECT_THAT(Journal::Instance().Subjects("lock"), ElementsAre("enter logging", "leave logging"));
}

TEST_F(AuditLogThreadTest, NoMemoryForTheXml_IsLogged)
{
    {
        // The first text is the command's name.
        const Tests::FailingBstr fault(2);
        EXPECT_EQ(Copy(), E_OUTOFMEMORY);
        EXPECT_TRUE(Tests::FailingBstr::HasBitten());
    }
    EXPECT_THAT(LogLines(Tests::g_pCopyThread),
                ElementsAre(L"TraceIn|", L"Error|There is no memory for the audit log.", L"TraceOut|hr: 0x8007000E"));
    EXPECT_THAT(Written(), IsEmpty());
    EXPECT_EQ(Copy(), S_OK);
    EXPECT_EQ(Written().size(), 1u);
}

TEST_F(AuditLogThreadTest, Policy_IsNotAskedAgainOnceTheCopyIsUnderWay)
{
    const TestSupport::SuppressPolicy suppress(L"SuppressAllLoggings");
    EXPECT_EQ(Copy(), S_OK);
    EXPECT_EQ(Written().size(), 1u);
}

TEST_F(AuditLogThreadTest, SecondCopy_WaitsForTheFirst)
{
    StartCopyThatHangsIn("IPlixCommand::Execute");
    m_hub.ProcessVeritorLog(0);
    Sleep(50);
    EXPECT_EQ(CallPlan::Instance().CallCount("IPlixCommand::Execute"), 1u);
    EXPECT_THAT(Journal::Instance().Subjects("lock"), ElementsAre("enter logging"));
    Settle();
    EXPECT_THAT(Journal::Instance().Subjects("lock"),
                ElementsAre("enter logging", "enter copy", "leave copy", "leave logging", "enter logging", "enter copy",
                            "leave copy", "leave logging"));
    EXPECT_EQ(Written().size(), 1u);
}

TEST_F(AuditLogThreadTest, CopyOfAnEvent_DoesNotWaitForTheLoggingLock)
{
    StartCopyThatHangsIn("IPlixCommand::Execute");
    // Its fetch hangs as well, but it gets there.
    std::thread thread([] { ThreadProcVeritorEvent(reinterpret_cast<void*>(LONG_PTR{33})); });
    WaitForCall("IPlixCommand::Execute", 2);
    EXPECT_THAT(Journal::Instance().Subjects("lock"), ElementsAre("enter logging"));
    CallPlan::Instance().ReleaseHung();
    thread.join();
    Settle();
    EXPECT_EQ(Written().size(), 1u);
}

TEST_F(AuditLogThreadTest, WalkOfAnEvent_WaitsForTheCopyLock)
{
    StartCopyThatHangsIn("ReportEventW");
    std::thread thread([] { ThreadProcVeritorEvent(reinterpret_cast<void*>(LONG_PTR{33})); });
    WaitForCall("IPlixCommand::Execute", 2);
    Sleep(50);
    EXPECT_THAT(Journal::Instance().Subjects("lock"), ElementsAre("enter logging", "enter copy"));
    Settle();
    thread.join();
    // The second walk found what the first had written.
    EXPECT_EQ(Written().size(), 1u);
}

TEST_F(AuditLogThreadTest, Scan_DoesNotWaitForACopy)
{
    m_eventLog.Add({L"Orvik Veritor", 4, {RecordText(Entry(1))}});
    int n = 1;
    for (const char* call : {"IPlixCommand::Execute", "ReportEventW"})
    {
        StartWatching();
        FirmwareHas(LogXml({Entry(++n)}));
        StartCopyThatHangsIn(call);
        m_hub.CreateHashKeysForVeritorEventLogs();
        while (!TestSupport::Logged(Tests::Level::TraceOut, Tests::g_pScanner, L"0"))
            Sleep(1);
        EXPECT_THAT(Written(), IsEmpty());
        Settle();
        EXPECT_EQ(Written().size(), 1u);
    }
}

TEST_F(AuditLogThreadTest, Copy_DoesNotWaitForAScan)
{
    m_eventLog.m_onRead = [] { static_cast<void>(CallPlan::Instance().Enter("ReadEventLogW")); };
    CallPlan::Instance().Hang("ReadEventLogW");
    m_hub.CreateHashKeysForVeritorEventLogs();
    WaitForCall("ReadEventLogW");
    EXPECT_EQ(Copy(), S_OK);
    EXPECT_EQ(ThreadProcVeritorEvent(reinterpret_cast<void*>(LONG_PTR{30})), 0u);
    EXPECT_EQ(Written().size(), 1u);
    EXPECT_FALSE(m_threads.AreAllOver());
    EXPECT_THAT(Journal::Instance().Subjects("lock"),
                AllOf(Contains("enter scan"), testing::Not(Contains("leave scan"))));
}

TEST_F(AuditLogThreadTest, ManyCopies_LeaveNothingBehind)
{
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(Copy(), S_OK);
    StartWatching();
    const TestSupport::BstrLedger ledger{L"msxml3.dll"};
    for (int i = 0; i < 20; ++i)
    {
        FirmwareHas(LogXml(Entries(i)));
        EXPECT_EQ(Copy(), S_OK);
    }
    EXPECT_GT(ledger.Allocations(), 100u);
    EXPECT_THAT(ledger.LiveTexts(), IsEmpty());
    EXPECT_EQ(Simulator::LiveObjects::Count(), 0);
    EXPECT_EQ(OpenSources(), 0u);
    EXPECT_EQ(Written().size(), 18u);
}
