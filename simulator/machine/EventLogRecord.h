#pragma once

#include <windows.h>

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

namespace Simulator
{
// What a record says of itself against the truth; what is not set is true.
struct RecordDamage
{
    std::optional<DWORD> m_length;       // bytes, the first field of the record
    std::optional<DWORD> m_stringOffset; // bytes from the beginning of the record
    std::optional<WORD> m_stringCount;
    bool m_bUnterminated = false; // the record ends with the last character of its last string
};

// One record of the Windows event log. Texts are UTF-8.
struct EventLogRecord
{
    std::string m_strSource;
    WORD m_wType = EVENTLOG_INFORMATION_TYPE;
    WORD m_wCategory = 0;
    DWORD m_dwEventId = 0;
    std::vector<std::string> m_lstStrings; // insertion strings
    std::string m_strData;                 // raw data, hexadecimal digits
    std::int64_t m_nTime = 0;              // seconds since 1970, UTC
    RecordDamage m_damage;
    std::string m_strRaw; // hexadecimal digits; when there are any, the record is these bytes and nothing else counts
};

// {"source", "type", "category", "event-id", "strings", "data", "time"}, of a damaged record also
// {"damage": {"length", "string-offset", "string-count", "unterminated"}}; or {"raw": digits}.
[[nodiscard]] nlohmann::json ToJson(const EventLogRecord& record);
// Keys that are missing are those of an empty record. Throws std::invalid_argument with a sentence.
[[nodiscard]] EventLogRecord RecordFromJson(const nlohmann::json& json);

// "error", "warning", "information", "success", "audit-success", "audit-failure"; the number of any other type.
[[nodiscard]] std::string EventTypeName(WORD type);

[[nodiscard]] std::string ToHexadecimal(const void* data, std::size_t size);
// Throws std::invalid_argument with a sentence.
[[nodiscard]] std::vector<BYTE> FromHexadecimal(const std::string& digits);
} // namespace Simulator
