#include "wmievents/AuditLogEntry.h"

#include "platform/RequireObject.h"
#include "platform/UniqueBstr.h"
#include "shared/OwnerTypes.h"

#include <algorithm>
#include <cwchar>
#include <iterator>
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

HRESULT ReadField(IXMLDOMNode* node, AuditLogEntry& entry)
{
    UniqueBstr name;
    HRESULT hr = node->get_nodeName(ReceiveInto(name));
    if (FAILED(hr) || !name)
        return RequireObject(hr, name);
    const auto* const found =
        std::ranges::find_if(g_fields, [&name](const auto& field) { return _wcsicmp(name.get(), field.first) == 0; });
    if (found == std::end(g_fields))
        return S_OK;

    // A processing instruction has a name as well.
    DOMNodeType type = NODE_INVALID;
    hr = node->get_nodeType(&type);
    if (FAILED(hr) || type != NODE_ELEMENT)
        return hr;
    UniqueBstr text;
    hr = node->get_text(ReceiveInto(text));
    if (FAILED(hr) || !text)
        return RequireObject(hr, text);
    entry.*(found->second) = text.get();
    return S_OK;
}

int EventIdNumber(const std::wstring& eventId)
{
    return std::wcstol(eventId.c_str(), nullptr, 10);
}
} // namespace Notifications::OrvikWmiEvents
