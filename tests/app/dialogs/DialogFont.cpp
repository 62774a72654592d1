#include "tests/app/dialogs/DialogFont.h"

#include <span>
#include <stdexcept>

namespace Tests
{
namespace
{
constexpr size_t g_header = 13;   // 16-bit units up to the name of the menu
constexpr size_t g_fontShape = 3; // size, weight, slant and character set

// Behind a text and its terminator.
size_t SkipText(std::span<const WORD> words, size_t at)
{
    while (words[at] != 0)
        ++at;
    return at + 1;
}

// Controls begin at multiples of four bytes.
size_t Aligned(size_t at)
{
    return (at + 1) / 2 * 2;
}
} // namespace

std::vector<DWORD> DialogWithFont(UINT id, WORD language, std::wstring_view face)
{
    const HRSRC found = FindResourceExW(nullptr, MAKEINTRESOURCEW(5), MAKEINTRESOURCEW(id), language); // RT_DIALOG
    const HGLOBAL loaded = found ? LoadResource(nullptr, found) : nullptr;
    const auto* const bytes = loaded ? static_cast<const WORD*>(LockResource(loaded)) : nullptr;
    if (bytes == nullptr)
        throw std::runtime_error("no such dialog");
    const std::span<const WORD> words(bytes, SizeofResource(nullptr, found) / sizeof(WORD));
    // Menu and class are empty, the title is a text.
    const size_t name = SkipText(words, SkipText(words, SkipText(words, g_header))) + g_fontShape;
    const size_t controls = Aligned(SkipText(words, name));

    std::vector<WORD> changed(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(name));
    changed.insert(changed.end(), face.begin(), face.end());
    changed.resize(Aligned(changed.size() + 1));
    changed.insert(changed.end(), words.begin() + static_cast<std::ptrdiff_t>(controls), words.end());
    changed.resize(Aligned(changed.size()));

    std::vector<DWORD> result(changed.size() / 2);
    for (size_t i = 0; i < result.size(); ++i)
        result[i] = static_cast<DWORD>(MAKELONG(changed[2 * i], changed[2 * i + 1]));
    return result;
}
} // namespace Tests
