#pragma once

#include "simulator/console/ObjectReader.h"
#include "simulator/machine/EventLogRecord.h"

namespace Simulator
{
// What a record of the Windows event log must be; what is not given is not looked at.
struct RecordPattern
{
    std::optional<WORD> m_type;
    std::optional<WORD> m_category;
    std::optional<DWORD> m_eventId;
    std::optional<std::string> m_text; // the only string
    std::string m_strContains;         // in one of the strings
    std::string m_strDescription;      // the pattern as it was written

    [[nodiscard]] bool Fits(const EventLogRecord& record) const;
};

// The text, or {"type", "category", "event-id", "text", "contains"}. Throws UsageError.
[[nodiscard]] RecordPattern ReadRecordPattern(const nlohmann::json& value, const std::string& place);
// The keys of the second form beside others; the caller finishes the reader.
[[nodiscard]] RecordPattern ReadRecordPattern(ObjectReader& reader);
} // namespace Simulator
