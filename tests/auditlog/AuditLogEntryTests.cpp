#include "wmievents/AuditLogEntry.h"

#include "platform/XmlDocument.h"
#include "tests/auditlog/AuditLogTest.h"
#include "tests/auditlog/XmlCalls.h"
#include "tests/support/BstrLedger.h"

#include <gmock/gmock.h>

#include <climits>

using Notifications::OrvikWmiEvents::EventIdNumber;
using Notifications::OrvikWmiEvents::ReadField;
using Simulator::CallPlan;
using testing::IsEmpty;
using Tests::AuditLogEntry;

namespace
{
class ReadFieldTest : public Tests::AuditLogTest
{
protected:
    // The root of the text is the element that is read.
    static HRESULT Read(const std::wstring& xml, AuditLogEntry& entry)
    {
        XmlDocument document;
        IXMLDOMElementPtr spElement;
        EXPECT_EQ(document.Load(MakeBstr(xml.c_str()).get()), S_OK);
        EXPECT_EQ(document.GetDocument()->get_documentElement(&spElement), S_OK);
        return ReadField(spElement, entry);
    }

    static std::wstring AllFields(const AuditLogEntry& entry)
    {
        return entry.m_strTimestamp + L"|" + entry.m_strSource + L"|" + entry.m_strEventId + L"|" +
               entry.m_strDescription + L"|" + entry.m_strLogType;
    }

    static std::wstring Fields(const std::wstring& xml)
    {
        AuditLogEntry entry;
        EXPECT_EQ(Read(xml, entry), S_OK);
        return AllFields(entry);
    }

    const AuditLogEntry m_entry{L"1", L"2", L"3", L"4", L"5"};
};
} // namespace

TEST(EventIdNumber, Text_IsReadAsTheCLibraryReadsADecimalNumber)
{
    const std::pair<const wchar_t*, int> texts[] = {{L"4", 4},
                                                    {L"0", 0},
                                                    {L"", 0},
                                                    {L" 7", 7},
                                                    {L"\t\r\n 8", 8},
                                                    {L"\x00A0", 0},
                                                    {L"0x10", 0},
                                                    {L"12abc", 12},
                                                    {L"abc", 0},
                                                    {L"-1", -1},
                                                    {L"+5", 5},
                                                    {L"+ 5", 0},
                                                    {L"--1", 0},
                                                    {L"007", 7},
                                                    {L"010", 10},
                                                    {L"1.9", 1},
                                                    {L"1e3", 1},
                                                    {L"3 4", 3},
                                                    {L"2147483647", INT_MAX},
                                                    {L"2147483648", INT_MAX},
                                                    {L"99999999999", INT_MAX},
                                                    {L"-2147483648", INT_MIN},
                                                    {L"-99999999999", INT_MIN},
                                                    {L"4294967295", INT_MAX}};
    for (const auto& [text, number] : texts)
        EXPECT_EQ(EventIdNumber(text), number) << testing::PrintToString(std::wstring(text));
}

TEST_F(ReadFieldTest, EachName_FillsItsFieldInAnyCase)
{
    EXPECT_EQ(Fields(L"<timestamp>x</timestamp>"), L"x||||");
    EXPECT_EQ(Fields(L"<source>x</source>"), L"|x|||");
    EXPECT_EQ(Fields(L"<event_id>x</event_id>"), L"||x||");
    EXPECT_EQ(Fields(L"<description>x</description>"), L"|||x|");
    EXPECT_EQ(Fields(L"<logtype>x</logtype>"), L"||||x");
    EXPECT_EQ(Fields(L"<TIMESTAMP>x</TIMESTAMP>"), L"x||||");
    EXPECT_EQ(Fields(L"<SoUrCe>x</SoUrCe>"), L"|x|||");
    EXPECT_EQ(Fields(L"<Event_ID>x</Event_ID>"), L"||x||");
    EXPECT_EQ(Fields(L"<Description>x</Description>"), L"|||x|");
    EXPECT_EQ(Fields(L"<LogType>x</LogType>"), L"||||x");
}

