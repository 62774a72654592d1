#include "tests/support/EventLogCapture.h"

#include "simulator/redirect/ImportRedirection.h"

#include <map>
#include <mutex>

namespace TestSupport
{
namespace
{
struct Capture
{
    std::mutex m_lock;
    std::vector<ReportedEvent> m_lstEvents;
    std::map<HANDLE, std::wstring> m_mapSources;
    ULONG_PTR m_nLastHandle = 0xE0000000;
};

Capture& TheCapture()
{
    // Never freed: threads log until the process is gone.
    static Capture& capture = *new Capture;
    return capture;
}

HANDLE WINAPI CapturedRegisterEventSourceW(LPCWSTR, LPCWSTR source)
{
    Capture& capture = TheCapture();
    const std::lock_guard lock(capture.m_lock);
    const auto handle = reinterpret_cast<HANDLE>(++capture.m_nLastHandle);
    capture.m_mapSources[handle] = source;
    return handle;
}

WINBOOL WINAPI CapturedDeregisterEventSource(HANDLE source)
{
    Capture& capture = TheCapture();
    const std::lock_guard lock(capture.m_lock);
    if (capture.m_mapSources.erase(source) != 0)
        return TRUE;
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
}

WINBOOL WINAPI CapturedReportEventW(HANDLE source, WORD type, WORD category, DWORD eventId, PSID sid, WORD stringCount,
                                    DWORD dataSize, LPCWSTR* strings, LPVOID)
{
    Capture& capture = TheCapture();
    const std::lock_guard lock(capture.m_lock);
    const auto found = capture.m_mapSources.find(source);
    ReportedEvent event{found != capture.m_mapSources.end() ? found->second : L"",
                        source,
                        type,
                        category,
                        eventId,
                        sid != nullptr,
                        {},
                        dataSize,
                        GetCurrentThreadId()};
    for (WORD i = 0; i < stringCount; ++i)
        event.m_lstStrings.emplace_back(strings[i]);
    capture.m_lstEvents.push_back(std::move(event));
    if (found != capture.m_mapSources.end())
        return TRUE;
    SetLastError(ERROR_INVALID_HANDLE);
    return FALSE;
}
} // namespace

void EventLogCapture::Install()
{
    using Simulator::Redirection;
    // Never undone: threads log until the process is gone.
    new Redirection<decltype(RegisterEventSourceW)>("RegisterEventSourceW", &CapturedRegisterEventSourceW);
    new Redirection<decltype(DeregisterEventSource)>("DeregisterEventSource", &CapturedDeregisterEventSource);
    new Redirection<decltype(ReportEventW)>("ReportEventW", &CapturedReportEventW);
}

std::vector<ReportedEvent> EventLogCapture::Events()
{
    Capture& capture = TheCapture();
    const std::lock_guard lock(capture.m_lock);
    return capture.m_lstEvents;
}

void EventLogCapture::Clear()
{
    Capture& capture = TheCapture();
    const std::lock_guard lock(capture.m_lock);
    capture.m_lstEvents.clear();
}

std::vector<std::wstring> EventLogCapture::OpenSources()
{
    Capture& capture = TheCapture();
    const std::lock_guard lock(capture.m_lock);
    std::vector<std::wstring> sources;
    for (const auto& [handle, source] : capture.m_mapSources)
        sources.push_back(source);
    return sources;
}
} // namespace TestSupport
