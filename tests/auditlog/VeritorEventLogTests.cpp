#include "wmievents/VeritorEventLog.h"

#include "tests/auditlog/AuditLogTest.h"
#include "tests/support/BstrLedger.h"
#include "tests/wmievents/FailingBstr.h"

#include <gmock/gmock.h>

using Notifications::OrvikWmiEvents::LogVeritor;
using Simulator::CallPlan;
using testing::ElementsAre;
using testing::IsEmpty;
using Tests::AuditLogEntry;
using TestSupport::LogLines;
using TestSupport::ReportedEvent;
namespace Level = Orvik::Shared::Level;

namespace
{
class VeritorEventLogTest : public Tests::AuditLogTest
{
protected:
    ~VeritorEventLogTest() override
    {
        EXPECT_EQ(OpenSources(), 0u);
        EXPECT_THAT(m_ledger.LiveTexts(), IsEmpty());
    }

    static void Write(const AuditLogEntry& entry)
    {
        LogVeritor(entry.m_strDescription, entry.m_strSource, entry.m_strTimestamp, entry.m_strEventId,
                   entry.m_strLogType);
    }

    // The record of an entry with that log type.
    static WORD TypeOf(const wchar_t* logType)
    {
        StartWatching();
        Write({L"t", L"s", L"4", L"d", logType});
        const auto written = Written();
        return written.size() == 1 ? written[0].m_wType : WORD{99};
    }

    const TestSupport::BstrLedger m_ledger;
};
} // namespace

TEST_F(VeritorEventLogTest, Record_HoldsTheEntry)
{
    Write({L"2023/05/01 10:11:12", L"BIOS", L"4", L"Intrusion detected", L"ERROR"});
    const auto written = Written();
    ASSERT_EQ(written.size(), 1u);
    EXPECT_EQ(written[0].m_strSource, L"Orvik Veritor");
    EXPECT_EQ(written[0].m_wType, EVENTLOG_ERROR_TYPE);
    EXPECT_EQ(written[0].m_wCategory, 0);
    EXPECT_EQ(written[0].m_dwEventId, 4u);
    EXPECT_FALSE(written[0].m_bHasUserSid);
    EXPECT_EQ(written[0].m_dwDataSize, 0u);
    EXPECT_THAT(
        written[0].m_lstStrings,
        ElementsAre(L"Veritor log entry: Intrusion detected\r\nSource: BIOS\r\nTimestamp: 2023/05/01 10:11:12"));
    EXPECT_THAT(Calls(), ElementsAre("RegisterEventSourceW", "ReportEventW", "DeregisterEventSource"));
    EXPECT_EQ(Details("RegisterEventSourceW"), (nlohmann::json{{"server", false}, {"source", "Orvik Veritor"}}));
    EXPECT_EQ(Details("ReportEventW")["data"], false);
    EXPECT_THAT(LogLines(Tests::g_pWriter), ElementsAre(L"TraceIn|", L"TraceOut|"));
}

TEST_F(VeritorEventLogTest, Record_OfEmptyFields_HasItsThreeLines)
{
    Write({});
    EXPECT_THAT(WrittenTexts(), ElementsAre(L"Veritor log entry: \r\nSource: \r\nTimestamp: "));
    EXPECT_EQ(Written()[0].m_dwEventId, 0u);
    EXPECT_EQ(Written()[0].m_wType, EVENTLOG_INFORMATION_TYPE);
}

TEST_F(VeritorEventLogTest, Type_FollowsTheWholeLogTypeInAnyCase)
{
    const std::pair<const wchar_t*, WORD> types[] = {
        {L"WARN", EVENTLOG_WARNING_TYPE},        {L"warn", EVENTLOG_WARNING_TYPE},
        {L"Warn", EVENTLOG_WARNING_TYPE},        {L"INFO", EVENTLOG_INFORMATION_TYPE},
        {L"info", EVENTLOG_INFORMATION_TYPE},    {L"ERROR", EVENTLOG_ERROR_TYPE},
        {L"error", EVENTLOG_ERROR_TYPE},         {L"Warning", EVENTLOG_INFORMATION_TYPE},
        {L"WARNING", EVENTLOG_INFORMATION_TYPE}, {L"WAR", EVENTLOG_INFORMATION_TYPE},
        {L" WARN", EVENTLOG_INFORMATION_TYPE},   {L"WARN ", EVENTLOG_INFORMATION_TYPE},
        {L"ERR", EVENTLOG_INFORMATION_TYPE},     {L"ERRORS", EVENTLOG_INFORMATION_TYPE},
        {L"1", EVENTLOG_INFORMATION_TYPE},       {L"\x0436", EVENTLOG_INFORMATION_TYPE},
        {L"", EVENTLOG_INFORMATION_TYPE}};
    for (const auto& [logType, type] : types)
        EXPECT_EQ(TypeOf(logType), type) << testing::PrintToString(std::wstring(logType));
}

