#include "tests/simulator/machine/EventLogTest.h"

#include <fstream>

namespace
{
using namespace Simulator;
using testing::ElementsAre;

class EventLogOnDisk : public EventLogTest
{
protected:
    void WriteRaw(const std::string& text) const
    {
        std::ofstream(EventLogPath(m_folder), std::ios::binary | std::ios::app) << text;
    }
    [[nodiscard]] std::string Content() const
    {
        std::ifstream file(EventLogPath(m_folder), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }
    void Seed(const nlohmann::json& record) const
    {
        EXPECT_EQ(EventLogFile(m_folder).Append(RecordFromJson(record)), static_cast<DWORD>(ERROR_SUCCESS));
    }
};

TEST_F(EventLogOnDisk, OpenedAgain_EarlierRecordsAreThere)
{
    Report(L"Source", {L"before"});
    EventLogStore::Instance().Open(m_folder);
    Report(L"Source", {L"after"});
    EXPECT_THAT(FirstStrings(ReadAll(Backwards)), ElementsAre(L"after", L"before"));
}

TEST_F(EventLogOnDisk, TwoWriters_EachRecordOnALineOfItsOwn)
{
    EventLogFile other(m_folder);
    Report(L"Source", {L"one"});
    EXPECT_EQ(other.Append(RecordFromJson({{"source", "Other"}, {"strings", {"two"}}})),
              static_cast<DWORD>(ERROR_SUCCESS));
    Report(L"Source", {L"three"});
    EXPECT_THAT(FirstStrings(ReadAll(Forwards)), ElementsAre(L"one", L"two", L"three"));
}

TEST_F(EventLogOnDisk, LastLineCutShort_IsNoRecord)
{
    Report(L"Source", {L"one"});
    const std::string whole = Content();
    // Wherever the program was ended.
    for (std::size_t size = 1; size < whole.size(); ++size)
    {
        EventLogStore::Instance().Open(m_folder / std::to_string(size));
        std::ofstream(EventLogPath(m_folder / std::to_string(size)), std::ios::binary)
            << whole << whole.substr(0, size);
        EXPECT_EQ(ReadAll(Backwards).size(), 1u) << size;
    }
}

TEST_F(EventLogOnDisk, AfterALineCutShort_NextRecordIsWhole)
{
    Report(L"Source", {L"one"});
    WriteRaw(R"({"source": "Sou)");
    Report(L"Source", {L"two"});
    Report(L"Source", {L"three"});
    const std::vector<ReadRecord> records = ReadAll(Backwards);
    EXPECT_THAT(FirstStrings(records), ElementsAre(L"three", L"two", L"one"));
    EXPECT_EQ(ReadEventLogOf(m_folder).size(), 3u);
    // The line that was cut short keeps its number.
    EXPECT_EQ(records[1].m_dwNumber, 3u);
}

TEST_F(EventLogOnDisk, LineThatIsFinishedLater_IsARecordThen)
{
    EventLogLines lines(m_folder);
    WriteRaw(R"({"source": "Source")");
    lines.Update();
    EXPECT_EQ(lines.Count(), 0u);
    WriteRaw(", \"event-id\": 5}\n");
    lines.Update();
    ASSERT_EQ(lines.Count(), 1u);
    EXPECT_EQ(lines.At(0).value().m_dwEventId, 5u);
}

TEST_F(EventLogOnDisk, LinesThatAreNoRecords_AreLeftOut)
{
    WriteRaw("\n[]\n{\"source\": 5}\n{\"raw\": \"0\"}\nnonsense\n\xFF\n");
    Report(L"Source", {L"text"});
    EXPECT_THAT(FirstStrings(ReadAll(Forwards)), ElementsAre(L"text"));
    EXPECT_THAT(FirstStrings(ReadAll(Backwards)), ElementsAre(L"text"));
}

TEST_F(EventLogOnDisk, NoFile_NoRecords)
{
    EXPECT_TRUE(ReadEventLogOf(m_folder / "none").empty());
    EventLogStore::Instance().Open({});
    EXPECT_EQ(Report(L"Source", {L"kept nowhere"}), static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_TRUE(ReadAll(Backwards).empty());
    EXPECT_THAT(Journal::Instance().Subjects("event-log"), ElementsAre("Source"));
}

TEST_F(EventLogOnDisk, SeededRecords_AreReadWithTheOthers)
{
    Seed({{"source", "orvik veritor"}, {"type", "error"}, {"event-id", -1}, {"strings", {"seeded"}}, {"time", 86400}});
    Report(L"Orvik Veritor", {L"written"});
    const std::vector<ReadRecord> records = ReadAll(Forwards);
    ASSERT_THAT(FirstStrings(records), ElementsAre(L"seeded", L"written"));
    EXPECT_EQ(records[0].m_strSource, L"orvik veritor");
    EXPECT_EQ(records[0].m_wType, EVENTLOG_ERROR_TYPE);
    EXPECT_EQ(records[0].m_dwEventId, 0xFFFFFFFFu);
    EXPECT_EQ(records[0].m_dwTime, 86400u);
}

TEST_F(EventLogOnDisk, RawRecord_IsReadByteForByte)
{
    Seed({{"raw", "00000000FF"}});
    const auto log = OpenLog();
    std::vector<BYTE> buffer(16, 0xAA);
    DWORD read = 0;
    DWORD needed = 0;
    EXPECT_EQ(ReadOnce(log.get(), Backwards, buffer, read, needed), static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_EQ(read, 5u);
    EXPECT_THAT(std::vector<BYTE>(buffer.begin(), buffer.begin() + 6), ElementsAre(0, 0, 0, 0, 0xFF, 0xAA));
}
} // namespace
