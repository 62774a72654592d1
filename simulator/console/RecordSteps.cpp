#include "simulator/console/EventRecords.h"
#include "simulator/console/Step.h"
#include "simulator/console/Timeline.h"

#include <ctime>
#include <stdexcept>

namespace Simulator
{
namespace
{
using Action = std::function<void(ScenarioRun&)>;

EventLogRecord ReadSeed(const nlohmann::json& value, const std::string& place)
{
    try
    {
        EventLogRecord record = RecordFromJson(value);
        if (record.m_nTime == 0)
            record.m_nTime = static_cast<std::int64_t>(std::time(nullptr));
        return record;
    }
    catch (const std::invalid_argument& fault)
    {
        throw UsageError(place + ": " + fault.what());
    }
}

// A list of records, or {"records": [...], "times": 1}: they stand in the event log before the agent writes more. The
// forms of a record: see EventLogRecord.h.
Action ReadSeedRecords(const nlohmann::json& value, const std::string& place)
{
    const nlohmann::json object = value.is_array() ? nlohmann::json{{"records", value}} : value;
    ObjectReader reader(object, place);
    std::vector<EventLogRecord> records;
    for (const nlohmann::json& record : reader.Get<std::vector<nlohmann::json>>("records"))
        records.push_back(ReadSeed(record, reader.PlaceOf("records/" + std::to_string(records.size()))));
    const auto times = reader.Get<unsigned>("times", 1);
    reader.Finish();
    return [=](ScenarioRun& run)
    {
        EventLogFile file(run.GetOptions().m_out);
        for (unsigned i = 0; i < times; ++i)
        {
            for (const EventLogRecord& record : records)
            {
                if (const DWORD error = file.Append(record); error != ERROR_SUCCESS)
                    throw StepFailure(WindowsFailure("writing the event log", error));
            }
        }
        run.Say("windows", "the event log holds " + std::to_string(records.size() * times) + " more records:\n" +
                               RecordTable(records));
    };
}

// The name of a source, or {} for all sources but the agent's own log: a table of their records.
Action ReadShowRecords(const nlohmann::json& value, const std::string& place)
{
    if (!value.is_string())
        ObjectReader(value, place).Finish();
    const std::string source = value.is_string() ? value.get<std::string>() : "";
    return [source](ScenarioRun& run)
    {
        RecordsOfSource records(run.GetOptions().m_out, source);
        records.Update();
        Timeline::Print("\n  Records of " + (source.empty() ? "all sources" : "\"" + source + "\"") +
                        " in the Windows event log:\n" + RecordTable(records.Records()) + "\n");
    };
}
} // namespace

std::vector<StepKind> RecordSteps()
{
    return {{"seed-records", &ReadSeedRecords}, {"show-records", &ReadShowRecords}};
}
} // namespace Simulator
