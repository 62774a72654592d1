#include "wmievents/AuditLogKeyMap.h"

#include "tests/auditlog/AuditLogTest.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>
#include <thread>

using Notifications::OrvikWmiEvents::AuditLogKeyMap;
using Notifications::OrvikWmiEvents::CreateHashingTimeStamp;
using Notifications::OrvikWmiEvents::LogEntryAlreadyInserted;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::LogLines;

namespace
{
using Pair = std::pair<std::string, std::string>;

class AuditLogKeyMapTest : public Tests::AuditLogTest
{
protected:
    // Pairs that the test has added.
    AuditLogKeyMap::Pairs Added() const
    {
        AuditLogKeyMap::Pairs added;
        std::ranges::set_difference(SortedPairs(), m_lstBefore, std::back_inserter(added));
        return added;
    }

    AuditLogKeyMap::Pairs AddedBy(int eventId, const std::wstring& text)
    {
        m_lstBefore = SortedPairs();
        CreateHashingTimeStamp(eventId, text);
        return Added();
    }

    static bool IsThere(const std::wstring& timestamp, const std::wstring& eventId)
    {
        return LogEntryAlreadyInserted(eventId, L"source", L"description", timestamp);
    }

    std::string NarrowStamp() const
    {
        const std::wstring stamp = Stamp();
        return {stamp.begin(), stamp.end()};
    }

private:
    static AuditLogKeyMap::Pairs SortedPairs()
    {
        AuditLogKeyMap::Pairs pairs = AuditLogKeyMap::Instance().Copy();
        std::ranges::sort(pairs);
        return pairs;
    }

    AuditLogKeyMap::Pairs m_lstBefore = SortedPairs();
};
} // namespace

TEST_F(AuditLogKeyMapTest, Insert_OfAKeyThatIsThere_KeepsTheFirstValue)
{
    AuditLogKeyMap& map = AuditLogKeyMap::Instance();
    const std::string key = NarrowStamp();
    EXPECT_FALSE(map.Contains(key));
    map.Insert(key, "first");
    map.Insert(key, "second");
    EXPECT_TRUE(map.Contains(key));
    EXPECT_THAT(Added(), ElementsAre(Pair(key, "first")));
}

TEST_F(AuditLogKeyMapTest, Instance_IsOneForAllThreads)
{
    AuditLogKeyMap* other = nullptr;
    std::thread([&] { other = &AuditLogKeyMap::Instance(); }).join();
    EXPECT_EQ(other, &AuditLogKeyMap::Instance());
}

TEST_F(AuditLogKeyMapTest, Key_OfATextWithItsLeadingBlank_IsTimestampBarNumber)
{
    EXPECT_THAT(AddedBy(7, L" Timestamp: 12:00"), ElementsAre(Pair("12:00|7", " TIMESTAMP: 12:00")));
    EXPECT_THAT(LogLines(Tests::g_pKeyMaker),
                ElementsAre(L"TraceIn|", L"Verbose|CreateHashingTimeStamp:: EventID: 7, logDesc: Timestamp: 12:00",
                            L"Verbose|CreateHashingTimeStamp: Formating ts String: 12:00", L"TraceOut|"));
}

TEST_F(AuditLogKeyMapTest, Key_OfATextThatBeginsWithTheName_IsNotMade)
{
    EXPECT_THAT(AddedBy(8, L"Timestamp: 12:00"), IsEmpty());
    EXPECT_THAT(LogLines(Tests::g_pKeyMaker),
                ElementsAre(L"TraceIn|", L"Verbose|CreateHashingTimeStamp:: EventID: 8, logDesc:Timestamp: 12:00",
                            L"TraceOut|"));
    // Also when there is another one further on.
    EXPECT_THAT(AddedBy(8, L"TIMESTAMP: a TIMESTAMP: b"), IsEmpty());
}

TEST_F(AuditLogKeyMapTest, Key_OfATextWithoutTheName_IsNotMade)
{
    for (const wchar_t* text :
         {L"", L" ", L" Timestamp 12:00", L" Time stamp: 12:00", L" Timestamp :12:00", L" Stamp: 1"})
        EXPECT_THAT(AddedBy(9, text), IsEmpty()) << testing::PrintToString(std::wstring(text));
}

