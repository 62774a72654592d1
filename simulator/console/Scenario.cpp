#include "simulator/console/Scenario.h"

#include "simulator/console/Cases.h"
#include "simulator/console/StandardMachine.h"
#include "simulator/doubles/JournalText.h"

#include <fstream>

namespace Simulator
{
namespace
{
// Every record of the agent's log reaches the event log unless the scenario says otherwise.
const nlohmann::json g_logEverything = {{"LoggingType", "EVENT"}, {"MinLogLevel", "TraceIn"}};

template <class Item>
void Append(std::vector<Item>& list, std::vector<Item> more)
{
    list.insert(list.end(), more.begin(), more.end());
}

void ReadRegistryPart(ObjectReader& reader, Scenario& scenario)
{
    const auto logging = reader.Get<nlohmann::json>("logging", g_logEverything);
    Append(scenario.m_lstRegistry, ReadLoggingValues(logging, reader.PlaceOf("logging")));
    if (const nlohmann::json* policies = reader.Find("policies"))
        Append(scenario.m_lstRegistry, ReadPolicyValues(*policies, reader.PlaceOf("policies")));
    if (const nlohmann::json* registry = reader.Find("registry"))
        Append(scenario.m_lstRegistry, ReadRegistryValues(*registry, reader.PlaceOf("registry")));
}

Scenario ReadScenario(const nlohmann::json& document)
{
    ObjectReader reader(document, "");
    Scenario scenario;
    scenario.m_strTitle = reader.Get<std::string>("title");
    scenario.m_lstWindows = reader.Get<std::vector<std::string>>("windows", {});
    scenario.m_facts = StandardFacts();
    OverlayFacts(scenario.m_facts, reader.Get<nlohmann::json>("facts", nlohmann::json::object()));
    scenario.m_installed = CompleteMachine();
    if (const nlohmann::json* installed = reader.Find("installed"))
    {
        for (const auto& [part, is] : ReadInstalledParts(*installed, reader.PlaceOf("installed")))
            scenario.m_installed[part] = is;
    }
    ReadRegistryPart(reader, scenario);
    if (const nlohmann::json* files = reader.Find("files"))
        scenario.m_lstFiles = ReadFileStates(*files, reader.PlaceOf("files"));
    for (const auto& [name, value] : reader.Get<std::map<std::string, std::string>>("environment", {}))
        scenario.m_environment[Wide(name)] = Wide(value);
    const nlohmann::json& steps = reader.Required("steps");
    for (std::size_t i = 0; i < steps.size(); ++i)
        scenario.m_lstSteps.push_back(ReadStep(steps[i], "/steps/" + std::to_string(i)));
    reader.Finish();
    return scenario;
}
} // namespace

std::vector<Scenario> ReadScenarioFile(const std::filesystem::path& file)
{
    const std::string name = Narrow(file.native());
    std::ifstream stream(file);
    if (!stream)
        throw UsageError(name + " cannot be opened");
    try
    {
        std::vector<Scenario> scenarios;
        for (const nlohmann::json& document : ExpandCases(nlohmann::json::parse(stream, nullptr, true, true)))
            scenarios.push_back(ReadScenario(document));
        return scenarios;
    }
    catch (const nlohmann::json::parse_error& fault)
    {
        throw UsageError(name + ": " + fault.what());
    }
    catch (const UsageError& fault)
    {
        throw UsageError(name + ": " + fault.what());
    }
}
} // namespace Simulator
