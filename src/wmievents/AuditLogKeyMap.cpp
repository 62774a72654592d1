#include "wmievents/AuditLogKeyMap.h"

#include "shared/TraceScope.h"
#include "wmievents/UpperCase.h"

#include <algorithm>

using Orvik::Shared::CriticalSectionLock;
using Orvik::Shared::TraceScope;

namespace Notifications::OrvikWmiEvents
{
namespace
{
constexpr std::wstring_view g_timestampName = L"TIMESTAMP:";

// Characters that the thread's code page lacks become its replacement.
std::string Narrow(const std::wstring& text)
{
    const int length = static_cast<int>(text.size());
    const int size = WideCharToMultiByte(CP_THREAD_ACP, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_THREAD_ACP, 0, text.data(), length, narrow.data(), size, nullptr, nullptr);
    return narrow;
}
} // namespace

AuditLogKeyMap& AuditLogKeyMap::Instance()
{
    static AuditLogKeyMap& map = *new AuditLogKeyMap;
    return map;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): moved into the map
void AuditLogKeyMap::Insert(std::string key, std::string value)
{
    const CriticalSectionLock lock(m_cs);
    m_map.try_emplace(std::move(key), std::move(value));
}

bool AuditLogKeyMap::Contains(const std::string& key) const
{
    const CriticalSectionLock lock(m_cs);
    return m_map.contains(key);
}

AuditLogKeyMap::Pairs AuditLogKeyMap::Copy() const
{
    const CriticalSectionLock lock(m_cs);
    return Pairs(m_map.begin(), m_map.end());
}

void CreateHashingTimeStamp(int eventId, std::wstring text)
{
    const TraceScope trace(ORVIK_FUNCTION);
    trace.Verbose(L"CreateHashingTimeStamp:: EventID: %d, logDesc:%s", eventId, text.c_str());
    text = UpperCase(std::move(text));
    const std::size_t position = text.find(g_timestampName);
    // A text that begins with the name is none of ours.
    if (position == std::wstring::npos || position == 0)
        return;
    constexpr std::size_t blank = 1;
    const std::wstring timestamp = text.substr(std::min(position + g_timestampName.size() + blank, text.size()));
    trace.Verbose(L"CreateHashingTimeStamp: Formating ts String: %s", timestamp.c_str());
    AuditLogKeyMap::Instance().Insert(Narrow(timestamp + L'|' + std::to_wstring(eventId)), Narrow(text));
}

bool LogEntryAlreadyInserted(const std::wstring& eventId, const std::wstring& /*source*/,
                             const std::wstring& /*description*/, const std::wstring& timestamp)
{
    TraceScope trace(ORVIK_FUNCTION);
    const bool isFound = AuditLogKeyMap::Instance().Contains(Narrow(timestamp + L'|' + eventId));
    trace.Verbose(L"Entry: %s|%s found status: %s", timestamp.c_str(), eventId.c_str(), isFound ? L"true" : L"false");
    return trace.Exit(isFound);
}
} // namespace Notifications::OrvikWmiEvents