TEST_F(AuditLogKeyMapTest, Key_NameInAnyCase_IsFound)
{
    EXPECT_THAT(AddedBy(10, L" timestamp: A"), ElementsAre(Pair("A|10", " TIMESTAMP: A")));
    EXPECT_THAT(AddedBy(10, L"xTIMESTAMP: B"), ElementsAre(Pair("B|10", "XTIMESTAMP: B")));
    EXPECT_THAT(AddedBy(10, L"\nTimeStamp: C"), ElementsAre(Pair("C|10", "\nTIMESTAMP: C")));
}

TEST_F(AuditLogKeyMapTest, Key_TimestampIsAllThatStandsBehindTheFirstName)
{
    EXPECT_THAT(AddedBy(11, L" Timestamp: a Timestamp: b"),
                ElementsAre(Pair("A TIMESTAMP: B|11", " TIMESTAMP: A TIMESTAMP: B")));
    EXPECT_THAT(AddedBy(11, L" Timestamp: d\r\nmore"), ElementsAre(Pair("D\r\nMORE|11", " TIMESTAMP: D\r\nMORE")));
    EXPECT_THAT(AddedBy(11, L" Timestamp:  two blanks "),
                ElementsAre(Pair(" TWO BLANKS |11", " TIMESTAMP:  TWO BLANKS ")));
    // The eleventh character is left out whatever it is.
    EXPECT_THAT(AddedBy(11, L" Timestamp:xy"), ElementsAre(Pair("Y|11", " TIMESTAMP:XY")));
}

TEST_F(AuditLogKeyMapTest, Key_TextThatEndsBehindTheName_HasAnEmptyTimestamp)
{
    EXPECT_THAT(AddedBy(12, L" Timestamp:"), ElementsAre(Pair("|12", " TIMESTAMP:")));
    EXPECT_THAT(AddedBy(13, L" Timestamp: "), ElementsAre(Pair("|13", " TIMESTAMP: ")));
    EXPECT_TRUE(IsThere(L"", L"12"));
    EXPECT_TRUE(IsThere(L"", L"13"));
}

TEST_F(AuditLogKeyMapTest, Key_NumberIsSignedAndDecimal)
{
    EXPECT_EQ(AddedBy(0, L" Timestamp: N").at(0).first, "N|0");
    EXPECT_EQ(AddedBy(-1, L" Timestamp: N").at(0).first, "N|-1");
    EXPECT_EQ(AddedBy(INT_MAX, L" Timestamp: N").at(0).first, "N|2147483647");
    EXPECT_EQ(AddedBy(INT_MIN, L" Timestamp: N").at(0).first, "N|-2147483648");
    EXPECT_EQ(AddedBy(static_cast<int>(0xC0000004), L" Timestamp: N").at(0).first, "N|-1073741820");
}

TEST_F(AuditLogKeyMapTest, Key_MadeAgain_KeepsTheValueOfTheFirstText)
{
    EXPECT_THAT(AddedBy(14, L"newest Timestamp: S"), ElementsAre(Pair("S|14", "NEWEST TIMESTAMP: S")));
    EXPECT_THAT(AddedBy(14, L"older Timestamp: S"), IsEmpty());
    EXPECT_EQ(std::ranges::count(AuditLogKeyMap::Instance().Copy(), Pair("S|14", "NEWEST TIMESTAMP: S")), 1);
}

TEST_F(AuditLogKeyMapTest, Key_CallersText_StaysAsItIs)
{
    const std::wstring text = L"mixed Case Timestamp: q";
    CreateHashingTimeStamp(15, text);
    EXPECT_EQ(text, L"mixed Case Timestamp: q");
    EXPECT_FALSE(IsThere(L"q", L"15"));
    EXPECT_TRUE(IsThere(L"Q", L"15"));
}

TEST_F(AuditLogKeyMapTest, LookUp_LogsWhatItFound)
{
    const std::wstring stamp = Stamp();
    EXPECT_FALSE(IsThere(stamp, L"4"));
    CreateHashingTimeStamp(4, L" Timestamp: " + stamp);
    EXPECT_TRUE(IsThere(stamp, L"4"));
    EXPECT_THAT(LogLines(Tests::g_pLookUp),
                ElementsAre(L"TraceIn|", L"Verbose|Entry: " + stamp + L"|4 found status: false", L"TraceOut|0",
                            L"TraceIn|", L"Verbose|Entry: " + stamp + L"|4 found status: true", L"TraceOut|1"));
}

