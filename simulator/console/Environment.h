#pragma once

#include <map>
#include <string>

namespace Simulator
{
// Variables that differ from the console's own; values may hold %VARIABLES% of the console.
using EnvironmentChanges = std::map<std::wstring, std::wstring>;

// The console's environment with the changes, as CreateProcessW takes it (CREATE_UNICODE_ENVIRONMENT).
[[nodiscard]] std::wstring EnvironmentBlock(const EnvironmentChanges& changes);

// %NAME% replaced by the console's own value; an unknown name stays as it is.
[[nodiscard]] std::wstring ExpandVariables(const std::wstring& text);
} // namespace Simulator
