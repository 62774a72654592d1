#include "wmievents/AuditLogCopy.h"

#include "platform/XmlDocument.h"
#include "tests/auditlog/AuditLogTest.h"
#include "tests/auditlog/ThreadCalls.h"
#include "tests/auditlog/XmlCalls.h"
#include "tests/support/BstrLedger.h"
#include "wmievents/AuditLogKeyMap.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;
using Tests::AuditLogEntry;
using Tests::Element;
using Tests::EntryXml;
using Tests::LogXml;
using Tests::RecordText;
using TestSupport::LogLines;

namespace
{
class AuditLogWalkTest : public Tests::AuditLogTest
{
protected:
    // The log of one entry with these elements inside.
    static void WalkEntry(const std::wstring& fields) { Walk(L"<Log><Entry>" + fields + L"</Entry></Log>"); }

    std::wstring CheckLine(int index, int children, int n) const
    {
        return L"Verbose|Check entry #" + std::to_wstring(index) + L" {Num Attributes: " + std::to_wstring(children) +
               L"]: " + Stamp(n) + L"|4|WARN|Intrusion " + std::to_wstring(n);
    }
};
} // namespace

TEST_F(AuditLogWalkTest, NewEntry_IsWrittenAndLogged)
{
    Walk(LogXml({Entry()}));
    const auto written = Written();
    ASSERT_EQ(written.size(), 1u);
    EXPECT_EQ(written[0].m_wType, EVENTLOG_WARNING_TYPE);
    EXPECT_EQ(written[0].m_dwEventId, 4u);
    EXPECT_THAT(written[0].m_lstStrings, ElementsAre(RecordText(Entry())));
    EXPECT_THAT(LogLines(Tests::g_pWalker),
                ElementsAre(L"TraceIn|", CheckLine(0, 5, 0),
                            L"Verbose|New entry to be inserted: " + Stamp() + L"|4|WARN|Intrusion 0",
                            L"Verbose|AddLogsToEventViewer: " + Stamp() + L"|4|WARN", L"TraceOut|"));
}

TEST_F(AuditLogWalkTest, NewEntry_IsCheckedWrittenAndItsKeyMadeInThisOrder)
{
    Walk(LogXml({Entry()}));
    std::vector<std::string> functions;
    for (const TestSupport::LogRecord& record : TestSupport::LogRecords())
    {
        if (record.m_nLevel == Tests::Level::TraceIn)
            functions.push_back(record.m_strFunction);
    }
    EXPECT_THAT(functions, ElementsAre(Tests::g_pWalker, Tests::g_pLookUp, Tests::g_pWriter, Tests::g_pKeyMaker));
    EXPECT_THAT(LogLines(Tests::g_pKeyMaker),
                ElementsAre(L"TraceIn|", L"Verbose|CreateHashingTimeStamp:: EventID: 4, logDesc: Timestamp: " + Stamp(),
                            L"Verbose|CreateHashingTimeStamp: Formating ts String: " + Stamp(), L"TraceOut|"));
}

TEST_F(AuditLogWalkTest, Entries_AreWrittenFromTheLastToTheFirst)
{
    Walk(LogXml(Entries(4)));
    EXPECT_THAT(WrittenTexts(),
                ElementsAre(RecordText(Entry(3)), RecordText(Entry(2)), RecordText(Entry(1)), RecordText(Entry(0))));
}

TEST_F(AuditLogWalkTest, KnownEntries_WriteNothingAndHaveOneLineEach)
{
    Walk(LogXml(Entries(3)));
    StartWatching();
    Walk(LogXml(Entries(3)));
    EXPECT_THAT(Written(), IsEmpty());
    // The parser's.
    EXPECT_THAT(Calls(), ElementsAre("CoCreateInstance"));
    EXPECT_THAT(LogLines(Tests::g_pWalker),
                ElementsAre(L"TraceIn|", CheckLine(2, 5, 2), CheckLine(1, 5, 1), CheckLine(0, 5, 0), L"TraceOut|"));
}

TEST_F(AuditLogWalkTest, EntryAmongKnownOnes_IsTheOnlyOneWritten)
{
    Walk(LogXml({Entry(0), Entry(2)}));
    StartWatching();
    Walk(LogXml({Entry(0), Entry(1), Entry(2)}));
    EXPECT_THAT(WrittenTexts(), ElementsAre(RecordText(Entry(1))));
}

TEST_F(AuditLogWalkTest, NoDocument_IsLogged)
{
    const Tests::ThreadCalls calls;
    Notifications::OrvikWmiEvents::AddLogsToEventViewer(XmlDocument());
    EXPECT_THAT(LogLines(Tests::g_pWalker),
                ElementsAre(L"TraceIn|", L"Information|xml.GetDocument() failed", L"TraceOut|"));
    EXPECT_THAT(Tests::ThreadCalls::CallsAndLocks(), ElementsAre("enter copy", "leave copy"));
}

