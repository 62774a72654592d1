#include "simulator/console/Step.h"

namespace Simulator
{
namespace
{
using Action = std::function<void(ScenarioRun&)>;

Action PlanAction(const nlohmann::json& plan)
{
    return [plan](ScenarioRun& run) { run.Plan(plan); };
}

// {"call": name or "*", "hr": "0x80004005", "nth": 1, "repeat": "once" or "always"}
Action ReadFail(const nlohmann::json& value, const std::string& place)
{
    ObjectReader reader(value, place);
    const nlohmann::json rule = {{"call", reader.Get<std::string>("call")},
                                 {"hr", reader.Get<std::string>("hr", "0x80004005")},
                                 {"nth", reader.Get<unsigned>("nth", 1)},
                                 {"repeat", reader.Get<std::string>("repeat", "once")}};
    reader.Finish();
    if (rule["repeat"] != "once" && rule["repeat"] != "always")
        reader.Complain(R"(repeat is "once" or "always")");
    return PlanAction({{"fail", rule}});
}

// {"call": name, "milliseconds": number}
Action ReadDelay(const nlohmann::json& value, const std::string& place)
{
    ObjectReader reader(value, place);
    const nlohmann::json rule = {{"call", reader.Get<std::string>("call")},
                                 {"milliseconds", reader.Get<unsigned>("milliseconds")}};
    reader.Finish();
    return PlanAction({{"delay", rule}});
}

// The name of a call, which does not return until "release".
Action ReadHang(const nlohmann::json& value, const std::string& place)
{
    if (!value.is_string())
        throw UsageError(place + ": the name of a call is expected");
    return PlanAction({{"hang", value}});
}

Action ReadRelease(const nlohmann::json& value, const std::string& place)
{
    ObjectReader(value, place).Finish();
    return PlanAction({{"release", true}});
}

Action ReadReset(const nlohmann::json& value, const std::string& place)
{
    ObjectReader(value, place).Finish();
    return PlanAction({{"reset", true}});
}
} // namespace

std::vector<StepKind> PlanSteps()
{
    return {{"fail", &ReadFail},
            {"delay", &ReadDelay},
            {"hang", &ReadHang},
            {"release", &ReadRelease},
            {"reset-plan", &ReadReset}};
}
} // namespace Simulator
