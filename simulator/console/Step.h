#pragma once

#include "simulator/console/ObjectReader.h"
#include "simulator/console/ScenarioRun.h"

#include <functional>

namespace Simulator
{
// One step of a scenario, read and checked before anything runs.
struct Step
{
    std::string m_strPlace; // JSON pointer
    std::function<void(ScenarioRun&)> m_action;
};

// A step is an object with one key, the step's name; the value says the rest. Throws UsageError.
[[nodiscard]] Step ReadStep(const nlohmann::json& step, const std::string& place);

// What a step's name stands for: a reader that checks the value and returns the action.
using StepReader = std::function<void(ScenarioRun&)> (*)(const nlohmann::json& value, const std::string& place);

struct StepKind
{
    const char* m_pName;
    StepReader m_pfnRead;
};

// The kinds of steps by subject.
[[nodiscard]] std::vector<StepKind> AgentSteps();
[[nodiscard]] std::vector<StepKind> EventSteps();
[[nodiscard]] std::vector<StepKind> SystemSteps();
[[nodiscard]] std::vector<StepKind> AcpiSteps();
[[nodiscard]] std::vector<StepKind> UsbSteps();
[[nodiscard]] std::vector<StepKind> UserSteps();
[[nodiscard]] std::vector<StepKind> DialogSteps();
[[nodiscard]] std::vector<StepKind> StateSteps();
[[nodiscard]] std::vector<StepKind> PlanSteps();
[[nodiscard]] std::vector<StepKind> RecordSteps();
[[nodiscard]] std::vector<StepKind> SoakSteps();
[[nodiscard]] std::vector<StepKind> ToastExpectations();
[[nodiscard]] std::vector<StepKind> DialogExpectations();
[[nodiscard]] std::vector<StepKind> LogExpectations();
[[nodiscard]] std::vector<StepKind> RecordExpectations();
[[nodiscard]] std::vector<StepKind> CallExpectations();
[[nodiscard]] std::vector<StepKind> FileExpectations();
[[nodiscard]] std::vector<StepKind> LogFileExpectations();
[[nodiscard]] std::vector<StepKind> DeviceExpectations();
} // namespace Simulator
