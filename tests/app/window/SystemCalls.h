#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

namespace Tests
{
// What the main window and the start-up ask of Windows, journalled as calls instead of done: Sleep,
// SetForegroundWindow, RegisterDeviceNotificationW, VerifyVersionInfoW, and CreateThread for the monitor of the ACPI
// event device and for the threads of the firmware's protection. One at a time.
class SystemCalls
{
public:
    SystemCalls();
    SystemCalls(const SystemCalls&) = delete;
    SystemCalls& operator=(const SystemCalls&) = delete;
    ~SystemCalls();

    // What VerifyVersionInfoW answers.
    BOOL m_bIsVersion = TRUE;
    // Lines of the window procedure at the moment of each Sleep.
    std::vector<std::vector<std::wstring>> m_lstLinesAtSleep;
    HWND m_hwndForeground = nullptr;
    // Messages that DefWindowProcW was given, which answers 7.
    std::vector<UINT> m_lstHandedOn;
    // Of RegisterDeviceNotificationW, which answers 0x10, 0x20, 0x30 ... or null when it is to fail.
    std::vector<HANDLE> m_lstRecipients;
    bool m_bRefusesRegistration = false;
    bool m_bRefusesThread = false;
    // Lines of the program's start at the moment of each thread of the protection.
    std::vector<std::vector<std::wstring>> m_lstLinesAtThread;

private:
    struct Redirections;
    std::unique_ptr<Redirections> m_pRedirections;
};

// The journal's calls that tell what the agent did, in order: "Sleep 1000", "SetForegroundWindow", the name of a
// platform command, with its input "Platform.USBC.Messages 255", the query of a subscription, a thread of the
// protection with its parameter "ThreadProcVeritorLogging 0" ...
[[nodiscard]] std::vector<std::string> DoneCalls();
} // namespace Tests
