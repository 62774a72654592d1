#pragma once

#include <windows.h>

#include <string_view>
#include <vector>

namespace Tests
{
// A dialog of the program in exactly that language, for DialogBoxIndirectParamW, with another font of the same size:
// for scripts whose letters the font of the template lacks here. Raises std::runtime_error when there is no such
// dialog.
[[nodiscard]] std::vector<DWORD> DialogWithFont(UINT id, WORD language, std::wstring_view face);
} // namespace Tests