TEST_F(AuditLogWalkTest, TextThatIsNoDocument_HasNoEntries)
{
    const std::wstring texts[] = {L"",
                                  L" ",
                                  L"no XML",
                                  L"<AuditLog>",
                                  L"<AuditLog></Auditlog>",
                                  LogXml({Entry()}) + L"more",
                                  LogXml({Entry()}).substr(0, 60),
                                  L"<AuditLog>\x01" + EntryXml(Entry()) + L"</AuditLog>",
                                  L"<AuditLog>&#1;" + EntryXml(Entry()) + L"</AuditLog>",
                                  L"<AuditLog>&none;" + EntryXml(Entry()) + L"</AuditLog>",
                                  LogXml({Entry()}) + LogXml({Entry()}),
                                  std::wstring(100000, L'<')};
    for (const std::wstring& text : texts)
    {
        StartWatching();
        Walk(text);
        EXPECT_THAT(Written(), IsEmpty()) << testing::PrintToString(text.substr(0, 60));
        EXPECT_THAT(LogLines(Tests::g_pWalker), ElementsAre(L"TraceIn|", L"TraceOut|"));
    }
}

TEST_F(AuditLogWalkTest, DocumentType_IsRefused)
{
    for (const wchar_t* type : {L"<!DOCTYPE AuditLog>", L"<!DOCTYPE AuditLog SYSTEM 'file:///c:/a.dtd'>",
                                L"<!DOCTYPE AuditLog [<!ENTITY a 'aaaaaaaaaa'><!ENTITY b '&a;&a;&a;'>]>"})
    {
        StartWatching();
        Walk(type + LogXml({Entry()}));
        EXPECT_THAT(Written(), IsEmpty());
        EXPECT_TRUE(TestSupport::Logged(Tests::Level::Information, "XmlDocument::Parse",
                                        L"The text declares a document type, it is not parsed."));
    }
}

TEST_F(AuditLogWalkTest, LogWithoutEntries_HasNoLines)
{
    for (const wchar_t* xml :
         {L"<AuditLog/>", L"<AuditLog></AuditLog>", L"<AuditLog>\r\n  \r\n</AuditLog>", L"<AuditLog>text</AuditLog>",
          L"<AuditLog><!-- none --></AuditLog>", L"<AuditLog><Entry/><Entry></Entry></AuditLog>"})
    {
        StartWatching();
        Walk(xml);
        EXPECT_THAT(Written(), IsEmpty());
        EXPECT_THAT(LogLines(Tests::g_pWalker), ElementsAre(L"TraceIn|", L"TraceOut|"));
    }
}

TEST_F(AuditLogWalkTest, NamesOfRootAndEntries_DoNotMatter)
{
    Walk(L"<?xml version='1.0'?><a:x xmlns:a='b' n='1'><timestamp>" + Element(L"timestamp", Stamp(0)) +
         L"</timestamp><E2 id='7'>" + Element(L"timestamp", Stamp(1)) + L"</E2></a:x>");
    EXPECT_THAT(WrittenTexts(), ElementsAre(L"Veritor log entry: \r\nSource: \r\nTimestamp: " + Stamp(1),
                                            L"Veritor log entry: \r\nSource: \r\nTimestamp: " + Stamp(0)));
}

TEST_F(AuditLogWalkTest, BlanksBetweenTheElements_CountAndDoNotMatter)
{
    Walk(L"<Log>\r\n  <Entry>\r\n    " + Element(L"timestamp", Stamp()) + L"\r\n    " + Element(L"event_id", L"4") +
         L"\r\n  </Entry>\r\n</Log>");
    EXPECT_THAT(WrittenTexts(), ElementsAre(L"Veritor log entry: \r\nSource: \r\nTimestamp: " + Stamp()));
    EXPECT_EQ(LogLines(Tests::g_pWalker).at(1), L"Verbose|Check entry #1 {Num Attributes: 5]: " + Stamp() + L"|4||");
}

TEST_F(AuditLogWalkTest, CommentsAndInstructions_AreNoFields)
{
    Walk(L"<!-- before --><Log><!-- entry --><?entry?><Entry><!-- field -->" + Element(L"timestamp", Stamp()) +
         L"<?timestamp no?></Entry></Log><!-- behind -->");
    EXPECT_THAT(WrittenTexts(), ElementsAre(L"Veritor log entry: \r\nSource: \r\nTimestamp: " + Stamp()));
    EXPECT_EQ(LogLines(Tests::g_pWalker).at(1), L"Verbose|Check entry #2 {Num Attributes: 3]: " + Stamp() + L"|||");
}

TEST_F(AuditLogWalkTest, FieldNamesInUpperCase_AreTheSame)
{
    WalkEntry(Element(L"TIMESTAMP", Stamp()) + Element(L"SOURCE", L"BIOS") + Element(L"EVENT_ID", L"4") +
              Element(L"DESCRIPTION", L"Intrusion 0") + Element(L"LOGTYPE", L"WARN"));
    EXPECT_THAT(WrittenTexts(), ElementsAre(RecordText(Entry())));
    EXPECT_EQ(Written()[0].m_wType, EVENTLOG_WARNING_TYPE);
    EXPECT_EQ(Written()[0].m_dwEventId, 4u);
}

