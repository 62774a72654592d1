#pragma once

#include <string>
#include <string_view>

namespace Orvik::Shared
{
// The program's file name without folder and extension, out of the first 520 characters of its path; empty when the
// system does not tell it.
[[nodiscard]] std::wstring ModuleBaseName();

// Full path of a file of that name in the program's own folder, for a program whose path is cut to 260 characters.
[[nodiscard]] std::wstring PathBesideProgram(std::wstring_view fileName);

// The product name in the program's version resource, from the block 040904E4 or else 040904B0; empty when there is
// none, and for a program whose path does not fit 260 characters.
[[nodiscard]] std::wstring ProductName();
} // namespace Orvik::Shared
