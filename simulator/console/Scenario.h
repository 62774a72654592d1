#pragma once

#include "simulator/console/FileState.h"
#include "simulator/console/Registration.h"
#include "simulator/console/RegistryValue.h"
#include "simulator/console/Step.h"

namespace Simulator
{
// One run of the agent as a scenario file describes it: the machine as it stands before, and the steps.
struct Scenario
{
    std::string m_strTitle;
    std::vector<std::string> m_lstWindows; // "win7", "win81", "win10"; empty: any
    nlohmann::json m_facts;
    Installed m_installed;
    std::vector<RegistryValue> m_lstRegistry; // policies and logging among them
    std::vector<FileState> m_lstFiles;
    EnvironmentChanges m_environment;
    std::vector<Step> m_lstSteps;
};

// All cases of a scenario file, in order. Everything is checked: an unknown key or a wrong type is a UsageError that
// names file and place.
[[nodiscard]] std::vector<Scenario> ReadScenarioFile(const std::filesystem::path& file);
} // namespace Simulator
