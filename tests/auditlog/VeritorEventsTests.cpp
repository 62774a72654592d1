#include "tests/auditlog/VeritorTest.h"
#include "tests/support/HandleCount.h"
#include "tests/support/PolicyKey.h"
#include "wmievents/AuditLogKeyMap.h"
#include "wmievents/AuditLogScan.h"
#include "wmievents/VeritorThreads.h"

#include <comdef.h>

#include <gmock/gmock.h>

using Notifications::OrvikWmiEvents::ThreadProcCreateHashKeysForVeritorEventLogs;
using Notifications::OrvikWmiEvents::ThreadProcVeritorEvent;
using Notifications::OrvikWmiEvents::ThreadProcVeritorLogging;
using Simulator::CallPlan;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using Tests::RecordText;
using Tests::StartedThread;
using TestSupport::LogLines;
using TestSupport::SuppressPolicy;
namespace Level = Orvik::Shared::Level;

namespace
{
constexpr const char* g_pEvent = "Notifications::OrvikWmiEvents::COrvikWmiEvents::ProcessVeritorEvent";
constexpr const char* g_pLog = "Notifications::OrvikWmiEvents::COrvikWmiEvents::ProcessVeritorLog";
constexpr const char* g_pKeys = "Notifications::OrvikWmiEvents::COrvikWmiEvents::CreateHashKeysForVeritorEventLogs";

class VeritorEventsTest : public Tests::VeritorTest
{
protected:
    void Process(const _variant_t& data, int eventId = 131074)
    {
        _variant_t copy(data);
        m_hub.ProcessVeritorEvent(eventId, &copy);
    }

    // The only thread of that routine.
    StartedThread TheThread(LPTHREAD_START_ROUTINE routine)
    {
        const auto threads = m_threads.WaitFor(routine);
        EXPECT_EQ(threads.size(), 1u);
        return threads.empty() ? StartedThread{} : threads[0];
    }

    static void ExpectPlainStart(const StartedThread& thread, LONG_PTR parameter)
    {
        EXPECT_EQ(thread.m_nParameter, parameter);
        EXPECT_EQ(thread.m_nStackSize, 0u);
        EXPECT_EQ(thread.m_dwFlags, 0u);
        EXPECT_FALSE(thread.m_bHasSecurity);
        EXPECT_NE(thread.m_dwThreadId, GetCurrentThreadId());
    }
};
} // namespace

TEST_F(VeritorEventsTest, Event_StartsItsThreadAndACopyWithoutDelay)
{
    Process(3L);
    ASSERT_EQ(m_threads.WaitForAll().size(), 2u);
    EXPECT_EQ(m_threads.WaitForAll()[0].m_pfnRoutine, &ThreadProcVeritorEvent);
    ExpectPlainStart(TheThread(&ThreadProcVeritorEvent), 3);
    ExpectPlainStart(TheThread(&ThreadProcVeritorLogging), 0);
    EXPECT_THAT(LogLines(g_pEvent), ElementsAre(L"TraceIn|", L"Verbose|debug: pvarInput->lVal = 3",
                                                L"Verbose|iEvent ID = 3", L"TraceOut|"));
    EXPECT_THAT(LogLines(g_pLog), ElementsAre(L"TraceIn|", L"TraceOut|"));
    EXPECT_THAT(WrittenTexts(), ElementsAre(RecordText(Entry())));
}

TEST_F(VeritorEventsTest, Event_NumberOfTheSubscription_IsNotLookedAt)
{
    for (const int eventId : {131074, 0, -1, 21})
    {
        m_threads.Forget();
        Process(6L, eventId);
        EXPECT_EQ(TheThread(&ThreadProcVeritorEvent).m_nParameter, 6);
    }
}

