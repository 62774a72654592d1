#include "tests/support/StringResource.h"

#include <cstring>

namespace Tests
{
namespace
{
constexpr unsigned g_stringsPerBlock = 16;

BOOL CALLBACK FindLanguage(HMODULE, const wchar_t*, const wchar_t*, WORD language, LONG_PTR wanted)
{
    auto& left = *reinterpret_cast<WORD*>(wanted);
    if (language == left)
        left = MAXWORD;
    return TRUE;
}

// FindResourceExW alone is content with another language.
bool HasLanguage(HMODULE module, const wchar_t* block, WORD language)
{
    EnumResourceLanguagesW(module, MAKEINTRESOURCEW(6), block, FindLanguage, reinterpret_cast<LONG_PTR>(&language));
    return language == MAXWORD;
}
} // namespace

std::optional<std::wstring> StringResource(HMODULE module, unsigned id, WORD language)
{
    const wchar_t* const block = MAKEINTRESOURCEW(id / g_stringsPerBlock + 1);
    if (!HasLanguage(module, block, language))
        return std::nullopt;
    const HRSRC found = FindResourceExW(module, MAKEINTRESOURCEW(6), block, language);
    const HGLOBAL loaded = found ? LoadResource(module, found) : nullptr;
    const void* const bytes = loaded ? LockResource(loaded) : nullptr;
    if (!bytes)
        return std::nullopt;
    // Sixteen texts without terminators, each behind its length.
    const auto* at = static_cast<const wchar_t*>(bytes);
    const auto* const end = at + SizeofResource(module, found) / sizeof(wchar_t);
    for (unsigned index = 0; at < end && at + *at < end; at += 1 + *at, ++index)
    {
        if (index == id % g_stringsPerBlock)
            return std::wstring(at + 1, *at);
    }
    return std::nullopt;
}
} // namespace Tests
