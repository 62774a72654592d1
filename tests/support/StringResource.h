#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace Tests
{
// A string as it lies in the module, in exactly that language; nothing when the module has no such block. Null is the
// running program.
[[nodiscard]] std::optional<std::wstring> StringResource(HMODULE module, unsigned id, WORD language);
} // namespace Tests
