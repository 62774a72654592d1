#include "wmievents/AuditLogScan.h"

#include "tests/auditlog/AuditLogTest.h"
#include "tests/auditlog/ThreadCalls.h"
#include "tests/support/HandleCount.h"
#include "wmievents/AuditLogKeyMap.h"

#include <gmock/gmock.h>

#include <algorithm>

using Notifications::OrvikWmiEvents::AuditLogKeyMap;
using Notifications::OrvikWmiEvents::LogEntryAlreadyInserted;
using Notifications::OrvikWmiEvents::LogVeritor;
using Notifications::OrvikWmiEvents::ThreadProcCreateHashKeysForVeritorEventLogs;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using Tests::AuditLogEntry;
using TestSupport::LogLines;
using TestSupport::StoredRecord;

namespace
{
constexpr const wchar_t* g_source = L"Orvik Veritor";

class AuditLogScanTest : public Tests::AuditLogTest
{
protected:
    // On the thread of the test.
    static void Scan() { EXPECT_EQ(ThreadProcCreateHashKeysForVeritorEventLogs(nullptr), 0u); }

    StoredRecord Record(int n, const std::wstring& description = L"Intrusion") const
    {
        AuditLogEntry entry = Entry(n);
        entry.m_strDescription = description;
        return {g_source, 4, {Tests::RecordText(entry)}};
    }

    bool IsKnown(int n, const wchar_t* eventId = L"4") const
    {
        return LogEntryAlreadyInserted(eventId, L"", L"", Stamp(n));
    }

    static std::size_t KeyCount() { return AuditLogKeyMap::Instance().Copy().size(); }
};
} // namespace

TEST_F(AuditLogScanTest, Log_IsOpenedUnderTheSourcesNameAndReadBackwardsInSequence)
{
    m_eventLog.Add(Record(0));
    Scan();
    EXPECT_THAT(m_eventLog.OpenedNames(), ElementsAre(L"Orvik Veritor"));
    EXPECT_EQ(m_eventLog.OpenCount(), 0u);
    const auto reads = m_eventLog.Reads();
    ASSERT_EQ(reads.size(), 2u);
    for (const TestSupport::LogRead& read : reads)
    {
        EXPECT_EQ(read.m_dwFlags, 9u);
        EXPECT_EQ(read.m_dwOffset, 0u);
        EXPECT_EQ(read.m_dwSize, 65536u);
        EXPECT_EQ(read.m_pBuffer, reads[0].m_pBuffer);
    }
    EXPECT_TRUE(IsKnown(0));
}

TEST_F(AuditLogScanTest, LogWithoutRecordsOfTheSource_MakesNoKey)
{
    const std::size_t before = KeyCount();
    for (const wchar_t* source : {L"Other", L"orvik veritor", L"ORVIK VERITOR", L"Orvik Veritor ", L"Orvik"})
    {
        StoredRecord record = Record(0);
        record.m_strSource = source;
        m_eventLog.Add(record);
    }
    Scan();
    EXPECT_EQ(KeyCount(), before);
    EXPECT_FALSE(IsKnown(0));
    EXPECT_THAT(LogLines(Tests::g_pKeyMaker), IsEmpty());
}

TEST_F(AuditLogScanTest, EmptyLog_EveryEntryIsWrittenAfterwards)
{
    Scan();
    Walk(Tests::LogXml({Entry(0), Entry(1)}));
    EXPECT_THAT(WrittenTexts(), ElementsAre(Tests::RecordText(Entry(1)), Tests::RecordText(Entry(0))));
}

TEST_F(AuditLogScanTest, RecordsOfAnEarlierRun_AreNotWrittenAgain)
{
    const AuditLogEntry entries[] = {Entry(0), Entry(1), Entry(2)};
    for (const AuditLogEntry& entry : entries)
        LogVeritor(entry.m_strDescription, entry.m_strSource, entry.m_strTimestamp, entry.m_strEventId,
                   entry.m_strLogType);
    for (const TestSupport::ReportedEvent& event : Written())
        m_eventLog.Add({event.m_strSource, event.m_dwEventId, event.m_lstStrings, event.m_wType});
    Scan();
    StartWatching();
    Walk(Tests::LogXml({entries[0], entries[1], Entry(3), entries[2]}));
    EXPECT_THAT(WrittenTexts(), ElementsAre(Tests::RecordText(Entry(3))));
}

