#include "simulator/console/Number.h"
#include "simulator/console/Step.h"

#include <windows.h>

#include <thread>

namespace Simulator
{
namespace
{
using Action = std::function<void(ScenarioRun&)>;

constexpr std::chrono::seconds g_settlingLimit{10};
constexpr std::chrono::milliseconds g_settlingStep{100};

// Nothing is left out then.
bool IsLongRun()
{
    wchar_t value[4] = {};
    return GetEnvironmentVariableW(L"ORVIK_LONG", value, ARRAYSIZE(value)) == 1 && value[0] == L'1';
}

// {"times": 20, "long": 10000, "steps": [...]}: the steps again and again, "long" times where ORVIK_LONG=1 says so.
Action ReadRepeat(const nlohmann::json& value, const std::string& place)
{
    ObjectReader reader(value, place);
    const auto times = reader.Get<unsigned>("times");
    const auto longTimes = reader.Get<unsigned>("long", times);
    const nlohmann::json& list = reader.Required("steps");
    reader.Finish();
    std::vector<Step> steps;
    steps.reserve(list.size());
    for (std::size_t i = 0; i < list.size(); ++i)
        steps.push_back(ReadStep(list[i], place + "/steps/" + std::to_string(i)));
    return [=](ScenarioRun& run)
    {
        const unsigned count = IsLongRun() ? longTimes : times;
        for (unsigned i = 0; i < count; ++i)
        {
            for (const Step& step : steps)
            {
                try
                {
                    step.m_action(run);
                }
                catch (const StepFailure& failure)
                {
                    throw StepFailure("round " + std::to_string(i + 1) + ", " + step.m_strPlace + ": " +
                                      failure.what());
                }
            }
        }
        run.Say("check", std::to_string(count) + " rounds");
    };
}

// "114 handles, 9 registry keys, 9 threads, 39112 KB"
std::string UseText(const nlohmann::json& use)
{
    return use.at("handles").dump() + " handles, " + use.at("keys").dump() + " registry keys, " +
           use.at("threads").dump() + " threads, " + use.at("kilobytes").dump() + " KB";
}

Action ReadRememberUse(const nlohmann::json& value, const std::string& place)
{
    ObjectReader(value, place).Finish();
    return [](ScenarioRun& run)
    {
        run.m_rememberedUse = run.Command({{"command", "resources"}});
        run.Say("check", "the agent uses " + UseText(run.m_rememberedUse));
    };
}

// {"handles": 0, "keys": 0, "threads": 0, "kilobytes": 4096}: so much more than at "remember-use" at most. What Windows
// gives back a little later is waited for.
Action ReadExpectFlat(const nlohmann::json& value, const std::string& place)
{
    ObjectReader reader(value, place);
    std::map<std::string, long> growth;
    for (const char* key : {"handles", "keys", "threads", "kilobytes"})
        growth[key] = reader.Get<long>(key, 0);
    reader.Finish();
    return [growth](ScenarioRun& run)
    {
        const auto isFlat = [&](const nlohmann::json& use)
        {
            return std::ranges::all_of(growth,
                                       [&](const auto& item)
                                       {
                                           const long before = run.m_rememberedUse.at(item.first).template get<long>();
                                           return use.at(item.first).template get<long>() <= before + item.second;
                                       });
        };
        const auto end = std::chrono::steady_clock::now() + g_settlingLimit;
        nlohmann::json use = run.Command({{"command", "resources"}});
        while (!isFlat(use) && std::chrono::steady_clock::now() < end)
        {
            std::this_thread::sleep_for(g_settlingStep);
            use = run.Command({{"command", "resources"}});
        }
        if (!isFlat(use))
            throw StepFailure("the agent has grown to " + UseText(use));
        run.Say("check", "the agent uses " + UseText(use));
    };
}
} // namespace

std::vector<StepKind> SoakSteps()
{
    return {{"repeat", &ReadRepeat}, {"remember-use", &ReadRememberUse}, {"expect-flat", &ReadExpectFlat}};
}
} // namespace Simulator
