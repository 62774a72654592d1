#include "simulator/console/EventRecords.h"
#include "simulator/console/Step.h"

#include <gmock/gmock.h>

namespace
{
using namespace Simulator;
using nlohmann::json;
using testing::HasSubstr;

// Steps that look into the event log of a folder of the test's own, without an agent.
class RecordStepsTest : public testing::Test
{
protected:
    RecordStepsTest()
    {
        m_options.m_out =
            std::filesystem::temp_directory_path() / ("orvik-steps-" + std::to_string(GetCurrentProcessId()));
        m_options.m_limit = std::chrono::milliseconds(50);
        std::filesystem::remove_all(m_options.m_out);
    }
    ~RecordStepsTest() override
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_options.m_out, ignored);
    }

    void Run(const json& step) { ReadStep(step, "/steps/0").m_action(m_run); }

    // What the failure of the step says; empty when there is none.
    std::string FailureOf(const json& step)
    {
        try
        {
            Run(step);
            return "";
        }
        catch (const StepFailure& failure)
        {
            return failure.what();
        }
    }

    static std::string MistakeIn(const json& step)
    {
        try
        {
            static_cast<void>(ReadStep(step, "/steps/0"));
            return "";
        }
        catch (const UsageError& fault)
        {
            return fault.what();
        }
    }

    void Seed(const std::string& source, const std::string& text, int eventId = 1)
    {
        Run({{"seed-records", json::array({{{"source", source}, {"event-id", eventId}, {"strings", {text}}}})}});
    }

    // As the machine's journal tells of a record.
    void Journal(const json& record)
    {
        m_entries.Append(1, "event-log", record.at("source").get<std::string>(), ToJson(RecordFromJson(record)));
    }

    EntryLog m_entries{[](const Entry&) {}};
    Options m_options;
    ScenarioRun m_run{m_entries, m_options, json::object(), {}};
};

