#pragma once

#include "wmievents/AuditLogEntry.h"

namespace Notifications::OrvikWmiEvents
{
// The source under which audit-log entries stand in the Windows event log. Records are written whether or not anybody
// has registered it with a message file.
inline constexpr wchar_t VeritorEventSourceName[] = L"Orvik Veritor";

// Writes an entry as one record: type by its log type, number by its event identifier, one text. The text's last line
// is "Timestamp: " with the timestamp, which is how a later run recognises the entry. Without the source nothing is
// written and nothing logged; a record that the system refuses and a lack of memory are logged. Any thread.
void LogVeritor(const std::wstring& description, const std::wstring& source, const std::wstring& timestamp,
                const std::wstring& eventId, const std::wstring& logType);
} // namespace Notifications::OrvikWmiEvents
