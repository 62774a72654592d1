#include "simulator/console/EventRecords.h"

#include <gmock/gmock.h>

namespace
{
using namespace Simulator;
using testing::HasSubstr;

EventLogRecord MakeRecord(const std::string& source, std::vector<std::string> strings)
{
    EventLogRecord record;
    record.m_strSource = source;
    record.m_wType = EVENTLOG_WARNING_TYPE;
    record.m_dwEventId = 12;
    record.m_lstStrings = std::move(strings);
    record.m_nTime = 86'400 + 3'661;
    return record;
}

// A folder of the test's own.
class RecordsInAFolder : public testing::Test
{
protected:
    RecordsInAFolder() { std::filesystem::remove_all(m_folder); }
    ~RecordsInAFolder() override
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }

    void Write(const std::string& source, const std::string& text) const
    {
        EXPECT_EQ(EventLogFile(m_folder).Append(MakeRecord(source, {text})), static_cast<DWORD>(ERROR_SUCCESS));
    }

    const std::filesystem::path m_folder =
        std::filesystem::temp_directory_path() / ("orvik-records-" + std::to_string(GetCurrentProcessId()));
};

TEST(EventRecords, TextInOneLine_LineBreaksAndStringsAreSeparated)
{
    EXPECT_EQ(TextInOneLine(MakeRecord("Source", {"one\r\ntwo\nthree", "", "four"})), "one / two / three / four");
    EXPECT_EQ(TextInOneLine(MakeRecord("Source", {})), "");
    EXPECT_EQ(TextInOneLine(MakeRecord("Source", {"\r\n"})), "");
}

TEST(EventRecords, TextInOneLine_RawRecord_ItsSize)
{
    EventLogRecord record;
    record.m_strRaw = "001122";
    EXPECT_EQ(TextInOneLine(record), "3 bytes");
}

TEST(EventRecords, Table_LineForEachRecord)
{
    EventLogRecord raw;
    raw.m_strRaw = "00";
    const std::string table = RecordTable({MakeRecord("Orvik Veritor", {"a\r\nb"}), raw});
    EXPECT_EQ(std::count(table.begin(), table.end(), '\n'), 2);
    EXPECT_THAT(table, HasSubstr("     1  01:01:01  Orvik Veritor       warning              12  a / b"));
    EXPECT_THAT(table, HasSubstr("(damaged)"));
    EXPECT_THAT(RecordTable({}), HasSubstr("no records"));
    EventLogRecord damaged = MakeRecord("Source", {"text"});
    damaged.m_damage.m_length = 0;
    EXPECT_THAT(RecordTable({damaged}), HasSubstr("text (damaged: {\"length\":0})"));
}

TEST(EventRecords, RecordOfEntry_OfTheEventLogAlone)
{
    Entry entry;
    entry.m_strKind = "event-log";
    entry.m_details = ToJson(MakeRecord("Source", {"text"}));
    ASSERT_TRUE(RecordOf(entry));
    EXPECT_EQ(RecordOf(entry)->m_strSource, "Source");
    entry.m_details["unknown"] = 1;
    EXPECT_FALSE(RecordOf(entry));
    entry.m_strKind = "call";
    EXPECT_FALSE(RecordOf(entry));
}

TEST_F(RecordsInAFolder, OneSource_LetterForLetter_AsTheyAreWritten)
{
    RecordsOfSource records(m_folder, "Source");
    records.Update();
    EXPECT_TRUE(records.Records().empty());
    Write("Source", "one");
    Write("source", "other");
    records.Update();
    EXPECT_EQ(records.Records().size(), 1u);
    Write("Source", "two");
    records.Update();
    ASSERT_EQ(records.Records().size(), 2u);
    EXPECT_EQ(TextInOneLine(records.Records()[1]), "two");
}

TEST_F(RecordsInAFolder, NoSource_AllButTheAgentsOwnLog)
{
    Write("One", "text");
    Write(DiagnosticSource, "line");
    Write("Two", "text");
    RecordsOfSource records(m_folder, "");
    records.Update();
    EXPECT_EQ(records.Records().size(), 2u);
}
} // namespace
