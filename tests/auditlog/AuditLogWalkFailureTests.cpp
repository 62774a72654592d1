#include "wmievents/AuditLogCopy.h"

#include "tests/auditlog/AuditLogTest.h"
#include "tests/auditlog/ThreadCalls.h"
#include "tests/auditlog/XmlCalls.h"
#include "tests/support/AllocationFault.h"
#include "tests/support/BstrLedger.h"
#include "tests/wmievents/FailingBstr.h"

#include <gmock/gmock.h>

using Simulator::CallPlan;
using Simulator::Repeat;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using Tests::AuditLogEntry;
using Tests::LogXml;
using Tests::RecordText;
using TestSupport::LogCount;
using TestSupport::LogLines;

namespace
{
// A walk over a log of three entries in which something fails. The walk after it is whole again.
class AuditLogWalkFailureTest : public Tests::AuditLogTest
{
protected:
    ~AuditLogWalkFailureTest() override
    {
        EXPECT_EQ(m_xml.LiveReferences(), 0);
        EXPECT_THAT(m_ledger.LiveTexts(), IsEmpty());
        EXPECT_EQ(OpenSources(), 0u);
        StartWatching();
        Walk(LogXml({Entry(100)}));
        EXPECT_THAT(WrittenTexts(), ElementsAre(RecordText(Entry(100))));
    }

    // Fresh timestamps in each step.
    std::vector<AuditLogEntry> Next()
    {
        m_nFirst += 1000;
        return {Entry(m_nFirst), Entry(m_nFirst + 1), Entry(m_nFirst + 2)};
    }

    // What was written when the n-th such call gave that result.
    std::vector<std::wstring> WrittenWith(const char* call, HRESULT hr, unsigned nth,
                                          const std::vector<AuditLogEntry>& entries)
    {
        StartWatching();
        CallPlan::Instance().Fail(call, hr, nth);
        Walk(LogXml(entries));
        return WrittenTexts();
    }

    static constexpr HRESULT Results[] = {E_FAIL, E_OUTOFMEMORY, S_FALSE};

    int m_nFirst = 0;
    const TestSupport::BstrLedger m_ledger{L"msxml3.dll"};
    const Tests::XmlCalls m_xml;
};
} // namespace

TEST_F(AuditLogWalkFailureTest, NoRoot_EndsTheWalk)
{
    for (const HRESULT hr : Results)
    {
        EXPECT_THAT(WrittenWith("get_documentElement", hr, 1, Next()), IsEmpty());
        EXPECT_THAT(LogLines(Tests::g_pWalker), ElementsAre(L"TraceIn|", L"TraceOut|"));
        EXPECT_EQ(CallPlan::Instance().CallCount("get_childNodes"), 0u);
    }
}

TEST_F(AuditLogWalkFailureTest, NoListOfEntries_IsLoggedAndEndsTheWalk)
{
    for (const char* call : {"get_childNodes", "get_length"})
    {
        EXPECT_THAT(WrittenWith(call, E_OUTOFMEMORY, 1, Next()), IsEmpty());
        EXPECT_THAT(LogLines(Tests::g_pWalker),
                    ElementsAre(L"TraceIn|",
                                L"Information|The entries of the audit log cannot be read. hr = 0x8007000E",
                                L"TraceOut|"));
        EXPECT_EQ(CallPlan::Instance().CallCount("get_item"), 0u);
    }
    EXPECT_THAT(WrittenWith("get_childNodes", S_FALSE, 1, Next()), IsEmpty());
    EXPECT_THAT(LogLines(Tests::g_pWalker),
                Contains(L"Information|The entries of the audit log cannot be read. hr = 0x80004003"));
    EXPECT_THAT(WrittenWith("get_length", S_FALSE, 1, Next()), IsEmpty());
}

TEST_F(AuditLogWalkFailureTest, EntryThatCannotBeReadWhole_IsLoggedAndLeftToTheNextWalk)
{
    // The entry that comes first, its list, its description.
    const std::pair<const char*, unsigned> calls[] = {{"get_item", 1}, {"get_childNodes", 2}, {"get_length", 2},
                                                      {"get_item", 5}, {"get_nodeName", 4},   {"get_nodeType", 4},
                                                      {"get_text", 4}};
    for (const auto& [call, nth] : calls)
    {
        for (const HRESULT hr : {E_FAIL, E_OUTOFMEMORY})
        {
            const auto entries = Next();
            EXPECT_THAT(WrittenWith(call, hr, nth, entries),
                        ElementsAre(RecordText(entries[1]), RecordText(entries[0])))
                << call << nth;
            const wchar_t* const code = hr == E_FAIL ? L"80004005" : L"8007000E";
            EXPECT_EQ(LogCount(Tests::Level::Information, Tests::g_pWalker,
                               L"Entry #2 cannot be read. hr = 0x" + std::wstring(code)),
                      1u);
            StartWatching();
            Walk(LogXml(entries));
            EXPECT_THAT(WrittenTexts(), ElementsAre(RecordText(entries[2]))) << call << nth;
        }
    }
}