TEST_F(AuditLogKeyMapTest, LookUp_SourceAndDescription_DoNotMatter)
{
    CreateHashingTimeStamp(4, L" Timestamp: " + Stamp());
    EXPECT_TRUE(LogEntryAlreadyInserted(L"4", L"", L"", Stamp()));
    EXPECT_TRUE(LogEntryAlreadyInserted(L"4", L"|", L"other", Stamp()));
}

TEST_F(AuditLogKeyMapTest, LookUp_TextsAreTakenLetterForLetter)
{
    const std::wstring stamp = Stamp() + L"Z";
    CreateHashingTimeStamp(4, L" Timestamp: " + stamp);
    EXPECT_TRUE(IsThere(stamp, L"4"));
    for (const wchar_t* eventId : {L"", L"04", L" 4", L"4 ", L"+4", L"-4", L"4.0", L"0x4", L"5", L"44", L"4|"})
        EXPECT_FALSE(IsThere(stamp, eventId)) << testing::PrintToString(std::wstring(eventId));
    for (const std::wstring& other : {Stamp() + L"z", Stamp(), L" " + stamp, stamp + L" ", std::wstring()})
        EXPECT_FALSE(IsThere(other, L"4")) << testing::PrintToString(other);
}

TEST_F(AuditLogKeyMapTest, LookUp_BarsInTheTexts_CanMeetAnotherKey)
{
    CreateHashingTimeStamp(4, L" Timestamp: " + Stamp() + L"|5");
    EXPECT_TRUE(IsThere(Stamp(), L"5|4"));
    EXPECT_TRUE(IsThere(Stamp() + L"|5", L"4"));
}

TEST_F(AuditLogKeyMapTest, LookUp_CharactersBeyondTheCodePage_AreFoundAgain)
{
    for (const std::wstring& stamp :
         {Stamp(1) + L"\x00C9\x20AC", Stamp(2) + L"\x4E2D\x6587", Stamp(3) + L"\xD800", Stamp(4) + L"\xDE00\xD83D",
          Stamp(5) + L"\x01\x1F\t\r\n", Stamp(6) + std::wstring(40000, L'\x4E2D')})
    {
        EXPECT_FALSE(IsThere(stamp, L"4"));
        CreateHashingTimeStamp(4, L" Timestamp: " + stamp);
        EXPECT_TRUE(IsThere(stamp, L"4"));
    }
}

TEST_F(AuditLogKeyMapTest, Strings_AreInTheCodePageOfTheThread)
{
    const std::wstring euro = L"\x20AC";
    char bytes[8]{};
    const int size = WideCharToMultiByte(CP_THREAD_ACP, 0, euro.c_str(), 1, bytes, sizeof(bytes), nullptr, nullptr);
    const std::string narrow(bytes, static_cast<std::size_t>(size));
    EXPECT_THAT(AddedBy(16, euro + L" Timestamp: " + Stamp() + euro),
                ElementsAre(Pair(NarrowStamp() + narrow + "|16", narrow + " TIMESTAMP: " + NarrowStamp() + narrow)));
}

TEST_F(AuditLogKeyMapTest, ManyThreads_LoseNoKey)
{
    constexpr int threads = 4;
    constexpr int each = 500;
    const auto insert = [this](int first)
    {
        for (int i = first; i < threads * each; i += threads)
        {
            AuditLogKeyMap::Instance().Insert(NarrowStamp() + std::to_string(i), "value");
            EXPECT_TRUE(AuditLogKeyMap::Instance().Contains(NarrowStamp() + std::to_string(i)));
            if (i % 100 == 0)
                static_cast<void>(AuditLogKeyMap::Instance().Copy());
        }
    };
    std::vector<std::thread> lstThreads;
    for (int i = 0; i < threads; ++i)
        lstThreads.emplace_back(insert, i);
    for (std::thread& thread : lstThreads)
        thread.join();
    EXPECT_EQ(Added().size(), static_cast<std::size_t>(threads * each));
}
