#include "simulator/console/EventRecords.h"
#include "simulator/console/RecordPattern.h"
#include "simulator/console/Step.h"

#include <thread>

namespace Simulator
{
namespace
{
using Action = std::function<void(ScenarioRun&)>;
using Records = std::vector<EventLogRecord>;

constexpr std::chrono::milliseconds g_pollInterval{20};

struct SourcePattern
{
    std::string m_strSource;
    RecordPattern m_pattern;

    [[nodiscard]] bool Fits(const Entry& entry) const
    {
        const std::optional<EventLogRecord> record = RecordOf(entry);
        return record && record->m_strSource == m_strSource && m_pattern.Fits(*record);
    }
};

SourcePattern ReadSourcePattern(const nlohmann::json& value, const std::string& place)
{
    ObjectReader reader(value, place);
    const auto source = reader.Get<std::string>("source");
    SourcePattern pattern{source, ReadRecordPattern(reader)};
    reader.Finish();
    return pattern;
}

// The records of that source that were written since the mark and no expectation has taken.
Records WrittenSinceMark(const ScenarioRun& run, const std::string& source)
{
    Records records;
    for (const Entry& entry : run.SinceMark())
    {
        std::optional<EventLogRecord> record = RecordOf(entry);
        if (record && record->m_strSource == source)
            records.push_back(*std::move(record));
    }
    return records;
}

// {"source", "type", "category", "event-id", "text", "contains"}: such a record is written.
Action ReadExpectRecord(const nlohmann::json& value, const std::string& place)
{
    const SourcePattern pattern = ReadSourcePattern(value, place);
    return [pattern](ScenarioRun& run)
    {
        if (!run.Take([&](const Entry& entry) { return pattern.Fits(entry); }))
            throw StepFailure("no record " + pattern.m_pattern.m_strDescription + " of " + pattern.m_strSource +
                              " was written to the event log; records written:\n" +
                              RecordTable(WrittenSinceMark(run, pattern.m_strSource)));
    };
}

// The same: no such record was written.
Action ReadExpectNoRecord(const nlohmann::json& value, const std::string& place)
{
    const SourcePattern pattern = ReadSourcePattern(value, place);
    return [pattern](ScenarioRun& run)
    {
        for (const Entry& entry : run.SinceMark())
        {
            if (pattern.Fits(entry))
                throw StepFailure("no record was expected of " + pattern.m_strSource + ", and this was written:\n" +
                                  RecordTable({RecordOf(entry).value()}));
        }
    };
}

// What the event log must hold of one source, from its first record on.
struct LogContent
{
    std::string m_strSource;
    std::optional<std::size_t> m_count;
    std::optional<std::vector<RecordPattern>> m_records;
    bool m_bEachOnce = false;

    // As many as are waited for.
    [[nodiscard]] std::size_t Least() const { return m_records ? m_records->size() : m_count.value_or(0); }
    // Throws StepFailure.
    void Check(const Records& records) const;
};

[[noreturn]] void Fail(const std::string& sentence, const Records& records)
{
    throw StepFailure(sentence + "; the event log holds:\n" + RecordTable(records));
}

void CheckEachOnce(const std::string& source, const Records& records)
{
    std::set<std::pair<DWORD, std::vector<std::string>>> seen;
    for (const EventLogRecord& record : records)
    {
        if (!seen.emplace(record.m_dwEventId, record.m_lstStrings).second)
            Fail("a record of " + source + " stands twice: " + TextInOneLine(record), records);
    }
}

void LogContent::Check(const Records& records) const
{
    const std::size_t wanted = m_count ? *m_count : Least();
    if ((m_count || m_records) && records.size() != wanted)
        Fail("expected " + std::to_string(wanted) + " records of " + m_strSource + ", there are " +
                 std::to_string(records.size()),
             records);
    for (std::size_t i = 0; m_records && i < m_records->size(); ++i)
    {
        if (!(*m_records)[i].Fits(records[i]))
            Fail("record " + std::to_string(i + 1) + " of " + m_strSource + " is not " +
                     (*m_records)[i].m_strDescription,
                 records);
    }
    if (m_bEachOnce)
        CheckEachOnce(m_strSource, records);
}

LogContent ReadContent(const nlohmann::json& value, const std::string& place)
{
    ObjectReader reader(value, place);
    LogContent content;
    content.m_strSource = reader.Get<std::string>("source");
    if (reader.Find("count") != nullptr)
        content.m_count = reader.Get<std::size_t>("count");
    if (reader.Find("records") != nullptr)
    {
        content.m_records.emplace();
        for (const nlohmann::json& record : reader.Get<std::vector<nlohmann::json>>("records"))
            content.m_records->push_back(
                ReadRecordPattern(record, reader.PlaceOf("records/" + std::to_string(content.m_records->size()))));
    }
    content.m_bEachOnce = reader.Get<bool>("each-once", false);
    reader.Finish();
    if (!content.m_count && !content.m_records && !content.m_bEachOnce)
        reader.Complain("one of count, records, each-once is expected");
    return content;
}

// {"source", "count": 3, "records": [texts or patterns, oldest first], "each-once": true}: what the whole event log
// holds of that source, also of earlier runs of the agent. Waits until there are so many.
Action ReadExpectRecords(const nlohmann::json& value, const std::string& place)
{
    const LogContent content = ReadContent(value, place);
    return [content](ScenarioRun& run)
    {
        const auto end = std::chrono::steady_clock::now() + run.GetOptions().m_limit;
        RecordsOfSource records(run.GetOptions().m_out, content.m_strSource);
        records.Update();
        while (records.Records().size() < content.Least() && std::chrono::steady_clock::now() < end)
        {
            std::this_thread::sleep_for(g_pollInterval);
            records.Update();
        }
        content.Check(records.Records());
        run.Say("check", "the event log holds " + std::to_string(records.Records().size()) + " records of " +
                             content.m_strSource + (content.m_bEachOnce ? ", none of them twice" : ""));
    };
}
} // namespace

std::vector<StepKind> RecordExpectations()
{
    return {{"expect-record", &ReadExpectRecord},
            {"expect-no-record", &ReadExpectNoRecord},
            {"expect-records", &ReadExpectRecords}};
}
} // namespace Simulator
