#include "wmievents/AuditLogEntry.h"

#include "platform/UniqueBstr.h"
#include "shared/OwnerTypes.h"

#include <cwchar>
#include <utility>

using Orvik::Shared::ReceiveInto;

namespace Notifications::OrvikWmiEvents
{
namespace
{
constexpr std::pair<const wchar_t*, std::wstring AuditLogEntry::*> g_fields[] = {
    {L"timestamp", &AuditLogEntry::m_strTimestamp},
    {L"source", &AuditLogEntry::m_strSource},
    {L"event_id", &AuditLogEntry::m_strEventId},
    {L"description", &AuditLogEntry::m_strDescription},
    {L"logtype", &AuditLogEntry::m_strLogType}};
} // namespace

void ReadField(IXMLDOMNode* element, AuditLogEntry& entry)
{
    UniqueBstr name;
    if (FAILED(element->get_nodeName(ReceiveInto(name))) || !name)
        return;
    for (const auto& [fieldName, field] : g_fields)
    {
        if (_wcsicmp(name.get(), fieldName) != 0)
            continue;
        UniqueBstr text;
        if (SUCCEEDED(element->get_text(ReceiveInto(text))) && text)
            entry.*field = text.get();
        return;
    }
}

int EventIdNumber(const std::wstring& eventId)
{
    return std::wcstol(eventId.c_str(), nullptr, 10);
}
} // namespace Notifications::OrvikWmiEvents
