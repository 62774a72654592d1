#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>

namespace Simulator
{
// The facts of a machine on which everything works: all platform commands answer, the adapter's status is 1, which
// nobody is told about. A scenario overlays its own.
[[nodiscard]] const nlohmann::json& StandardFacts();

// Lays facts over others: objects are merged, other values replaced, null removes; but a platform command's behaviour
// is replaced as a whole.
void OverlayFacts(nlohmann::json& facts, const nlohmann::json& more);

// Takes back whatever an earlier scenario or agent left in the registry and at the devices, empties the folder of this
// scenario's output, and makes the user's folders anew inside it: %TEMP%, %APPDATA% and, in this, %ORVIK_SIM_PROGRAMS%,
// the programs of the start menu. The machine must be a prepared one. Throws StepFailure.
void ResetMachine(const std::filesystem::path& out);
} // namespace Simulator
