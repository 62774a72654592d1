#pragma once

#include "platform/XmlDocument.h"

#include <windows.h>

#include <string>

namespace Orvik::Shared
{
class TraceScope;
}

// The way of the firmware's audit log into the Windows event log. Any thread that has initialised COM.
namespace Notifications::OrvikWmiEvents
{
// True when policy silences the copy, which is then logged under the caller's name.
[[nodiscard]] bool AreLoggingsSuppressed(const Orvik::Shared::TraceScope& trace);

// Asks the platform for the audit log as XML text. The result is that of the command or of what it raised; the text is
// empty when it failed or answered with none.
[[nodiscard]] HRESULT GetVeritorLogFromPlix(std::wstring& xml);

// Writes the entries of an audit log that the event log does not have yet, last entry first, under the copy lock. An
// exception is logged and ends the walk; what is written stays written.
void AddLogsToEventViewer(const XmlDocument& xml);

// The whole copy: fetch, parse, write. The result is that of the fetch, or E_OUTOFMEMORY; nothing is raised.
[[nodiscard]] HRESULT CopyAuditLog(const Orvik::Shared::TraceScope& trace) noexcept;
} // namespace Notifications::OrvikWmiEvents
