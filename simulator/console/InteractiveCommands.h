#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace Simulator
{
// The commands of the keyboard, one line each.
[[nodiscard]] std::string InteractiveHelp();

// The scenario steps that a typed line stands for; a line that begins with "{" is such a step itself. Throws UsageError
// for a line that is none.
[[nodiscard]] std::vector<nlohmann::json> StepsOfLine(const std::string& line);
} // namespace Simulator
