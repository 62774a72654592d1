#include "tests/app/window/SystemCalls.h"

#include "simulator/doubles/JournalText.h"
#include "simulator/model/Journal.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/support/LogCapture.h"
#include "usbc/AcpiUsbCMonitor.h"
#include "wmievents/AuditLogScan.h"
#include "wmievents/VeritorThreads.h"

#include <dbt.h>

using Simulator::Journal;
using Simulator::Redirection;

namespace Tests
{
namespace
{
SystemCalls* g_pCalls = nullptr;
DWORD g_dwTestThread = 0;
decltype(CreateThread)* g_pfnCreateThread = nullptr;
decltype(DefWindowProcW)* g_pfnDefWindowProc = nullptr;

void WINAPI NotedSleep(DWORD milliseconds)
{
    // The doubles yield with 0, their threads wait.
    if (GetCurrentThreadId() != g_dwTestThread || milliseconds == 0)
    {
        SleepEx(milliseconds, FALSE);
        return;
    }
    Journal::Instance().Append("call", "Sleep", {{"milliseconds", milliseconds}});
    g_pCalls->m_lstLinesAtSleep.push_back(TestSupport::LogLines("WndProc"));
}

WINBOOL WINAPI NotedSetForegroundWindow(HWND hwnd)
{
    Journal::Instance().Append("call", "SetForegroundWindow");
    g_pCalls->m_hwndForeground = hwnd;
    return TRUE;
}

LRESULT WINAPI NotedDefWindowProcW(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    // The toasts' desktop has windows of its own.
    if (GetCurrentThreadId() != g_dwTestThread)
        return g_pfnDefWindowProc(hwnd, message, wParam, lParam);
    g_pCalls->m_lstHandedOn.push_back(message);
    return 7;
}

HDEVNOTIFY WINAPI NotedRegisterDeviceNotificationW(HANDLE recipient, LPVOID filter, DWORD flags)
{
    const auto& wanted = *static_cast<const DEV_BROADCAST_DEVICEINTERFACE_W*>(filter);
    Journal::Instance().Append("call", "RegisterDeviceNotificationW",
                               {{"class", Simulator::GuidText(wanted.dbcc_classguid)},
                                {"size", wanted.dbcc_size},
                                {"type", wanted.dbcc_devicetype},
                                {"flags", flags}});
    g_pCalls->m_lstRecipients.push_back(recipient);
    if (g_pCalls->m_bRefusesRegistration)
        return nullptr;
    return reinterpret_cast<HDEVNOTIFY>(g_pCalls->m_lstRecipients.size() * 0x10);
}

WINBOOL WINAPI NotedVerifyVersionInfoW(LPOSVERSIONINFOEXW, DWORD, DWORDLONG)
{
    Journal::Instance().Append("call", "VerifyVersionInfoW");
    return g_pCalls->m_bIsVersion;
}

// The name of a thread of the firmware's protection; null for any other.
const char* ProtectionThread(LPTHREAD_START_ROUTINE start)
{
    using namespace Notifications::OrvikWmiEvents;
    if (start == &ThreadProcVeritorLogging)
        return "ThreadProcVeritorLogging";
    if (start == &ThreadProcVeritorEvent)
        return "ThreadProcVeritorEvent";
    return start == &ThreadProcCreateHashKeysForVeritorEventLogs ? "ThreadProcCreateHashKeysForVeritorEventLogs"
                                                                 : nullptr;
}

HANDLE WINAPI NotedCreateThread(LPSECURITY_ATTRIBUTES security, SIZE_T stackSize, LPTHREAD_START_ROUTINE start,
                                LPVOID argument, DWORD flags, LPDWORD threadId)
{
    if (const char* const protection = ProtectionThread(start); protection != nullptr)
    {
        Journal::Instance().Append("call", protection, {{"parameter", reinterpret_cast<LONG_PTR>(argument)}});
        g_pCalls->m_lstLinesAtThread.push_back(TestSupport::LogLines("wWinMain"));
        return g_pCalls->m_bRefusesThread ? nullptr : CreateEventW(nullptr, TRUE, FALSE, nullptr);
    }
    if (start != &ACPIUSBCMonitor)
        return g_pfnCreateThread(security, stackSize, start, argument, flags, threadId);
    Journal::Instance().Append("call", "CreateThread",
                               {{"security", security != nullptr},
                                {"stack-size", stackSize},
                                {"argument", argument != nullptr},
                                {"flags", flags}});
    if (g_pCalls->m_bRefusesThread)
        return nullptr;
    *threadId = 4711;
    return CreateEventW(nullptr, TRUE, FALSE, nullptr);
}
} // namespace

struct SystemCalls::Redirections
{
    Redirection<decltype(Sleep)> m_sleep{"Sleep", &NotedSleep};
    Redirection<decltype(SetForegroundWindow)> m_foreground{"SetForegroundWindow", &NotedSetForegroundWindow};
    Redirection<decltype(RegisterDeviceNotificationW)> m_register{"RegisterDeviceNotificationW",
                                                                  &NotedRegisterDeviceNotificationW};
    Redirection<decltype(DefWindowProcW)> m_default{"DefWindowProcW", &NotedDefWindowProcW};
    Redirection<decltype(VerifyVersionInfoW)> m_version{"VerifyVersionInfoW", &NotedVerifyVersionInfoW};
    Redirection<decltype(CreateThread)> m_thread{"CreateThread", &NotedCreateThread};
};

SystemCalls::SystemCalls()
{
    g_pCalls = this;
    g_dwTestThread = GetCurrentThreadId();
    m_pRedirections = std::make_unique<Redirections>();
    g_pfnCreateThread = m_pRedirections->m_thread.Original();
    g_pfnDefWindowProc = m_pRedirections->m_default.Original();
}

SystemCalls::~SystemCalls() = default;

std::vector<std::string> DoneCalls()
{
    std::vector<std::string> done;
    for (const Simulator::JournalEntry& entry : Journal::Instance().Entries())
    {
        const nlohmann::json& details = entry.m_details;
        const std::string& call = entry.m_strSubject;
        if (entry.m_strKind != "call")
            continue;
        if (call == "IPlixCommand::Execute")
            done.push_back(details.at("command"));
        else if (call == "IPlixCommand::ExecuteWithInput")
            done.push_back(details.at("command").get<std::string>() + " " + details.at("input").at("value").dump());
        else if (call.starts_with("ThreadProc"))
            done.push_back(call + " " + details.at("parameter").dump());
        else if (call == "Sleep")
            done.push_back("Sleep " + details.at("milliseconds").dump());
        else if (call == "IWbemServices::ExecNotificationQueryAsync")
            done.push_back(details.at("query"));
        else if (call == "SetForegroundWindow" || call == "RegisterDeviceNotificationW" || call == "CreateThread" ||
                 call == "VerifyVersionInfoW" || call == "CoInitialize")
            done.push_back(call);
    }
    return done;
}
} // namespace Tests
