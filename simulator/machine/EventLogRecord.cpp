#include "simulator/machine/EventLogRecord.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

namespace Simulator
{
namespace
{
struct EventType
{
    WORD m_wType;
    const char* m_pName;
};

constexpr EventType g_types[] = {{EVENTLOG_ERROR_TYPE, "error"},
                                 {EVENTLOG_WARNING_TYPE, "warning"},
                                 {EVENTLOG_INFORMATION_TYPE, "information"},
                                 {EVENTLOG_SUCCESS, "success"},
                                 {EVENTLOG_AUDIT_SUCCESS, "audit-success"},
                                 {EVENTLOG_AUDIT_FAILURE, "audit-failure"}};

constexpr const char* g_keys[] = {"source", "type", "category", "event-id", "strings", "data", "time", "damage", "raw"};
constexpr const char* g_damageKeys[] = {"length", "string-offset", "string-count", "unterminated"};

[[noreturn]] void Complain(const std::string& sentence)
{
    throw std::invalid_argument(sentence);
}

template <std::size_t Count>
void CheckKeys(const nlohmann::json& object, const char* const (&known)[Count])
{
    if (!object.is_object())
        Complain("an object is expected, not " + object.dump());
    for (const auto& [key, value] : object.items())
    {
        if (std::ranges::find(known, key) == std::end(known))
            Complain("a record has no key \"" + key + "\"");
    }
}

// A whole number from the least to the most that the field holds; least may be negative for one that is written signed.
template <class Field>
Field ReadField(const nlohmann::json& object, const char* key, std::int64_t least, std::int64_t most)
{
    const nlohmann::json value = object.value(key, nlohmann::json(0));
    if (!value.is_number_integer() || value.get<std::int64_t>() < least || value.get<std::int64_t>() > most)
        Complain(std::string("\"") + key + "\" cannot be " + value.dump());
    return static_cast<Field>(value.get<std::int64_t>());
}

WORD ReadType(const nlohmann::json& object)
{
    if (!object.contains("type"))
        return EVENTLOG_INFORMATION_TYPE;
    if (!object.at("type").is_string())
        return ReadField<WORD>(object, "type", 0, 0xFFFF);
    for (const EventType& type : g_types)
    {
        if (object.at("type") == type.m_pName)
            return type.m_wType;
    }
    Complain("\"type\" cannot be " + object.at("type").dump());
}

RecordDamage ReadDamage(const nlohmann::json& object)
{
    CheckKeys(object, g_damageKeys);
    RecordDamage damage;
    if (object.contains("length"))
        damage.m_length = ReadField<DWORD>(object, "length", 0, 0xFFFFFFFF);
    if (object.contains("string-offset"))
        damage.m_stringOffset = ReadField<DWORD>(object, "string-offset", 0, 0xFFFFFFFF);
    if (object.contains("string-count"))
        damage.m_stringCount = ReadField<WORD>(object, "string-count", 0, 0xFFFF);
    damage.m_bUnterminated = object.value("unterminated", false);
    return damage;
}

nlohmann::json ToJson(const RecordDamage& damage)
{
    nlohmann::json json = nlohmann::json::object();
    if (damage.m_length)
        json["length"] = *damage.m_length;
    if (damage.m_stringOffset)
        json["string-offset"] = *damage.m_stringOffset;
    if (damage.m_stringCount)
        json["string-count"] = *damage.m_stringCount;
    if (damage.m_bUnterminated)
        json["unterminated"] = true;
    return json;
}

// The name where there is one, else the number.
nlohmann::json TypeToJson(WORD type)
{
    const std::string name = EventTypeName(type);
    return name == std::to_string(type) ? nlohmann::json(type) : nlohmann::json(name);
}

EventLogRecord ReadRaw(const nlohmann::json& json)
{
    EventLogRecord record;
    record.m_strRaw = json.at("raw").get<std::string>();
    if (json.size() != 1 || FromHexadecimal(record.m_strRaw).empty())
        Complain("a raw record has bytes and nothing else");
    return record;
}

EventLogRecord ReadRecord(const nlohmann::json& json)
{
    EventLogRecord record;
    record.m_strSource = json.value("source", "");
    record.m_wType = ReadType(json);
    record.m_wCategory = ReadField<WORD>(json, "category", 0, 0xFFFF);
    record.m_dwEventId = ReadField<DWORD>(json, "event-id", INT32_MIN, UINT32_MAX);
    record.m_lstStrings = json.value("strings", record.m_lstStrings);
    record.m_strData = json.value("data", "");
    static_cast<void>(FromHexadecimal(record.m_strData));
    record.m_nTime = ReadField<std::int64_t>(json, "time", 0, UINT32_MAX);
    if (json.contains("damage"))
        record.m_damage = ReadDamage(json.at("damage"));
    return record;
}
} // namespace

std::string EventTypeName(WORD type)
{
    for (const EventType& known : g_types)
    {
        if (known.m_wType == type)
            return known.m_pName;
    }
    return std::to_string(type);
}

nlohmann::json ToJson(const EventLogRecord& record)
{
    if (!record.m_strRaw.empty())
        return {{"raw", record.m_strRaw}};
    nlohmann::json json = {{"source", record.m_strSource},   {"type", TypeToJson(record.m_wType)},
                           {"category", record.m_wCategory}, {"event-id", record.m_dwEventId},
                           {"strings", record.m_lstStrings}, {"data", record.m_strData},
                           {"time", record.m_nTime}};
    if (const nlohmann::json damage = ToJson(record.m_damage); !damage.empty())
        json["damage"] = damage;
    return json;
}

EventLogRecord RecordFromJson(const nlohmann::json& json)
{
    CheckKeys(json, g_keys);
    try
    {
        return json.contains("raw") ? ReadRaw(json) : ReadRecord(json);
    }
    catch (const nlohmann::json::exception&)
    {
        Complain(json.dump() + " is no record of the event log");
    }
}

std::string ToHexadecimal(const void* data, std::size_t size)
{
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    const auto* bytes = static_cast<const BYTE*>(data);
    for (std::size_t i = 0; i < size; ++i)
        text.append({digits[bytes[i] >> 4], digits[bytes[i] & 15]});
    return text;
}

std::vector<BYTE> FromHexadecimal(const std::string& digits)
{
    std::vector<BYTE> bytes(digits.size() / 2);
    for (std::size_t i = 0; i < bytes.size(); ++i)
    {
        const char* const begin = digits.data() + 2 * i;
        if (std::from_chars(begin, begin + 2, bytes[i], 16).ptr != begin + 2)
            Complain("\"" + digits + "\" holds more than hexadecimal digits");
    }
    if (digits.size() % 2 != 0)
        Complain("\"" + digits + "\" ends with half a byte");
    return bytes;
}
} // namespace Simulator
