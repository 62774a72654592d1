#pragma once

#include "simulator/redirect/ImportRedirection.h"

#include <windows.h>

#include <mutex>
#include <set>

namespace Tests
{
// For the life of the object the program's calls for the source of the audit log are journalled and go through the call
// plan as "RegisterEventSourceW", "ReportEventW" and "DeregisterEventSource", whose answer the plan cannot change;
// those for the program's own log pass unseen. A text that is longer than the system takes is refused as the system
// does it. One at a time; any thread. No allocation of it counts or fails.
class EventSourceCalls
{
public:
    // Characters of one text that the system takes.
    static constexpr std::size_t LongestText = 31839;

    EventSourceCalls();
    EventSourceCalls(const EventSourceCalls&) = delete;
    EventSourceCalls& operator=(const EventSourceCalls&) = delete;
    ~EventSourceCalls();

private:
    static HANDLE WINAPI Register(LPCWSTR server, LPCWSTR source);
    static WINBOOL WINAPI Report(HANDLE source, WORD type, WORD category, DWORD eventId, PSID sid, WORD stringCount,
                                 DWORD dataSize, LPCWSTR* strings, LPVOID data);
    static WINBOOL WINAPI Deregister(HANDLE source);
    bool IsWatched(HANDLE source);

    std::mutex m_lock;
    std::set<HANDLE> m_setSources;
    Simulator::Redirection<decltype(RegisterEventSourceW)> m_register;
    Simulator::Redirection<decltype(ReportEventW)> m_report;
    Simulator::Redirection<decltype(DeregisterEventSource)> m_deregister;
};
} // namespace Tests
