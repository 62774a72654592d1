#pragma once

#include "simulator/console/DialogPattern.h"
#include "simulator/console/ScenarioRun.h"

#include <functional>

namespace Simulator
{
// Which open dialog a step means: that of a number, or the last one opened that fits a pattern.
class DialogChoice
{
public:
    DialogChoice() = default;
    // {"number"} or the keys of a pattern.
    explicit DialogChoice(ObjectReader& reader);

    // Its number. Waits until such a dialog is open; throws StepFailure when none is in time.
    [[nodiscard]] unsigned Find(ScenarioRun& run) const;

private:
    [[nodiscard]] bool Means(const nlohmann::json& dialog) const;

    unsigned m_nNumber = 0; // 0: any
    DialogPattern m_pattern;
};

using DialogsTest = std::function<bool(const std::vector<nlohmann::json>& dialogs)>;

// The open dialogs as they are now, in the order of opening, once they pass the test; when they do not in time, as they
// are then.
[[nodiscard]] std::vector<nlohmann::json> WaitForDialogs(ScenarioRun& run, const DialogsTest& test);
// One line for each, or "none".
[[nodiscard]] std::string DescribeDialogs(const std::vector<nlohmann::json>& dialogs);
} // namespace Simulator
