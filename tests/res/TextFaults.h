#pragma once

#include "tests/support/Languages.h"

#include <string>
#include <vector>

namespace ResourceTests
{

// Most characters that whoever shows the text has room for, without terminator.
[[nodiscard]] size_t RoomFor(unsigned id);

// Names and addresses, which are the same in every language.
[[nodiscard]] bool IsName(unsigned id);

// Shown by a message box.
[[nodiscard]] bool IsMessageBoxText(unsigned id);

// What is wrong with a text of that language, beside its English text; empty when nothing is. What a person has to
// judge is not looked at.
[[nodiscard]] std::vector<std::string> FaultsOf(unsigned id, const std::wstring& text, const std::wstring& english,
                                                const Tests::Language& language);

} // namespace ResourceTests
