#include "wmievents/AuditLogCopy.h"

#include "tests/auditlog/AuditLogTest.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;
using Tests::AuditLogEntry;
using Tests::LogXml;
using Tests::RecordText;

namespace
{
// Which entries are taken for written ones. The rules have gaps on purpose: an entry that falls into one is written by
// every copy.
class AuditLogDuplicateTest : public Tests::AuditLogTest
{
protected:
    AuditLogEntry With(std::wstring timestamp, std::wstring eventId) const
    {
        return {std::move(timestamp), L"BIOS", std::move(eventId), L"Intrusion", L"WARN"};
    }

    // How often an entry is written by so many copies of a log that holds it so many times.
    static std::size_t Writes(const AuditLogEntry& entry, int copies, std::size_t times)
    {
        StartWatching();
        for (int i = 0; i < copies; ++i)
            Walk(LogXml(std::vector(times, entry)));
        return Written().size();
    }
};
} // namespace

TEST_F(AuditLogDuplicateTest, SoundEntry_IsWrittenOnceHoweverOftenItComes)
{
    const wchar_t* eventIds[] = {L"0", L"4", L"10", L"2147483647"};
    int n = 0;
    for (const wchar_t* eventId : eventIds)
    {
        EXPECT_EQ(Writes(With(Stamp(++n), eventId), 3, 1), 1u);
        EXPECT_EQ(Writes(With(Stamp(++n), eventId), 3, 3), 1u);
    }
}

TEST_F(AuditLogDuplicateTest, TwoOfOneKeyInOneLog_TheLaterOneIsWritten)
{
    AuditLogEntry first = Entry();
    AuditLogEntry second = Entry();
    first.m_strDescription = L"first";
    second.m_strDescription = L"second";
    Walk(LogXml({first, second}));
    EXPECT_THAT(WrittenTexts(), ElementsAre(RecordText(second)));
}

TEST_F(AuditLogDuplicateTest, OtherFields_DoNotMatter)
{
    Walk(LogXml({Entry()}));
    StartWatching();
    for (int i = 0; i < 3; ++i)
    {
        AuditLogEntry entry = Entry();
        (i == 0 ? entry.m_strDescription : i == 1 ? entry.m_strSource : entry.m_strLogType) = L"other";
        Walk(LogXml({entry}));
    }
    EXPECT_THAT(Written(), IsEmpty());
}

TEST_F(AuditLogDuplicateTest, SameTimestampWithOtherNumber_IsAnotherEntry)
{
    Walk(LogXml({With(Stamp(), L"4"), With(Stamp(), L"5"), With(Stamp(), L"44")}));
    EXPECT_EQ(Written().size(), 3u);
    StartWatching();
    Walk(LogXml({With(Stamp(), L"4"), With(Stamp(), L"6")}));
    ASSERT_EQ(Written().size(), 1u);
    EXPECT_EQ(Written()[0].m_dwEventId, 6u);
}

TEST_F(AuditLogDuplicateTest, SameNumberWithOtherTimestamp_IsAnotherEntry)
{
    EXPECT_EQ(Writes(Entry(0), 1, 1), 1u);
    EXPECT_EQ(Writes(Entry(1), 1, 1), 1u);
}

TEST_F(AuditLogDuplicateTest, LowerCaseInTheTimestamp_IsWrittenByEveryCopy)
{
    for (const wchar_t* part : {L"t", L"10:11:12 am", L"2023-05-01t10:11:12z", L"\x00E9", L"May"})
        EXPECT_EQ(Writes(With(Stamp() + part, L"4"), 3, 2), 6u) << testing::PrintToString(std::wstring(part));
    for (const wchar_t* part : {L"T", L"10:11:12 AM", L"2023-05-01T10:11:12Z", L"\x4E2D", L"|%S"})
        EXPECT_EQ(Writes(With(Stamp(1) + part, L"4"), 3, 2), 1u) << testing::PrintToString(std::wstring(part));
}

TEST_F(AuditLogDuplicateTest, NumberThatIsNotPlain_IsWrittenByEveryCopy)
{
    int n = 0;
    for (const wchar_t* eventId : {L"", L"04", L"007", L" 4", L"4 ", L"+4", L"-0", L"0x10", L"12abc", L"abc", L"4.0",
                                   L"00", L"99999999999", L"-99999999999", L"2147483648", L"4294967295"})
        EXPECT_EQ(Writes(With(Stamp(++n), eventId), 3, 2), 6u) << testing::PrintToString(std::wstring(eventId));
}

TEST_F(AuditLogDuplicateTest, NegativeNumberInItsPlainForm_IsWrittenOnce)
{
    EXPECT_EQ(Writes(With(Stamp(0), L"-1"), 3, 2), 1u);
    EXPECT_EQ(Writes(With(Stamp(1), L"-2147483648"), 3, 2), 1u);
}

TEST_F(AuditLogDuplicateTest, NumberInAnotherForm_IsTakenForThePlainOneThatFollows)
{
    Walk(LogXml({With(Stamp(), L"007")}));
    StartWatching();
    // Its record has the number 7, so that its key is that of the plain entry.
    Walk(LogXml({With(Stamp(), L"7")}));
    EXPECT_THAT(Written(), IsEmpty());
    Walk(LogXml({With(Stamp(), L"007")}));
    EXPECT_EQ(Written().size(), 1u);
}

TEST_F(AuditLogDuplicateTest, UpperCaseTimestamp_IsTakenForTheLowerCaseOneBeforeIt)
{
    Walk(LogXml({With(Stamp() + L"z", L"4")}));
    StartWatching();
    Walk(LogXml({With(Stamp() + L"Z", L"4")}));
    EXPECT_THAT(Written(), IsEmpty());
}

TEST_F(AuditLogDuplicateTest, BlanksAroundTheTimestamp_ArePartOfIt)
{
    EXPECT_EQ(Writes(With(L" " + Stamp(), L"4"), 3, 2), 1u);
    EXPECT_EQ(Writes(With(Stamp() + L" ", L"4"), 3, 2), 1u);
    EXPECT_EQ(Writes(With(Stamp(), L"4"), 3, 2), 1u);
}

TEST_F(AuditLogDuplicateTest, MissingFields_FollowTheSameRules)
{
    EXPECT_EQ(Writes(With(L"", L"4711"), 3, 2), 1u);
    EXPECT_EQ(Writes(With(L"", L""), 3, 2), 6u);
    EXPECT_EQ(Writes(With(Stamp(), L""), 3, 2), 6u);
    EXPECT_EQ(Writes({Stamp(1), L"", L"4", L"", L""}, 3, 2), 1u);
}

TEST_F(AuditLogDuplicateTest, EntryWithoutANumber_IsTakenForNumberZeroThatFollows)
{
    EXPECT_EQ(Writes(With(Stamp(), L""), 1, 1), 1u);
    EXPECT_EQ(Writes(With(Stamp(), L"0"), 2, 1), 0u);
}

TEST_F(AuditLogDuplicateTest, LineBreaksInTheTimestamp_BelongToIt)
{
    // XML turns a line break into one character; the reference keeps the other one.
    EXPECT_EQ(Writes(With(Stamp() + L"\nSECOND", L"4"), 3, 2), 1u);
}