TEST_F(RecordStepsTest, SeedRecords_StandInTheLogWithATime)
{
    Run({{"seed-records", json::array({{{"source", "A"}, {"time", 5}}, {{"source", "B"}}, {{"raw", "00"}}})}});
    const std::vector<EventLogRecord> records = ReadEventLogOf(m_options.m_out);
    ASSERT_EQ(records.size(), 3u);
    EXPECT_EQ(records[0].m_nTime, 5);
    EXPECT_GT(records[1].m_nTime, 1'700'000'000);
    EXPECT_EQ(records[2].m_strRaw, "00");
}

TEST_F(RecordStepsTest, SeedRecords_ManyTimes)
{
    Run({{"seed-records", {{"records", json::array({{{"source", "A"}}, {{"source", "B"}}})}, {"times", 3}}}});
    EXPECT_EQ(ReadEventLogOf(m_options.m_out).size(), 6u);
}

TEST_F(RecordStepsTest, SeedRecords_Mistakes_NameTheirPlace)
{
    EXPECT_THAT(MistakeIn({{"seed-records", json::array({json::object(), {{"sauce", "A"}}})}}),
                HasSubstr("/steps/0/seed-records/records/1: a record has no key \"sauce\""));
    EXPECT_THAT(MistakeIn({{"seed-records", {{"records", json::array()}, {"time", 3}}}}), HasSubstr("unknown key"));
}

TEST_F(RecordStepsTest, ExpectRecords_Count)
{
    Seed("Source", "one");
    Seed("Other", "two");
    EXPECT_EQ(FailureOf({{"expect-records", {{"source", "Source"}, {"count", 1}}}}), "");
    EXPECT_EQ(FailureOf({{"expect-records", {{"source", "Nobody"}, {"count", 0}}}}), "");
    EXPECT_THAT(FailureOf({{"expect-records", {{"source", "Source"}, {"count", 2}}}}),
                HasSubstr("expected 2 records of Source, there are 1"));
    EXPECT_THAT(FailureOf({{"expect-records", {{"source", "Source"}, {"count", 0}}}}), HasSubstr("there are 1"));
}

TEST_F(RecordStepsTest, ExpectRecords_ListInOrder)
{
    Seed("Source", "one", 1);
    Seed("Source", "two", 2);
    const auto expecting = [](const json& records)
    { return json{{"expect-records", {{"source", "Source"}, {"records", records}}}}; };
    EXPECT_EQ(FailureOf(expecting(json::array({"one", {{"event-id", 2}, {"text", "two"}}}))), "");
    EXPECT_THAT(FailureOf(expecting(json::array({"two", "one"}))), HasSubstr("record 1 of Source is not"));
    EXPECT_THAT(FailureOf(expecting(json::array({"one"}))), HasSubstr("expected 1 records of Source, there are 2"));
    EXPECT_THAT(FailureOf(expecting(json::array({"one", {{"type", "error"}}}))), HasSubstr("record 2"));
}

TEST_F(RecordStepsTest, ExpectRecords_EachOnce_ByTextAndNumber)
{
    const json once = {{"expect-records", {{"source", "Source"}, {"each-once", true}}}};
    Seed("Source", "one", 1);
    Seed("Source", "one", 2);
    Seed("Other", "one", 1);
    EXPECT_EQ(FailureOf(once), "");
    Seed("Source", "one", 1);
    EXPECT_THAT(FailureOf(once), HasSubstr("a record of Source stands twice: one"));
}

TEST_F(RecordStepsTest, ExpectRecords_WithoutAnyExpectation_IsAMistake)
{
    EXPECT_THAT(MistakeIn({{"expect-records", {{"source", "Source"}}}}), HasSubstr("count, records, each-once"));
    EXPECT_THAT(MistakeIn({{"expect-records", {{"count", 1}}}}), HasSubstr("\"source\" is missing"));
}

TEST_F(RecordStepsTest, ExpectRecord_EachField)
{
    const json record = {
        {"source", "Source"}, {"type", "warning"}, {"category", 3}, {"event-id", -1}, {"strings", {"text"}}};
    for (const json& field : {json{{"type", "warning"}}, json{{"category", 3}}, json{{"event-id", 0xFFFFFFFF}},
                              json{{"event-id", -1}}, json{{"text", "text"}}, json{{"contains", "ex"}}})
    {
        Journal(record);
        json pattern = field;
        pattern["source"] = "Source";
        EXPECT_EQ(FailureOf({{"expect-record", pattern}}), "") << field;
    }
    for (const json& field : {json{{"type", "error"}}, json{{"category", 0}}, json{{"event-id", 1}},
                              json{{"text", "tex"}}, json{{"contains", "y"}}, json{{"source", "source"}}})
    {
        Journal(record);
        json pattern = {{"source", "Source"}};
        pattern.update(field);
        EXPECT_THAT(FailureOf({{"expect-record", pattern}}), HasSubstr("was written to the event log")) << field;
    }
    EXPECT_THAT(MistakeIn({{"expect-record", {{"source", "A"}, {"type", "fatal"}}}}), HasSubstr("\"type\" cannot be"));
}

TEST_F(RecordStepsTest, ExpectRecord_TakesWhatItFinds)
{
    const json step = {{"expect-record", {{"source", "Source"}}}};
    Journal({{"source", "Source"}});
    EXPECT_EQ(FailureOf(step), "");
    EXPECT_NE(FailureOf(step), "");
}

TEST_F(RecordStepsTest, ExpectNoRecord_SinceTheMark)
{
    const json step = {{"expect-no-record", {{"source", "Source"}, {"contains", "x"}}}};
    Journal({{"source", "Source"}, {"strings", {"x"}}});
    EXPECT_THAT(FailureOf(step), HasSubstr("no record was expected of Source"));
    m_run.Mark();
    Journal({{"source", "Source"}, {"strings", {"y"}}});
    Journal({{"source", "Other"}, {"strings", {"x"}}});
    EXPECT_EQ(FailureOf(step), "");
}

TEST_F(RecordStepsTest, ShowRecords_PrintsATable)
{
    Seed("Source", "first text");
    Seed("Other", "second text");
    testing::internal::CaptureStdout();
    Run({{"show-records", "Source"}});
    const std::string one = testing::internal::GetCapturedStdout();
    EXPECT_THAT(one, HasSubstr("first text"));
    EXPECT_THAT(one, testing::Not(HasSubstr("second text")));
    testing::internal::CaptureStdout();
    Run({{"show-records", json::object()}});
    EXPECT_THAT(testing::internal::GetCapturedStdout(), HasSubstr("second text"));
}

TEST_F(RecordStepsTest, KillAgent_NoneRuns_IsAFailure)
{
    EXPECT_THAT(FailureOf({{"kill-agent", json::object()}}), HasSubstr("the agent is not running"));
    EXPECT_THAT(MistakeIn({{"kill-agent", {{"before", 5}}}}), HasSubstr("unknown key \"before\""));
}
} // namespace
