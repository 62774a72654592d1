#include "tests/simulator/machine/EventLogTest.h"

#include <chrono>

namespace
{
using namespace Simulator;
using testing::ElementsAre;

class EventLogReading : public EventLogTest
{
protected:
    static void ReportTexts(std::initializer_list<const wchar_t*> texts)
    {
        for (const wchar_t* text : texts)
            EXPECT_EQ(Report(L"Source", {text}), static_cast<DWORD>(ERROR_SUCCESS));
    }

    // Of a record with that text, as it stands in a buffer.
    static DWORD SizeOfNext(HANDLE log, DWORD flags)
    {
        std::vector<BYTE> buffer(1);
        DWORD read = 0;
        DWORD needed = 0;
        EXPECT_EQ(ReadOnce(log, flags, buffer, read, needed), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
        EXPECT_EQ(read, 0u);
        return needed;
    }
};

TEST_F(EventLogReading, EmptyLog_IsAtItsEnd)
{
    EXPECT_TRUE(ReadAll(Backwards).empty());
    EXPECT_TRUE(ReadAll(Forwards).empty());
}

TEST_F(EventLogReading, Backwards_NewestFirst_OfAllSources)
{
    Report(L"OrvikNotifications", {L"diagnostic"});
    Report(L"Orvik Veritor", {L"entry"});
    Report(L"Somebody", {L"else"});
    const std::vector<ReadRecord> records = ReadAll(Backwards);
    EXPECT_THAT(FirstStrings(records), ElementsAre(L"else", L"entry", L"diagnostic"));
    EXPECT_EQ(records[0].m_strSource, L"Somebody");
    EXPECT_EQ(records[0].m_dwNumber, 3u);
    EXPECT_EQ(records[2].m_strSource, L"OrvikNotifications");
    EXPECT_EQ(records[2].m_dwNumber, 1u);
}

TEST_F(EventLogReading, Forwards_OldestFirst_AlsoWithoutADirection)
{
    ReportTexts({L"one", L"two"});
    EXPECT_THAT(FirstStrings(ReadAll(Forwards)), ElementsAre(L"one", L"two"));
    EXPECT_THAT(FirstStrings(ReadAll(EVENTLOG_SEQUENTIAL_READ)), ElementsAre(L"one", L"two"));
}

TEST_F(EventLogReading, EachHandle_HasAPlaceOfItsOwn)
{
    ReportTexts({L"one", L"two"});
    const auto first = OpenLog();
    const auto second = OpenLog(L"No such source");
    EXPECT_EQ(ReadAll(first.get(), Backwards).size(), 2u);
    EXPECT_EQ(ReadAll(second.get(), Forwards).size(), 2u);
    EXPECT_TRUE(ReadAll(first.get(), Backwards).empty());
}

TEST_F(EventLogReading, WholeRecordsOnly_AsManyAsFit)
{
    ReportTexts({L"one", L"two", L"three"});
    const auto log = OpenLog();
    const DWORD three = SizeOfNext(log.get(), Backwards);
    std::vector<BYTE> buffer(2 * three - 1);
    DWORD read = 0;
    DWORD needed = 0;
    EXPECT_EQ(ReadOnce(log.get(), Backwards, buffer, read, needed), static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_EQ(needed, 0u);
    EXPECT_THAT(FirstStrings(TakeApart(buffer, read)),
                testing::AnyOf(ElementsAre(L"three"), ElementsAre(L"three", L"two")));
    std::vector<BYTE> exact(SizeOfNext(log.get(), Backwards));
    EXPECT_EQ(ReadOnce(log.get(), Backwards, exact, read, needed), static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_EQ(read, exact.size());
}

TEST_F(EventLogReading, BufferTooSmall_SizeThatIsAskedForSuffices)
{
    Report(L"Source", {std::wstring(31'839, L'x'), std::wstring(31'839, L'y')});
    ReportTexts({L"small"});
    const auto log = OpenLog();
    std::vector<BYTE> buffer(65'536);
    DWORD read = 0;
    DWORD needed = 0;
    EXPECT_EQ(ReadOnce(log.get(), Backwards, buffer, read, needed), static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_THAT(FirstStrings(TakeApart(buffer, read)), ElementsAre(L"small"));
    EXPECT_EQ(ReadOnce(log.get(), Backwards, buffer, read, needed), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    EXPECT_GT(needed, 4u * 31'839);
    buffer.resize(needed - 1);
    EXPECT_EQ(ReadOnce(log.get(), Backwards, buffer, read, needed), static_cast<DWORD>(ERROR_INSUFFICIENT_BUFFER));
    buffer.resize(needed);
    EXPECT_EQ(ReadOnce(log.get(), Backwards, buffer, read, needed), static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_EQ(TakeApart(buffer, read).front().m_lstStrings.size(), 2u);
    EXPECT_EQ(ReadOnce(log.get(), Backwards, buffer, read, needed), static_cast<DWORD>(ERROR_HANDLE_EOF));
}

TEST_F(EventLogReading, WrittenMeanwhile_ForwardsGoesOn_BackwardsDoesNotSeeIt)
{
    ReportTexts({L"one"});
    const auto forwards = OpenLog();
    const auto backwards = OpenLog();
    EXPECT_THAT(FirstStrings(ReadAll(forwards.get(), Forwards)), ElementsAre(L"one"));
    EXPECT_EQ(SizeOfNext(backwards.get(), Backwards) % sizeof(DWORD), 0u);
    ReportTexts({L"two"});
    EXPECT_THAT(FirstStrings(ReadAll(forwards.get(), Forwards)), ElementsAre(L"two"));
    EXPECT_THAT(FirstStrings(ReadAll(backwards.get(), Backwards)), ElementsAre(L"one"));
}

TEST_F(EventLogReading, OtherDirection_ComesBackOverWhatWasRead)
{
    ReportTexts({L"one", L"two"});
    const auto log = OpenLog();
    EXPECT_THAT(FirstStrings(ReadAll(log.get(), Forwards)), ElementsAre(L"one", L"two"));
    EXPECT_THAT(FirstStrings(ReadAll(log.get(), Backwards)), ElementsAre(L"two", L"one"));
}

TEST_F(EventLogReading, Seek_BeginsAtThatRecord)
{
    ReportTexts({L"one", L"two", L"three"});
    const auto log = OpenLog();
    std::vector<BYTE> buffer(65'536);
    DWORD read = 0;
    DWORD needed = 0;
    EXPECT_EQ(ReadOnce(log.get(), EVENTLOG_SEEK_READ | EVENTLOG_FORWARDS_READ, buffer, read, needed, 2),
              static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_THAT(FirstStrings(TakeApart(buffer, read)), ElementsAre(L"two", L"three"));
    EXPECT_EQ(ReadOnce(log.get(), EVENTLOG_SEEK_READ | EVENTLOG_BACKWARDS_READ, buffer, read, needed, 2),
              static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_THAT(FirstStrings(TakeApart(buffer, read)), ElementsAre(L"two", L"one"));
    for (const DWORD number : {0u, 4u})
        EXPECT_EQ(ReadOnce(log.get(), EVENTLOG_SEEK_READ | EVENTLOG_FORWARDS_READ, buffer, read, needed, number),
                  static_cast<DWORD>(ERROR_INVALID_PARAMETER));
}

// Ten times the records in ten times the time, with room for a machine that does other things.
TEST_F(EventLogReading, ManyRecords_TakeTimeInProportion)
{
    const auto secondsFor = [this](int count)
    {
        EventLogStore::Instance().Open(m_folder / std::to_string(count));
        EventLogFile file(m_folder / std::to_string(count));
        EventLogRecord record;
        record.m_strSource = "Source";
        record.m_lstStrings = {"Veritor log entry: intrusion"};
        for (int i = 0; i < count; ++i)
            EXPECT_EQ(file.Append(record), static_cast<DWORD>(ERROR_SUCCESS));
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_EQ(ReadAll(Backwards, 4096).size(), static_cast<std::size_t>(count));
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    };
    const double few = secondsFor(2'000);
    EXPECT_LT(secondsFor(20'000), 40 * few);
}
} // namespace