TEST_F(VeritorEventsTest, Event_IdentifierTravelsWhole)
{
    for (const long value : {-1L, LONG_MIN, LONG_MAX, 0x10000L})
    {
        m_threads.Forget();
        StartWatching();
        Process(value);
        EXPECT_EQ(TheThread(&ThreadProcVeritorEvent).m_nParameter, value);
        EXPECT_TRUE(TestSupport::Logged(Level::Verbose, Tests::g_pEventThread,
                                        L"ThreadProcVeritorEvent Logging EventID : " + std::to_wstring(value)));
    }
}

TEST_F(VeritorEventsTest, DataOfAnotherType_IsLoggedAndCopiesOnly)
{
    const std::pair<_variant_t, int> values[] = {
        {_variant_t(L"30"), 8}, {_variant_t(), 0},     {_variant_t(short{5}), 2}, {_variant_t(5.0), 5},
        {_variant_t(true), 11}, {_variant_t(5UL), 19}, {_variant_t(BYTE{5}), 17}};
    for (const auto& [value, type] : values)
    {
        m_threads.Forget();
        StartWatching();
        Process(value);
        ExpectPlainStart(TheThread(&ThreadProcVeritorLogging), 0);
        EXPECT_EQ(m_threads.WaitForAll().size(), 1u);
        EXPECT_THAT(LogLines(g_pEvent),
                    ElementsAre(L"TraceIn|",
                                L"Information|invalid parameter, expect VT_I4, got = " + std::to_wstring(type),
                                L"TraceOut|"));
        EXPECT_THAT(Commands(), ElementsAre("EmbeddedController.AuditLog"));
        EXPECT_THAT(m_calls.Dialogs(), IsEmpty());
    }
}

TEST_F(VeritorEventsTest, ReferenceToANumber_IsAnotherType)
{
    long number = 5;
    VARIANT data{};
    data.vt = VT_I4 | VT_BYREF;
    data.plVal = &number;
    m_hub.ProcessVeritorEvent(131074, &data);
    EXPECT_TRUE(TestSupport::Logged(Level::Information, g_pEvent, L"invalid parameter, expect VT_I4, got = 16387"));
    EXPECT_EQ(m_threads.WaitForAll().size(), 1u);
}

TEST_F(VeritorEventsTest, NoData_IsLikeEmptyData)
{
    m_hub.ProcessVeritorEvent(131074, nullptr);
    EXPECT_TRUE(TestSupport::Logged(Level::Information, g_pEvent, L"invalid parameter, expect VT_I4, got = 0"));
    ExpectPlainStart(TheThread(&ThreadProcVeritorLogging), 0);
}

TEST_F(VeritorEventsTest, Log_FlagIsTheParameterOfTheThread)
{
    for (const int flag : {0, 1, 2, -1})
    {
        m_threads.Forget();
        m_hub.ProcessVeritorLog(flag);
        ExpectPlainStart(TheThread(&ThreadProcVeritorLogging), flag);
    }
}

TEST_F(VeritorEventsTest, Log_ReturnsWithoutWaiting)
{
    CallPlan::Instance().Hang("IPlixCommand::Execute");
    m_hub.ProcessVeritorLog(0);
    WaitForCall("IPlixCommand::Execute");
    EXPECT_FALSE(m_threads.AreAllOver());
    Settle();
    EXPECT_EQ(Written().size(), 1u);
}

TEST_F(VeritorEventsTest, Log_Suppressed_IsLoggedAndStartsNothing)
{
    for (const wchar_t* policy : {L"SuppressAllLoggings", L"SuppressVeritorLoggings"})
    {
        StartWatching();
        const SuppressPolicy suppress(policy);
        m_hub.ProcessVeritorLog(0);
        EXPECT_THAT(LogLines(g_pLog), ElementsAre(L"TraceIn|", L"Verbose|Loggings are suppressed.", L"TraceOut|"));
        EXPECT_THAT(m_threads.WaitForAll(), IsEmpty());
        EXPECT_THAT(Commands(), IsEmpty());
    }
}