TEST_F(VeritorEventLogTest, Number_IsWrittenUnmasked)
{
    const std::pair<const wchar_t*, DWORD> numbers[] = {{L"4", 4},
                                                        {L"0x10", 0},
                                                        {L"12abc", 12},
                                                        {L"", 0},
                                                        {L" 7", 7},
                                                        {L"-1", 0xFFFFFFFF},
                                                        {L"99999999999", 0x7FFFFFFF},
                                                        {L"65536", 65536},
                                                        {L"-1073741820", 0xC0000004}};
    for (const auto& [eventId, number] : numbers)
    {
        StartWatching();
        Write({L"t", L"s", eventId, L"d", L"INFO"});
        ASSERT_EQ(Written().size(), 1u);
        EXPECT_EQ(Written()[0].m_dwEventId, number) << testing::PrintToString(std::wstring(eventId));
    }
}

TEST_F(VeritorEventLogTest, Text_OfAnyCharacters_IsWrittenAsItIs)
{
    const AuditLogEntry entry{L"\xD83D\xDE00", L"\x01\x1F\t", L"4", L"a\r\nTimestamp: b\xD800%1%n|", L"WARN"};
    Write(entry);
    EXPECT_THAT(WrittenTexts(), ElementsAre(Tests::RecordText(entry)));
}

TEST_F(VeritorEventLogTest, Text_UpToTheLimitOfTheSystem_IsWritten)
{
    AuditLogEntry entry{L"t", L"s", L"4", L"", L"WARN"};
    entry.m_strDescription.assign(Tests::EventSourceCalls::LongestText - Tests::RecordText(entry).size(), L'x');
    Write(entry);
    EXPECT_THAT(WrittenTexts(), ElementsAre(Tests::RecordText(entry)));
    StartWatching();
    entry.m_strDescription += L'x';
    Write(entry);
    EXPECT_THAT(Written(), IsEmpty());
    EXPECT_TRUE(TestSupport::Logged(Level::Information, Tests::g_pWriter,
                                    L"ReportEvent failed, GatLastError() return: hr = 0x57"));
}

TEST_F(VeritorEventLogTest, NoSource_WritesAndLogsNothing)
{
    CallPlan::Instance().Fail("RegisterEventSourceW", HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE));
    Write({L"t", L"s", L"4", L"d", L"WARN"});
    EXPECT_THAT(Calls(), ElementsAre("RegisterEventSourceW"));
    EXPECT_THAT(Written(), IsEmpty());
    EXPECT_THAT(LogLines(Tests::g_pWriter), ElementsAre(L"TraceIn|", L"TraceOut|"));
}

TEST_F(VeritorEventLogTest, RefusedRecord_IsLoggedWithTheCodeAndGivesTheSourceBack)
{
    const std::pair<DWORD, const wchar_t*> codes[] = {{ERROR_LOG_FILE_FULL, L"0x5DE"},
                                                      {ERROR_ACCESS_DENIED, L"0x5"},
                                                      {RPC_S_SERVER_UNAVAILABLE, L"0x6BA"},
                                                      {ERROR_INVALID_PARAMETER, L"0x57"},
                                                      {ERROR_DISK_FULL, L"0x70"}};
    for (const auto& [code, text] : codes)
    {
        StartWatching();
        CallPlan::Instance().Fail("ReportEventW", HRESULT_FROM_WIN32(code));
        Write({L"t", L"s", L"4", L"d", L"WARN"});
        EXPECT_THAT(Written(), IsEmpty());
        EXPECT_THAT(LogLines(Tests::g_pWriter),
                    ElementsAre(L"TraceIn|",
                                L"Information|ReportEvent failed, GatLastError() return: hr = " + std::wstring(text),
                                L"TraceOut|"));
        EXPECT_THAT(Calls(), ElementsAre("RegisterEventSourceW", "ReportEventW", "DeregisterEventSource"));
    }
}

TEST_F(VeritorEventLogTest, NoMemoryForTheText_IsLoggedAndGivesTheSourceBack)
{
    const Tests::FailingBstr fault(1);
    Write({L"t", L"s", L"4", L"d", L"WARN"});
    EXPECT_TRUE(Tests::FailingBstr::HasBitten());
    EXPECT_THAT(Written(), IsEmpty());
    EXPECT_THAT(LogLines(Tests::g_pWriter),
                ElementsAre(L"TraceIn|", L"Information|Exception occurred writing Event Viewer. hr = 0x8007000E",
                            L"TraceOut|"));
    EXPECT_THAT(Calls(), ElementsAre("RegisterEventSourceW", "DeregisterEventSource"));
}

TEST_F(VeritorEventLogTest, EachRecord_HasASourceOfItsOwn)
{
    Write({L"t", L"s", L"4", L"d", L"WARN"});
    Write({L"t", L"s", L"4", L"d", L"WARN"});
    const auto written = Written();
    ASSERT_EQ(written.size(), 2u);
    EXPECT_NE(written[0].m_hSource, written[1].m_hSource);
    EXPECT_THAT(Calls(), ElementsAre("RegisterEventSourceW", "ReportEventW", "DeregisterEventSource",
                                     "RegisterEventSourceW", "ReportEventW", "DeregisterEventSource"));
}
