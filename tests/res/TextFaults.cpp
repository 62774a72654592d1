#include "tests/res/TextFaults.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>

namespace ResourceTests
{

namespace
{

using Texts = std::initializer_list<std::wstring_view>;

constexpr std::wstring_view TwoMarks = L"\u200F\u200F"; // right-to-left marks

bool Holds(const std::wstring& text, std::wstring_view what)
{
    return text.find(what) != std::wstring::npos;
}

bool HoldsOneOf(const std::wstring& text, std::wstring_view characters)
{
    return text.find_first_of(characters) != std::wstring::npos;
}

auto CountOf(const std::wstring& text, wchar_t character)
{
    return std::ranges::count(text, character);
}

// The line breaks of a text, those that follow each other as one.
std::vector<std::wstring> Breaks(const std::wstring& text)
{
    std::vector<std::wstring> breaks;
    bool isInBreak = false;
    for (const wchar_t character : text)
    {
        const bool isBreak = character == L'\r' || character == L'\n';
        if (isBreak && !isInBreak)
        {
            breaks.emplace_back();
        }
        if (isBreak)
        {
            breaks.back() += character;
        }
        isInBreak = isBreak;
    }
    return breaks;
}

// UTF-8 that was taken for the Western code page: as a whole, or in a place.
bool IsWronglyDecoded(const std::wstring& text)
{
    if (std::ranges::any_of(text, [](wchar_t c) { return c >= 0x80 && c < 0xA0; }))
    {
        return true;
    }
    for (size_t i = 1; i < text.size(); ++i)
    {
        constexpr std::wstring_view symbols = L"€†‡ˆ‰•˜™¡¢£¤¥¦§¨©¬®¯°±²³´¶¸¹¼½¾¿";
        if (text[i - 1] >= 0xC0 && text[i - 1] <= 0xFF && symbols.find(text[i]) != symbols.npos)
        {
            return true;
        }
    }
    std::string bytes(text.size() * 2, '\0');
    BOOL isOutside = FALSE;
    const int size = WideCharToMultiByte(1252, WC_NO_BEST_FIT_CHARS, text.data(), static_cast<int>(text.size()),
                                         bytes.data(), static_cast<int>(bytes.size()), nullptr, &isOutside);
    const bool isAscii = std::ranges::all_of(text, [](wchar_t c) { return c < 0x80; });
    return !isAscii && !isOutside &&
           MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(), size, nullptr, 0) != 0;
}

bool HoldsNoCharacter(const std::wstring& text)
{
    return std::ranges::any_of(text, [](wchar_t c)
                               { return c == 0xFFFD || c >= 0xFFFE || (c >= 0xE000 && c <= 0xF8FF) || c == 0; });
}

bool HasHalfPair(const std::wstring& text)
{
    for (size_t i = 0; i < text.size(); ++i)
    {
        const bool isPair = IS_HIGH_SURROGATE(text[i]) && i + 1 < text.size() && IS_LOW_SURROGATE(text[i + 1]);
        if (!isPair && (IS_HIGH_SURROGATE(text[i]) || IS_LOW_SURROGATE(text[i])))
        {
            return true;
        }
        i += isPair ? 1 : 0;
    }
    return false;
}

bool HasHalfBracket(const std::wstring& text)
{
    constexpr std::wstring_view opening = L"([{（［「『【〈《";
    constexpr std::wstring_view closing = L")]}）］」』】〉》";
    std::wstring open;
    for (const wchar_t character : text)
    {
        if (const size_t kind = opening.find(character); kind != opening.npos)
        {
            open += closing[kind];
        }
        else if (closing.find(character) != closing.npos)
        {
            if (open.empty() || open.back() != character)
            {
                return true;
            }
            open.pop_back();
        }
    }
    return !open.empty();
}

// Which mark opens and which closes differs between languages; apostrophes are no quotation marks.
bool HasHalfQuotation(const std::wstring& text)
{
    const auto curved = CountOf(text, L'“') + CountOf(text, L'”') + CountOf(text, L'„');
    return CountOf(text, L'"') % 2 != 0 || curved % 2 != 0 || CountOf(text, L'«') != CountOf(text, L'»') ||
           CountOf(text, L'‹') != CountOf(text, L'›') || CountOf(text, L'‚') > CountOf(text, L'‘');
}

bool HasStrayBlank(const std::wstring& text)
{
    constexpr std::wstring_view blanks = L" \t\r\n\u00A0\u3000";
    return !text.empty() && (blanks.find(text.front()) != blanks.npos || blanks.find(text.back()) != blanks.npos ||
                             Holds(text, L"  ") || Holds(text, L" \r") || Holds(text, L"\n "));
}

} // namespace

size_t RoomFor(unsigned id)
{
    const auto isOneOf = [id](std::initializer_list<unsigned> ids) { return std::ranges::find(ids, id) != ids.end(); };
    if (isOneOf({500, 505}))
    {
        return 99;
    }
    if (id == 507)
    {
        return 127;
    }
    if (isOneOf({501, 502, 503, 528}))
    {
        return 259;
    }
    return isOneOf({509, 510, 511, 512, 513, 517, 518, 519, 520, 521, 526, 527}) ? 519 : 2047;
}

bool IsName(unsigned id)
{
    return id == 500 || id == 505 || id == 543 || id == 544 || id == 549 || id == 550 || id == 553;
}

bool IsMessageBoxText(unsigned id)
{
    return id == 508 || id == 530 || id == 531;
}

std::vector<std::string> FaultsOf(unsigned id, const std::wstring& text, const std::wstring& english,
                                  const Tests::Language& language)
{
    std::vector<std::string> faults;
    const auto check = [&faults](bool isFault, const char* what)
    {
        if (isFault)
        {
            faults.emplace_back(what);
        }
    };
    check(text.empty(), "empty");
    check(text.size() > RoomFor(id), "too long");
    check(HoldsNoCharacter(text), "no character");
    check(HasHalfPair(text), "half a surrogate pair");
    check(IsWronglyDecoded(text), "wrongly decoded");
    if (language.m_nId == Tests::g_english)
    {
        return faults; // kept to the letter, mistakes and all
    }
    check(IsName(id) && text != english, "another name");
    check(!IsName(id) && text == english, "English");
    check(Breaks(text) != Breaks(english), "other paragraphs");
    check(HasHalfBracket(text), "half a pair of brackets");
    check(HasHalfQuotation(text), "half a pair of quotation marks");
    check(HasStrayBlank(text), "stray blank");
    check(HoldsOneOf(text, L"?¿？؟"), "question mark");
    const bool isMirrored = language.m_bRightToLeft && IsMessageBoxText(id);
    check(isMirrored != text.starts_with(TwoMarks), "direction of the message box");
    return faults;
}

} // namespace ResourceTests