TEST_F(AuditLogScanTest, DescriptionThatNamesATimestamp_HidesTheEntrysOwnAfterARestart)
{
    AuditLogEntry entry = Entry(0);
    entry.m_strDescription = L"seen at Timestamp: 10:00";
    m_eventLog.Add({g_source, 4, {Tests::RecordText(entry)}});
    Scan();
    EXPECT_FALSE(IsKnown(0));
    // Written once more, then known for as long as the program runs.
    Walk(Tests::LogXml({entry}));
    Walk(Tests::LogXml({entry}));
    EXPECT_THAT(WrittenTexts(), ElementsAre(Tests::RecordText(entry)));
}

TEST_F(AuditLogScanTest, RecordWithoutTimestamp_AddsNoKey)
{
    const std::size_t before = KeyCount();
    for (const wchar_t* text : {L"", L"Veritor log entry: a\r\nSource: b", L"Timestamp: begins with it"})
        m_eventLog.Add({g_source, 4, {text}});
    m_eventLog.Add({g_source, 4, {}});
    Scan();
    EXPECT_EQ(KeyCount(), before);
}

TEST_F(AuditLogScanTest, TwoRecordsOfOneKey_KeepTheTextOfTheNewest)
{
    const std::size_t before = KeyCount();
    m_eventLog.Add(Record(0, L"oldest"));
    m_eventLog.Add(Record(0, L"newest"));
    Scan();
    EXPECT_EQ(KeyCount(), before + 1);
    const auto pairs = AuditLogKeyMap::Instance().Copy();
    const std::wstring stamp = Stamp(0);
    const auto found = std::ranges::find(pairs, std::string(stamp.begin(), stamp.end()) + "|4",
                                         &std::pair<std::string, std::string>::first);
    ASSERT_NE(found, pairs.end());
    EXPECT_THAT(found->second, StartsWith("VERITOR LOG ENTRY: NEWEST\r\nSOURCE: BIOS\r\nTIMESTAMP: "));
}

TEST_F(AuditLogScanTest, Numbers_AreTakenWithAllTheirBits)
{
    m_eventLog.Add({g_source, 0xC0000004, {L" Timestamp: " + Stamp(0)}});
    m_eventLog.Add({g_source, 0xFFFFFFFF, {L" Timestamp: " + Stamp(1)}});
    Scan();
    EXPECT_FALSE(IsKnown(0));
    EXPECT_TRUE(IsKnown(0, L"-1073741820"));
    EXPECT_TRUE(IsKnown(1, L"-1"));
}

TEST_F(AuditLogScanTest, ManyRecords_AreReadInSeveralReadsOfOneBuffer)
{
    constexpr int count = 1000;
    for (int i = 0; i < count; ++i)
    {
        m_eventLog.Add(Record(i));
        m_eventLog.Add({L"Other", 4, {L" Timestamp: " + Stamp(count + i)}});
    }
    const unsigned handles = TestSupport::OpenHandleCount();
    Scan();
    for (int i = 0; i < count; ++i)
        EXPECT_TRUE(IsKnown(i)) << i;
    EXPECT_FALSE(IsKnown(count));
    const auto reads = m_eventLog.Reads();
    EXPECT_GT(reads.size(), 4u);
    EXPECT_TRUE(std::ranges::all_of(reads, [&](const TestSupport::LogRead& read)
                                    { return read.m_dwSize == 65536 && read.m_pBuffer == reads[0].m_pBuffer; }));
    EXPECT_EQ(TestSupport::OpenHandleCount(), handles);
}

TEST_F(AuditLogScanTest, RecordLargerThanTheBuffer_MakesItGrowForAllThatFollow)
{
    m_eventLog.Add(Record(0));
    m_eventLog.Add(Record(1, std::wstring(50000, L'x')));
    m_eventLog.Add(Record(2));
    Scan();
    EXPECT_TRUE(IsKnown(0) && IsKnown(1) && IsKnown(2));
    const auto reads = m_eventLog.Reads();
    ASSERT_EQ(reads.size(), 5u);
    EXPECT_EQ(reads[1].m_dwSize, 65536u);
    EXPECT_EQ(reads[2].m_dwSize, TestSupport::BytesOf(Record(1, std::wstring(50000, L'x'))).size());
    EXPECT_EQ(reads[4].m_dwSize, reads[2].m_dwSize);
}

