#include "tests/auditlog/EventSourceCalls.h"

#include "simulator/model/Text.h"
#include "tests/support/AllocationFault.h"
#include "tests/usbc/PlannedFunction.h"
#include "wmievents/VeritorEventLog.h"

#include <cwchar>
#include <string_view>

namespace Tests
{
namespace
{
EventSourceCalls* g_pCalls = nullptr;
}

EventSourceCalls::EventSourceCalls()
    : m_register("RegisterEventSourceW", &Register), m_report("ReportEventW", &Report),
      m_deregister("DeregisterEventSource", &Deregister)
{
    g_pCalls = this;
}

EventSourceCalls::~EventSourceCalls() = default;

bool EventSourceCalls::IsWatched(HANDLE source)
{
    const std::lock_guard lock(m_lock);
    return m_setSources.contains(source);
}

HANDLE WINAPI EventSourceCalls::Register(LPCWSTR server, LPCWSTR source)
{
    if (std::wstring_view(source) != Notifications::OrvikWmiEvents::VeritorEventSourceName)
        return g_pCalls->m_register.Original()(server, source);
    const AllocationFault::Pause pause;
    if (!EnterCall("RegisterEventSourceW", {{"server", server != nullptr}, {"source", Simulator::Narrow(source)}}))
        return nullptr;
    const HANDLE handle = g_pCalls->m_register.Original()(server, source);
    const std::lock_guard lock(g_pCalls->m_lock);
    g_pCalls->m_setSources.insert(handle);
    return handle;
}

WINBOOL WINAPI EventSourceCalls::Report(HANDLE source, WORD type, WORD category, DWORD eventId, PSID sid,
                                        WORD stringCount, DWORD dataSize, LPCWSTR* strings, LPVOID data)
{
    const auto report = [=]
    {
        return g_pCalls->m_report.Original()(source, type, category, eventId, sid, stringCount, dataSize, strings,
                                             data);
    };
    if (!g_pCalls->IsWatched(source))
        return report();
    const AllocationFault::Pause pause;
    if (!EnterCall("ReportEventW", {{"type", type}, {"event-id", eventId}, {"data", data != nullptr}}))
        return FALSE;
    for (WORD i = 0; i < stringCount; ++i)
    {
        if (std::wcslen(strings[i]) > LongestText)
            return FailWith(ERROR_INVALID_PARAMETER);
    }
    return report();
}

WINBOOL WINAPI EventSourceCalls::Deregister(HANDLE source)
{
    if (g_pCalls->IsWatched(source))
    {
        const AllocationFault::Pause pause;
        static_cast<void>(EnterCall("DeregisterEventSource", nlohmann::json::object()));
        const std::lock_guard lock(g_pCalls->m_lock);
        g_pCalls->m_setSources.erase(source);
    }
    return g_pCalls->m_deregister.Original()(source);
}
} // namespace Tests
