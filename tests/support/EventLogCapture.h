#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace TestSupport
{
// One call of ReportEventW, as it was made.
struct ReportedEvent
{
    std::wstring m_strSource; // of the handle; empty when the handle is no open event source
    HANDLE m_hSource;
    WORD m_wType;
    WORD m_wCategory;
    DWORD m_dwEventId;
    bool m_bHasUserSid;
    std::vector<std::wstring> m_lstStrings;
    DWORD m_dwDataSize;
    DWORD m_dwThreadId;
};

// The event log of a test program: RegisterEventSourceW, ReportEventW and DeregisterEventSource of the program end here
// from the start of main on. One per process; any thread.
class EventLogCapture
{
public:
    // Redirects the three functions for the rest of the process.
    static void Install();

    [[nodiscard]] static std::vector<ReportedEvent> Events();
    static void Clear();

    // Sources that are registered and not deregistered.
    [[nodiscard]] static std::vector<std::wstring> OpenSources();
};
} // namespace TestSupport