TEST_F(AuditLogWalkFailureTest, CallThatGivesNothing_LeavesTheEntryToTheNextWalk)
{
    const std::pair<const char*, unsigned> calls[] = {
        {"get_item", 1}, {"get_childNodes", 2}, {"get_item", 5}, {"get_nodeName", 4}, {"get_text", 4}};
    for (const auto& [call, nth] : calls)
    {
        const auto entries = Next();
        EXPECT_THAT(WrittenWith(call, S_FALSE, nth, entries),
                    ElementsAre(RecordText(entries[1]), RecordText(entries[0])))
            << call << nth;
        EXPECT_EQ(LogCount(Tests::Level::Information, Tests::g_pWalker, L"Entry #2 cannot be read. hr = 0x80004003"),
                  1u);
        StartWatching();
        Walk(LogXml(entries));
        EXPECT_THAT(WrittenTexts(), ElementsAre(RecordText(entries[2]))) << call << nth;
    }
}

TEST_F(AuditLogWalkFailureTest, RefusedRecord_IsLoggedAndTheOthersAreWritten)
{
    const auto entries = Next();
    EXPECT_THAT(WrittenWith("ReportEventW", HRESULT_FROM_WIN32(ERROR_LOG_FILE_FULL), 2, entries),
                ElementsAre(RecordText(entries[2]), RecordText(entries[0])));
    EXPECT_EQ(
        LogCount(Tests::Level::Information, Tests::g_pWriter, L"ReportEvent failed, GatLastError() return: hr = 0x5DE"),
        1u);
    // It counts as written until the program starts again.
    StartWatching();
    Walk(LogXml(entries));
    EXPECT_THAT(Written(), IsEmpty());
}

TEST_F(AuditLogWalkFailureTest, SourceThatIsRefused_LosesThatRecordOnly)
{
    const auto entries = Next();
    EXPECT_THAT(WrittenWith("RegisterEventSourceW", HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE), 1, entries),
                ElementsAre(RecordText(entries[1]), RecordText(entries[0])));
    EXPECT_EQ(LogLines(Tests::g_pWriter).size(), 6u);
}

TEST_F(AuditLogWalkFailureTest, NoMemoryForTheText_LosesThatRecordOnly)
{
    const auto entries = Next();
    const std::wstring xml = LogXml(entries);
    StartWatching();
    XmlDocument document;
    ASSERT_EQ(document.Load(MakeBstr(xml.c_str()).get()), S_OK);
    {
        const Tests::FailingBstr fault(2);
        Notifications::OrvikWmiEvents::AddLogsToEventViewer(document);
        EXPECT_TRUE(Tests::FailingBstr::HasBitten());
    }
    EXPECT_THAT(WrittenTexts(), ElementsAre(RecordText(entries[2]), RecordText(entries[0])));
    EXPECT_EQ(LogCount(Tests::Level::Information, Tests::g_pWriter,
                       L"Exception occurred writing Event Viewer. hr = 0x8007000E"),
              1u);
}

TEST_F(AuditLogWalkFailureTest, NoMemoryInTheWalk_IsLoggedAndEndsIt)
{
    auto entries = Next();
    entries[1].m_strTimestamp += std::wstring(3000, L'T');
    StartWatching();
    XmlDocument document;
    ASSERT_EQ(document.Load(MakeBstr(LogXml(entries).c_str()).get()), S_OK);
    {
        // The first text of that length.
        const AllocationFault fault(1, 6000);
        Notifications::OrvikWmiEvents::AddLogsToEventViewer(document);
        EXPECT_TRUE(AllocationFault::HasBitten());
    }
    EXPECT_THAT(WrittenTexts(), ElementsAre(RecordText(entries[2])));
    EXPECT_THAT(LogLines(Tests::g_pWalker),
                Contains(L"Information|Exception occurred extracting Veritor logs. hr = 0x8007000E"));
    EXPECT_EQ(LogLines(Tests::g_pWalker).back(), L"TraceOut|");
    // What is written stays known.
    StartWatching();
    Notifications::OrvikWmiEvents::AddLogsToEventViewer(document);
    EXPECT_THAT(WrittenTexts(), ElementsAre(RecordText(entries[1]), RecordText(entries[0])));
}

TEST_F(AuditLogWalkFailureTest, WhateverFails_TheCopyLockIsLeft)
{
    const Tests::ThreadCalls calls;
    for (const char* call : {"get_documentElement", "get_childNodes", "get_length", "get_item", "get_nodeName",
                             "get_nodeType", "get_text", "RegisterEventSourceW", "ReportEventW"})
    {
        StartWatching();
        CallPlan::Instance().Fail(call, E_OUTOFMEMORY, 1, Repeat::Always);
        Walk(LogXml(Next()));
        EXPECT_EQ(Simulator::Journal::Instance().Subjects("lock"),
                  (std::vector<std::string>{"enter copy", "leave copy"}))
            << call;
    }
}