TEST_F(VeritorEventsTest, Log_PoliciesOfNotifications_DoNotMatter)
{
    TestSupport::PolicyKey policies(TestSupport::SuppressKeys[0]);
    policies.Text(L"SuppressAllNotifications", L"true").Text(L"SuppressVeritorNotifications", L"true");
    m_hub.ProcessVeritorLog(0);
    m_threads.WaitForAll();
    EXPECT_EQ(Written().size(), 1u);
}

TEST_F(VeritorEventsTest, Event_WithLoggingsSuppressed_StillStartsItsThread)
{
    const SuppressPolicy suppress(L"SuppressVeritorLoggings");
    Process(5L);
    ExpectPlainStart(TheThread(&ThreadProcVeritorEvent), 5);
    EXPECT_EQ(m_threads.WaitForAll().size(), 1u);
    EXPECT_EQ(m_calls.Dialogs().size(), 1u);
    EXPECT_TRUE(TestSupport::Logged(Level::Verbose, g_pLog, L"Loggings are suppressed."));
}

TEST_F(VeritorEventsTest, Keys_AreMadeOnAThreadOfTheirOwn)
{
    m_eventLog.Add({L"Orvik Veritor", 4, {RecordText(Entry())}});
    m_hub.CreateHashKeysForVeritorEventLogs();
    const StartedThread thread = TheThread(&ThreadProcCreateHashKeysForVeritorEventLogs);
    ExpectPlainStart(thread, 0);
    EXPECT_EQ(thread.m_dwExitCode, 0u);
    EXPECT_EQ(m_eventLog.Reads().at(0).m_dwThreadId, thread.m_dwThreadId);
    EXPECT_THAT(LogLines(g_pKeys), ElementsAre(L"TraceIn|", L"TraceOut|"));
    m_hub.ProcessVeritorLog(0);
    m_threads.WaitForAll();
    EXPECT_THAT(Written(), IsEmpty());
}

TEST_F(VeritorEventsTest, ThreadThatDoesNotStart_IsLoggedUnderTheCallersName)
{
    constexpr HRESULT hr = HRESULT_FROM_WIN32(ERROR_NOT_ENOUGH_MEMORY);
    CallPlan::Instance().Fail("CreateThread", hr);
    Process(5L);
    EXPECT_TRUE(TestSupport::Logged(Level::Error, g_pEvent, L"CreateThread failed (0x8)"));
    EXPECT_THAT(m_threads.WaitFor(&ThreadProcVeritorEvent), IsEmpty());
    // The copy goes its own way.
    EXPECT_EQ(TheThread(&ThreadProcVeritorLogging).m_dwExitCode, 0u);

    CallPlan::Instance().Fail("CreateThread", hr);
    m_hub.ProcessVeritorLog(1);
    EXPECT_TRUE(TestSupport::Logged(Level::Error, g_pLog, L"CreateThread failed (0x8)"));
    CallPlan::Instance().Fail("CreateThread", hr);
    m_hub.CreateHashKeysForVeritorEventLogs();
    EXPECT_TRUE(TestSupport::Logged(Level::Error, g_pKeys, L"CreateThread failed (0x8)"));
    EXPECT_EQ(m_threads.WaitForAll().size(), 1u);
}

TEST_F(VeritorEventsTest, ManyEvents_LeaveNoHandle)
{
    const auto run = [this]
    {
        for (int i = 0; i < 5; ++i)
        {
            Process(30L);
            m_hub.CreateHashKeysForVeritorEventLogs();
        }
        m_threads.Forget();
    };
    run();
    run();
    const unsigned before = TestSupport::OpenHandleCount();
    constexpr unsigned runs = 5;
    for (unsigned i = 0; i < runs; ++i)
        run();
    // A lock that somebody waits for, for the first time, gets an event that it keeps.
    EXPECT_LT(TestSupport::OpenHandleCount(), before + runs);
}
