#pragma once

#include <span>

namespace ResourceTests
{

struct EnglishText
{
    unsigned id;
    const wchar_t* text;
};

// Every text of the English string table, kept apart from the resource script so that neither can drift unseen.
[[nodiscard]] std::span<const EnglishText> EnglishTexts();

} // namespace ResourceTests
