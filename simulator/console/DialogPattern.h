#pragma once

#include "simulator/console/ObjectReader.h"

#include <map>
#include <optional>

namespace Simulator
{
// What a dialog must be; what is not said is not looked at.
class DialogPattern
{
public:
    DialogPattern() = default;
    // A text, which is all of the message, or an object of nothing but the keys below.
    DialogPattern(const nlohmann::json& value, const std::string& place);
    // {"text", "contains", "title", "icon", "box", "topmost", "foreground", "link": text or false,
    //  "check-box": text or false, "checked", "controls": {"id": text, or false where no control can be seen}}
    explicit DialogPattern(ObjectReader& reader);

    // Details as the machine tells them of a dialog.
    [[nodiscard]] bool Fits(const nlohmann::json& dialog) const;
    [[nodiscard]] std::string Description() const;

private:
    void Read(ObjectReader& reader);

    std::string m_strContains;
    std::map<std::string, nlohmann::json> m_mapExact; // details by name
    std::optional<nlohmann::json> m_link;             // null: there is none
    std::optional<nlohmann::json> m_checkBox;         // its text; null: there is none
    std::optional<bool> m_bChecked;
    std::map<int, nlohmann::json> m_mapControls; // texts by id; null: there is none
};

// One line for people: its number, what it shows and offers.
[[nodiscard]] std::string DescribeDialog(const nlohmann::json& dialog);
} // namespace Simulator
