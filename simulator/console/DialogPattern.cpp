#include "simulator/console/DialogPattern.h"

#include <algorithm>

namespace Simulator
{
namespace
{
// A text, or null for false.
nlohmann::json TextOrNone(const nlohmann::json& value, const std::string& place)
{
    if (value == nlohmann::json(false))
        return {};
    if (!value.is_string())
        throw UsageError(place + ": a text is expected, or false for none");
    return value;
}

int ControlId(const std::string& text, const std::string& place)
{
    int id = 0;
    for (const char digit : text)
    {
        if (digit < '0' || digit > '9' || id > 0xFFFF)
            throw UsageError(place + ": \"" + text + "\" is not the number of a control");
        id = id * 10 + (digit - '0');
    }
    return id;
}

// Null when no control of that id can be seen.
nlohmann::json TextOfControl(const nlohmann::json& dialog, int id)
{
    for (const nlohmann::json& control : dialog.value("controls", nlohmann::json::array()))
    {
        if (control.value("id", -1) == id)
            return control.value("text", "");
    }
    return {};
}

// Line breaks as blanks.
std::string OnOneLine(const std::string& text)
{
    std::string line;
    for (const char c : text)
    {
        const bool isBlank = c == '\r' || c == '\n' || c == ' ';
        if (!isBlank)
            line += c;
        else if (!line.empty() && line.back() != ' ')
            line += ' ';
    }
    return "\"" + line + "\"";
}
} // namespace

DialogPattern::DialogPattern(const nlohmann::json& value, const std::string& place)
{
    if (value.is_string())
    {
        m_mapExact["text"] = value;
        return;
    }
    ObjectReader reader(value, place);
    Read(reader);
    reader.Finish();
}

DialogPattern::DialogPattern(ObjectReader& reader)
{
    Read(reader);
}

void DialogPattern::Read(ObjectReader& reader)
{
    m_strContains = reader.Get<std::string>("contains", "");
    for (const char* key : {"text", "title", "icon"})
    {
        if (reader.Find(key) != nullptr)
            m_mapExact[key] = reader.Get<std::string>(key);
    }
    for (const char* key : {"box", "topmost", "foreground"})
    {
        if (reader.Find(key) != nullptr)
            m_mapExact[key] = reader.Get<bool>(key);
    }
    if (const nlohmann::json* link = reader.Find("link"))
        m_link = TextOrNone(*link, reader.PlaceOf("link"));
    if (const nlohmann::json* checkBox = reader.Find("check-box"))
        m_checkBox = TextOrNone(*checkBox, reader.PlaceOf("check-box"));
    if (reader.Find("checked") != nullptr)
        m_bChecked = reader.Get<bool>("checked");
    const auto controls = reader.Get<std::map<std::string, nlohmann::json>>("controls", {});
    for (const auto& [id, text] : controls)
        m_mapControls[ControlId(id, reader.PlaceOf("controls"))] = TextOrNone(text, reader.PlaceOf("controls/" + id));
}

bool DialogPattern::Fits(const nlohmann::json& dialog) const
{
    const nlohmann::json message = dialog.value("text", nlohmann::json());
    const nlohmann::json checkBox = dialog.value("check-box", nlohmann::json());
    const bool hasBox = checkBox.is_object();
    return (message.is_string() ? message.get<std::string>() : "").find(m_strContains) != std::string::npos &&
           std::ranges::all_of(m_mapExact, [&](const auto& expected)
                               { return dialog.value(expected.first, nlohmann::json()) == expected.second; }) &&
           (!m_link || dialog.value("link", nlohmann::json()) == *m_link) &&
           (!m_checkBox || (hasBox ? checkBox.value("text", nlohmann::json()) : nlohmann::json()) == *m_checkBox) &&
           (!m_bChecked || (hasBox && checkBox.value("checked", false) == *m_bChecked)) &&
           std::ranges::all_of(m_mapControls, [&](const auto& expected)
                               { return TextOfControl(dialog, expected.first) == expected.second; });
}

std::string DialogPattern::Description() const
{
    std::string text;
    const auto add = [&text](const std::string& key, const nlohmann::json& value)
    { text += (text.empty() ? "" : ", ") + key + " " + (value.is_null() ? "none" : value.dump()); };
    for (const auto& [key, value] : m_mapExact)
        add(key, value);
    if (!m_strContains.empty())
        add("contains", m_strContains);
    if (m_link)
        add("link", *m_link);
    if (m_checkBox)
        add("check-box", *m_checkBox);
    if (m_bChecked)
        add("checked", *m_bChecked);
    for (const auto& [id, value] : m_mapControls)
        add("control " + std::to_string(id), value);
    return text.empty() ? "any" : text;
}

std::string DescribeDialog(const nlohmann::json& dialog)
{
    const auto textOf = [&dialog](const char* key)
    {
        const nlohmann::json text = dialog.value(key, nlohmann::json());
        return text.is_string() ? text.get<std::string>() : std::string();
    };
    std::string line =
        (dialog.value("box", false) ? "message box " : "dialog ") + std::to_string(dialog.value("number", 0));
    if (const std::string icon = textOf("icon"); icon != "none")
        line += " (" + icon + ")";
    line += ": " + OnOneLine(textOf("text"));
    if (dialog.value("link", nlohmann::json()).is_string())
        line += ", link " + OnOneLine(textOf("link"));
    if (const nlohmann::json box = dialog.value("check-box", nlohmann::json()); box.is_object())
        line += std::string(", check box ") + (box.value("checked", false) ? "ticked " : "clear ") +
                OnOneLine(box.value("text", ""));
    return line;
}
} // namespace Simulator
