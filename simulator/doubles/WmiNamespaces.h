#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Simulator
{
// "ROOT\WMI", "\\.\root\wmi" and "root/wmi" as one name, "root\wmi"; nothing for a path that WMI cannot read, for
// instance one with a doubled backslash in the middle.
[[nodiscard]] std::optional<std::string> NormalNamespace(std::string_view path);

// Whether the simulated machine has it: the fact "/wmi/namespaces", an array of names; without the fact, those that the
// product may ask for.
[[nodiscard]] bool NamespaceExists(std::string_view normalName);
} // namespace Simulator
