#pragma once

#include "simulator/console/Options.h"
#include "simulator/console/Scenario.h"

namespace Simulator
{
enum class Outcome
{
    Passed,
    Failed,
    Skipped // it is for another version of Windows
};

// Runs the scenario from a reset machine to the end of the agent, with its timeline on the standard output. The journal
// stays in the folder of the options. Throws UsageError when the agent cannot be started at all.
[[nodiscard]] Outcome RunScenario(const Scenario& scenario, Options options);
} // namespace Simulator
