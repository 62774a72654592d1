#include "simulator/console/Step.h"

#include <thread>

namespace Simulator
{
namespace
{
using Action = std::function<void(ScenarioRun&)>;

constexpr std::chrono::seconds g_limit{10};
constexpr std::chrono::milliseconds g_step{10};

nlohmann::json ToJson(const Devices::Counters& counters)
{
    return {{"pending", counters.m_nPending},
            {"queued", counters.m_nQueued},
            {"opens", counters.m_nOpens},
            {"requests", counters.m_nWaits},
            {"completed", counters.m_nCompleted},
            {"failed", counters.m_nFailed},
            {"refused", counters.m_nRefused},
            {"cancelled", counters.m_nCancelled},
            {"hub-opens", counters.m_nHubOpens},
            {"node-requests", counters.m_nNodeRequests},
            {"connection-requests", counters.m_nConnectionRequests},
            {"driver-key-requests", counters.m_nDriverKeyRequests}};
}

// Some of the counters since the scenario began; what the system brings to its end a little later is waited for.
Action ReadExpectDevices(const nlohmann::json& value, const std::string& place)
{
    ObjectReader reader(value, place);
    nlohmann::json expected = nlohmann::json::object();
    const nlohmann::json known = ToJson({});
    for (const auto& [name, ignored] : known.items())
    {
        if (reader.Find(name) != nullptr)
            expected[name] = reader.Get<unsigned>(name);
    }
    reader.Finish();
    return [expected](ScenarioRun& run)
    {
        const auto end = std::chrono::steady_clock::now() + g_limit;
        const auto isMet = [&](const nlohmann::json& counters)
        {
            return std::all_of(expected.items().begin(), expected.items().end(),
                               [&](const auto& item) { return counters.at(item.key()) == item.value(); });
        };
        nlohmann::json counters = ToJson(run.Devices().Count());
        while (!isMet(counters) && std::chrono::steady_clock::now() < end)
        {
            std::this_thread::sleep_for(g_step);
            counters = ToJson(run.Devices().Count());
        }
        if (!isMet(counters))
            throw StepFailure("the devices counted " + counters.dump());
    };
}
} // namespace

std::vector<StepKind> DeviceExpectations()
{
    return {{"expect-devices", &ReadExpectDevices}};
}
} // namespace Simulator