TEST_F(AuditLogWalkTest, RepeatedField_TheLaterValueWins)
{
    WalkEntry(Element(L"description", L"earlier") + Element(L"timestamp", Stamp()) + Element(L"Description", L"later") +
              Element(L"other", L"none"));
    EXPECT_THAT(WrittenTexts(), ElementsAre(L"Veritor log entry: later\r\nSource: \r\nTimestamp: " + Stamp()));
}

TEST_F(AuditLogWalkTest, FieldsOfAnEntry_DoNotComeFromAnother)
{
    Walk(L"<Log><Entry>" + Element(L"timestamp", Stamp(0)) + L"</Entry>" + EntryXml(Entry(1)) + L"</Log>");
    EXPECT_THAT(WrittenTexts(),
                ElementsAre(RecordText(Entry(1)), L"Veritor log entry: \r\nSource: \r\nTimestamp: " + Stamp(0)));
    EXPECT_EQ(Written()[1].m_dwEventId, 0u);
    EXPECT_EQ(Written()[1].m_wType, EVENTLOG_INFORMATION_TYPE);
}

TEST_F(AuditLogWalkTest, TextWithOddContents_IsWrittenAsItReads)
{
    WalkEntry(L"<timestamp>" + Stamp() +
              L"</timestamp><description><![CDATA[<a>&]]> b<i>c<b>d</b></i>&#x9;&#xA;"
              L"&#x1F600;</description><source>S|%s|%n</source>");
    EXPECT_THAT(
        WrittenTexts(),
        ElementsAre(L"Veritor log entry: <a>& bcd\t\n\xD83D\xDE00\r\nSource: S|%s|%n\r\nTimestamp: " + Stamp()));
}

TEST_F(AuditLogWalkTest, NestedEntries_AreFieldsOfTheOuterOne)
{
    Walk(L"<Log><Entry>" + EntryXml(Entry(1)) + Element(L"timestamp", Stamp(0)) + L"</Entry></Log>");
    EXPECT_THAT(WrittenTexts(), ElementsAre(L"Veritor log entry: \r\nSource: \r\nTimestamp: " + Stamp(0)));
}

TEST_F(AuditLogWalkTest, UnpairedSurrogates_HangNothing)
{
    for (const wchar_t* text : {L"\xD800", L"\xDC00",
                                L"a\xDBFF"
                                L"b",
                                L"\xDE00\xD83D"})
    {
        Walk(L"<Log><Entry>" + Element(L"timestamp", Stamp()) + Element(L"description", text) + L"</Entry></Log>");
        Walk(LogXml({Entry(1)}));
    }
    EXPECT_THAT(WrittenTexts(), testing::Contains(RecordText(Entry(1))));
}

TEST_F(AuditLogWalkTest, WholeWalk_IsUnderTheCopyLock)
{
    const Tests::ThreadCalls calls;
    const Tests::XmlCalls xmlCalls;
    XmlDocument document;
    ASSERT_EQ(document.Load(MakeBstr(L"<Log><Entry><timestamp>9</timestamp></Entry></Log>").get()), S_OK);
    StartWatching();
    Notifications::OrvikWmiEvents::AddLogsToEventViewer(document);
    EXPECT_THAT(Tests::ThreadCalls::CallsAndLocks(),
                ElementsAre("enter copy", "get_documentElement", "get_childNodes", "get_length", "get_item",
                            "get_childNodes", "get_length", "get_item", "get_nodeName", "get_nodeType", "get_text",
                            "RegisterEventSourceW", "ReportEventW", "DeregisterEventSource", "leave copy"));
}

TEST_F(AuditLogWalkTest, WholeWalk_GivesBackWhatItTook)
{
    const TestSupport::BstrLedger ledger{L"msxml3.dll"};
    const Tests::XmlCalls calls;
    Walk(L"<Log>" + EntryXml(Entry(0)) + EntryXml(Entry(1)) + L"<Entry/></Log>");
    EXPECT_EQ(Written().size(), 2u);
    EXPECT_GT(ledger.Allocations(), 10u);
    EXPECT_THAT(ledger.LiveTexts(), IsEmpty());
    EXPECT_EQ(calls.LiveReferences(), 0);
    EXPECT_EQ(OpenSources(), 0u);
}

TEST_F(AuditLogWalkTest, Document_StaysWithItsHolder)
{
    XmlDocument document;
    ASSERT_EQ(document.Load(MakeBstr(LogXml({Entry()}).c_str()).get()), S_OK);
    document.GetDocument()->AddRef();
    const ULONG before = document.GetDocument()->Release();
    Notifications::OrvikWmiEvents::AddLogsToEventViewer(document);
    document.GetDocument()->AddRef();
    EXPECT_EQ(document.GetDocument()->Release(), before);
    EXPECT_TRUE(document.IsReady());
}