TEST_F(ReadFieldTest, OtherNames_FillNothing)
{
    for (const wchar_t* xml : {L"<id>x</id>", L"<time>x</time>", L"<timestamps>x</timestamps>",
                               L"<timestam>x</timestam>", L"<event-id>x</event-id>", L"<eventid>x</eventid>",
                               L"<a:source xmlns:a='b'>x</a:source>", L"<_source>x</_source>"})
    {
        AuditLogEntry entry = m_entry;
        EXPECT_EQ(Read(xml, entry), S_OK);
        EXPECT_EQ(AllFields(entry), L"1|2|3|4|5") << testing::PrintToString(std::wstring(xml));
    }
}

TEST_F(ReadFieldTest, LaterValue_TakesThePlaceOfTheEarlierOne)
{
    AuditLogEntry entry = m_entry;
    EXPECT_EQ(Read(L"<description>later</description>", entry), S_OK);
    EXPECT_EQ(AllFields(entry), L"1|2|3|later|5");
    EXPECT_EQ(Read(L"<DESCRIPTION/>", entry), S_OK);
    EXPECT_EQ(AllFields(entry), L"1|2|3||5");
}

TEST_F(ReadFieldTest, Text_IsAllThatStandsInside)
{
    EXPECT_EQ(Fields(L"<source> a  b </source>"), L"| a  b |||");
    EXPECT_EQ(Fields(L"<source><![CDATA[<&>]]></source>"), L"|<&>|||");
    EXPECT_EQ(Fields(L"<source>a<b>c</b>d</source>"), L"|acd|||");
    EXPECT_EQ(Fields(L"<source>a<!-- no -->b</source>"), L"|ab|||");
    EXPECT_EQ(Fields(L"<source>&lt;&amp;&#x20AC;</source>"), L"|<&\x20AC|||");
    EXPECT_EQ(Fields(L"<source timestamp='9'>a</source>"), L"|a|||");
}

TEST_F(ReadFieldTest, NameOrTextThatIsNotGiven_LeavesTheFieldAsItWasAndNothingBehind)
{
    for (const char* call : {"get_nodeName", "get_text"})
    {
        for (const HRESULT hr : {E_OUTOFMEMORY, E_FAIL, S_FALSE})
        {
            StartWatching();
            const TestSupport::BstrLedger ledger{L"msxml3.dll"};
            const Tests::XmlCalls calls;
            CallPlan::Instance().Fail(call, hr);
            AuditLogEntry entry = m_entry;
            const HRESULT result = hr == S_FALSE ? E_POINTER : hr;
            EXPECT_EQ(Read(L"<source>new</source>", entry), result);
            EXPECT_EQ(AllFields(entry), L"1|2|3|4|5") << call << hr;
            EXPECT_EQ(CallPlan::Instance().CallCount(call), 1u);
            EXPECT_EQ(calls.LiveReferences(), 0);
            EXPECT_THAT(ledger.LiveTexts(), IsEmpty());
        }
    }
}

TEST_F(ReadFieldTest, TypeThatIsNotGiven_IsTheResult)
{
    const Tests::XmlCalls calls;
    CallPlan::Instance().Fail("get_nodeType", E_OUTOFMEMORY);
    AuditLogEntry entry = m_entry;
    EXPECT_EQ(Read(L"<source>new</source>", entry), E_OUTOFMEMORY);
    EXPECT_EQ(AllFields(entry), L"1|2|3|4|5");
    EXPECT_EQ(CallPlan::Instance().CallCount("get_text"), 0u);
}

TEST_F(ReadFieldTest, TextOfAnotherName_IsNotAskedFor)
{
    const Tests::XmlCalls calls;
    AuditLogEntry entry = m_entry;
    EXPECT_EQ(Read(L"<colour>red</colour>", entry), S_OK);
    EXPECT_EQ(CallPlan::Instance().CallCount("get_nodeName"), 1u);
    EXPECT_EQ(CallPlan::Instance().CallCount("get_text"), 0u);
}
