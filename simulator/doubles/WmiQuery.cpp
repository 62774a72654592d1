#include "simulator/doubles/WmiQuery.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <utility>

namespace Simulator
{
namespace
{
std::vector<std::string> Words(std::string_view text)
{
    std::vector<std::string> words;
    std::string word;
    const auto finish = [&]
    {
        if (!word.empty())
            words.push_back(std::exchange(word, {}));
    };
    for (const char character : text)
    {
        const bool isBlank = std::isspace(static_cast<unsigned char>(character)) != 0;
        if (!isBlank && character != '=' && character != ',')
        {
            word.push_back(character);
            continue;
        }
        finish();
        if (!isBlank)
            words.emplace_back(1, character);
    }
    finish();
    return words;
}

bool IsClassName(std::string_view word)
{
    return std::ranges::all_of(
        word,
        [](char character) { return std::isalnum(static_cast<unsigned char>(character)) != 0 || character == '_'; });
}

std::optional<long> Number(std::string_view word)
{
    long number = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    return error == std::errc() && end == word.data() + word.size() ? std::optional(number) : std::nullopt;
}
} // namespace

bool EqualNames(std::string_view left, std::string_view right)
{
    return std::ranges::equal(
        left, right, [](char a, char b)
        { return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b)); });
}

std::optional<WmiQuery> WmiQuery::Parse(std::string_view text)
{
    const std::vector<std::string> words = Words(text);
    const auto from = std::ranges::find_if(words, [](const auto& word) { return EqualNames(word, "from"); });
    const auto behind = words.end() - from;
    if (words.empty() || !EqualNames(words.front(), "select") || from - words.begin() < 2 || behind < 2 ||
        !IsClassName(from[1]))
        return std::nullopt;

    WmiQuery query;
    std::copy_if(words.begin() + 1, from, std::back_inserter(query.m_lstProperties),
                 [](const std::string& word) { return word != ","; });
    query.m_strClass = from[1];
    if (behind == 2)
        return query;
    if (behind != 6 || !EqualNames(from[2], "where") || !EqualNames(from[3], "EventID") || from[4] != "=")
        return std::nullopt;
    query.m_nEventId = Number(from[5]);
    return query.m_nEventId ? std::optional(query) : std::nullopt;
}

bool WmiQuery::Matches(std::string_view className, std::optional<long> eventId) const
{
    return EqualNames(m_strClass, className) && (!m_nEventId || m_nEventId == eventId);
}
} // namespace Simulator
