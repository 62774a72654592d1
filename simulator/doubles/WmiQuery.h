#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Simulator
{
// SELECT <properties> FROM <class> [WHERE EventID = <n>], read loosely: keywords in any case, blanks of any number.
// What stands behind the class and is no such condition makes the query unreadable.
struct WmiQuery
{
    std::vector<std::string> m_lstProperties; // {"*"} for all
    std::string m_strClass;
    std::optional<long> m_nEventId;

    // Nothing when the text is no such query.
    [[nodiscard]] static std::optional<WmiQuery> Parse(std::string_view text);

    // Whether an event of that class (any letter case) and with that id, if it has one, satisfies the query.
    [[nodiscard]] bool Matches(std::string_view className, std::optional<long> eventId) const;
};

// As WMI compares the names of classes and properties.
[[nodiscard]] bool EqualNames(std::string_view left, std::string_view right);
} // namespace Simulator
