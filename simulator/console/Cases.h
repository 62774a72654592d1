#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace Simulator
{
// A scenario file may describe several runs that differ in some values: "cases": [{"name": ..., "with": {"status":
// 2}}]. Everywhere else in the file "${status}" stands for the value; a text that is nothing but that takes its type
// too. The result is one document per case, "cases" taken out and the name added to the title; a file without cases is
// one.
[[nodiscard]] std::vector<nlohmann::json> ExpandCases(const nlohmann::json& document);
} // namespace Simulator
