#include "simulator/console/RecordPattern.h"

#include <algorithm>
#include <stdexcept>

namespace Simulator
{
namespace
{
template <class Field>
bool IsMet(const std::optional<Field>& wanted, const Field& is)
{
    return !wanted || *wanted == is;
}
} // namespace

bool RecordPattern::Fits(const EventLogRecord& record) const
{
    const auto& strings = record.m_lstStrings;
    return IsMet(m_type, record.m_wType) && IsMet(m_category, record.m_wCategory) &&
           IsMet(m_eventId, record.m_dwEventId) && (!m_text || (strings.size() == 1 && strings[0] == *m_text)) &&
           (m_strContains.empty() || std::ranges::any_of(strings, [this](const std::string& text)
                                                         { return text.find(m_strContains) != std::string::npos; }));
}

RecordPattern ReadRecordPattern(const nlohmann::json& value, const std::string& place)
{
    const nlohmann::json object = value.is_string() ? nlohmann::json{{"text", value}} : value;
    ObjectReader reader(object, place);
    RecordPattern pattern = ReadRecordPattern(reader);
    reader.Finish();
    return pattern;
}

RecordPattern ReadRecordPattern(ObjectReader& reader)
{
    nlohmann::json fields = nlohmann::json::object();
    for (const char* key : {"type", "category", "event-id"})
    {
        if (const nlohmann::json* field = reader.Find(key))
            fields[key] = *field;
    }
    RecordPattern pattern;
    try
    {
        const EventLogRecord record = RecordFromJson(fields);
        if (fields.contains("type"))
            pattern.m_type = record.m_wType;
        if (fields.contains("category"))
            pattern.m_category = record.m_wCategory;
        if (fields.contains("event-id"))
            pattern.m_eventId = record.m_dwEventId;
    }
    catch (const std::invalid_argument& fault)
    {
        reader.Complain(fault.what());
    }
    if (reader.Find("text") != nullptr)
        pattern.m_text = reader.Get<std::string>("text");
    pattern.m_strContains = reader.Get<std::string>("contains", "");
    if (pattern.m_text)
        fields["text"] = *pattern.m_text;
    if (!pattern.m_strContains.empty())
        fields["contains"] = pattern.m_strContains;
    pattern.m_strDescription = fields.dump();
    return pattern;
}
} // namespace Simulator