TEST_F(AuditLogScanTest, DamagedRecords_AreLeftOutAndTheLogIsReadOn)
{
    auto beyond = TestSupport::BytesOf(Record(0));
    TestSupport::SetField(beyond, &EVENTLOGRECORD::StringOffset, 0x10000);
    auto without = TestSupport::BytesOf(Record(1));
    TestSupport::SetStringCount(without, 0);
    m_eventLog.Add(Record(2));
    m_eventLog.Add(beyond);
    m_eventLog.Add(without);
    m_eventLog.Add(Record(3));
    Scan();
    EXPECT_FALSE(IsKnown(0) || IsKnown(1));
    EXPECT_TRUE(IsKnown(2) && IsKnown(3));
}

TEST_F(AuditLogScanTest, RecordOfLengthZero_EndsThatReadOnly)
{
    auto zero = TestSupport::BytesOf(Record(0));
    auto bytes = TestSupport::BytesOf(Record(1));
    TestSupport::SetField(zero, &EVENTLOGRECORD::Length, 0);
    bytes.insert(bytes.end(), zero.begin(), zero.end());
    m_eventLog.AnswerNext({.m_lstBytes = bytes, .m_dwBytesRead = static_cast<DWORD>(bytes.size())});
    m_eventLog.Add(Record(2));
    Scan();
    EXPECT_TRUE(IsKnown(1) && IsKnown(2));
    EXPECT_FALSE(IsKnown(0));
}

TEST_F(AuditLogScanTest, MoreBytesThanTheBufferHas_AreNotRead)
{
    for (const DWORD bytesRead : {65537u, 0x7FFFFFFFu, 0xFFFFFFFFu})
    {
        const auto bytes = TestSupport::BytesOf(Record(0));
        m_eventLog.AnswerNext({.m_lstBytes = bytes, .m_dwBytesRead = bytesRead});
        Scan();
        EXPECT_TRUE(IsKnown(0));
    }
}

TEST_F(AuditLogScanTest, ReadThatGivesNothing_EndsTheScan)
{
    m_eventLog.AnswerNext({.m_dwBytesRead = 0});
    m_eventLog.Add(Record(0));
    Scan();
    EXPECT_EQ(m_eventLog.Reads().size(), 1u);
    EXPECT_EQ(m_eventLog.OpenCount(), 0u);
}

TEST_F(AuditLogScanTest, Keys_AreLoggedAtTheEnd)
{
    m_eventLog.Add({g_source, 7, {L"a Timestamp: " + Stamp(0)}});
    Scan();
    const std::wstring stamp = Stamp(0);
    const auto lines = LogLines(Tests::g_pScanner);
    EXPECT_EQ(lines.front(), L"TraceIn|");
    EXPECT_EQ(lines.back(), L"TraceOut|0");
    EXPECT_EQ(lines.size(), KeyCount() + 2);
    EXPECT_THAT(lines, Contains(L"Verbose|Key: [" + stamp + L"|7]   Value:[A TIMESTAMP: " + stamp + L"]"));
    // The log was given back by then.
    EXPECT_EQ(m_eventLog.OpenCount(), 0u);
}

TEST_F(AuditLogScanTest, WholeScan_HoldsTheScanLockAndNoOther)
{
    const Tests::ThreadCalls calls;
    m_eventLog.Add(Record(0));
    m_eventLog.m_onRead = [] { Simulator::Journal::Instance().Append("call", "ReadEventLogW"); };
    Scan();
    EXPECT_THAT(Tests::ThreadCalls::CallsAndLocks(),
                ElementsAre("enter scan", "ReadEventLogW", "ReadEventLogW", "leave scan"));
}

TEST_F(AuditLogScanTest, SecondScan_WaitsForTheFirst)
{
    m_eventLog.m_onRead = [] { static_cast<void>(Simulator::CallPlan::Instance().Enter("ReadEventLogW")); };
    Simulator::CallPlan::Instance().Hang("ReadEventLogW");
    m_hub.CreateHashKeysForVeritorEventLogs();
    while (!WasCalled("ReadEventLogW"))
        Sleep(1);
    m_hub.CreateHashKeysForVeritorEventLogs();
    Sleep(50);
    EXPECT_EQ(m_eventLog.OpenedNames().size(), 1u);
    EXPECT_FALSE(m_threads.AreAllOver());
    Simulator::CallPlan::Instance().ReleaseHung();
    m_threads.WaitForAll();
    EXPECT_EQ(m_eventLog.OpenedNames().size(), 2u);
}
