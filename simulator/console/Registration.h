#pragma once

#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <string>

namespace Simulator
{
// Parts of the machine by name, and whether they are installed: "platform-library", "notification-component", "wmi",
// "toasts".
using Installed = std::map<std::string, bool>;

// All parts, installed.
[[nodiscard]] Installed CompleteMachine();

// {"notification-component": false}; an unknown name is a UsageError.
[[nodiscard]] Installed ReadInstalledParts(const nlohmann::json& value, const std::string& place);

// Writes the classes of the named parts into the registry, served by the machine DLL, or removes them.
// Throws StepFailure.
void Register(const Installed& installed, const std::filesystem::path& machine);
} // namespace Simulator
