#pragma once

#include "platform/XmlPointers.h"

#include <string>

namespace Notifications::OrvikWmiEvents
{
// One entry of the firmware's audit log, as the firmware wrote it. A field that the entry lacks is empty.
struct AuditLogEntry
{
    std::wstring m_strTimestamp;
    std::wstring m_strSource;
    std::wstring m_strEventId; // meant to be a decimal number
    std::wstring m_strDescription;
    std::wstring m_strLogType; // meant to be WARN, INFO or ERROR
};

// Puts the text of one child of an entry into the field of that name, in any case, if it is an element; other names are
// ignored, of two elements of the same name the later one counts. The result is that of the call that failed, E_POINTER
// for one that gave nothing: the field is as it was. Raises std::bad_alloc.
[[nodiscard]] HRESULT ReadField(IXMLDOMNode* node, AuditLogEntry& entry);

// The number with which an entry stands in the event log: leading blanks, a sign, digits up to anything else; 0 without
// digits, the nearest number that fits for one out of range.
[[nodiscard]] int EventIdNumber(const std::wstring& eventId);
} // namespace Notifications::OrvikWmiEvents
