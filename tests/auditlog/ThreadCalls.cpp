#include "tests/auditlog/ThreadCalls.h"

#include "app/dialogs/MessageKind.h"
#include "simulator/model/CallPlan.h"
#include "simulator/model/Journal.h"
#include "tests/support/AllocationFault.h"
#include "wmievents/WmiEventsState.h"

using namespace Notifications::OrvikWmiEvents;
using Simulator::CallPlan;
using Simulator::Journal;

namespace Tests
{
namespace
{
constexpr DWORD g_dwMinute = 60000;

ThreadCalls* g_pCalls = nullptr;

// Null for all other locks of the process.
const char* NameOf(const CRITICAL_SECTION* section)
{
    if (section == &g_csLogging)
        return "logging";
    if (section == &g_csCopy)
        return "copy";
    return section == &g_csScan ? "scan" : nullptr;
}

void Note(const char* what, const char* name)
{
    const AllocationFault::Pause pause;
    Journal::Instance().Append("lock", std::string(what) + name);
}
} // namespace

ThreadCalls::ThreadCalls()
    : m_sleep("Sleep", &NotedSleep), m_dialog("DialogBoxParamW", &NotedDialogBox),
      m_foreground("SetForegroundWindow", &NotedSetForegroundWindow), m_enter("EnterCriticalSection", &NotedEnter),
      m_leave("LeaveCriticalSection", &NotedLeave)
{
    g_pCalls = this;
}

ThreadCalls::~ThreadCalls() = default;

std::vector<ShownDialog> ThreadCalls::Dialogs() const
{
    const std::lock_guard lock(m_lock);
    return m_lstDialogs;
}

std::vector<std::string> ThreadCalls::CallsAndLocks()
{
    std::vector<std::string> subjects;
    for (const Simulator::JournalEntry& entry : Journal::Instance().Entries())
    {
        if (entry.m_strKind == "call" || entry.m_strKind == "lock")
            subjects.push_back(entry.m_strSubject);
    }
    return subjects;
}

void WINAPI ThreadCalls::NotedSleep(DWORD milliseconds)
{
    if (milliseconds < g_dwMinute)
        SleepEx(milliseconds, FALSE);
    else
        static_cast<void>(CallPlan::Instance().Enter("Sleep", {{"milliseconds", milliseconds}}));
}

void WINAPI ThreadCalls::NotedEnter(LPCRITICAL_SECTION section)
{
    g_pCalls->m_enter.Original()(section);
    if (const char* const name = NameOf(section); name != nullptr)
        Note("enter ", name);
}

void WINAPI ThreadCalls::NotedLeave(LPCRITICAL_SECTION section)
{
    if (const char* const name = NameOf(section); name != nullptr)
        Note("leave ", name);
    g_pCalls->m_leave.Original()(section);
}

INT_PTR WINAPI ThreadCalls::NotedDialogBox(HINSTANCE instance, LPCWSTR name, HWND owner, DLGPROC procedure,
                                           LPARAM parameter)
{
    const auto& parameters = *reinterpret_cast<const MessageParameters*>(parameter);
    {
        const std::lock_guard lock(g_pCalls->m_lock);
        g_pCalls->m_lstDialogs.push_back({reinterpret_cast<ULONG_PTR>(name), instance, owner, procedure,
                                          parameters.m_pText, static_cast<int>(parameters.m_kind),
                                          GetCurrentThreadId()});
    }
    return FAILED(CallPlan::Instance().Enter("DialogBoxParamW")) ? -1 : 0;
}

WINBOOL WINAPI ThreadCalls::NotedSetForegroundWindow(HWND window)
{
    static_cast<void>(CallPlan::Instance().Enter("SetForegroundWindow", {{"window", window != nullptr}}));
    return FALSE;
}
} // namespace Tests
