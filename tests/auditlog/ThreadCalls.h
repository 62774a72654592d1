#pragma once

#include "simulator/redirect/ImportRedirection.h"

#include <windows.h>

#include <mutex>
#include <string>
#include <vector>

namespace Tests
{
// A message dialog that was asked for.
struct ShownDialog
{
    ULONG_PTR m_nTemplate;
    HINSTANCE m_hInstance;
    HWND m_hwndOwner;
    DLGPROC m_pfnProcedure;
    std::wstring m_strText;
    int m_nKind;
    DWORD m_dwThreadId;
};

// What the threads of the firmware's protection ask of Windows, journalled as calls under their names, for the life of
// the object: Sleep for a minute or longer, which returns at once; DialogBoxParamW, which takes no longer than the plan
// says and shows nothing; SetForegroundWindow; and, of kind "lock", entering and leaving the locks: "enter logging",
// "leave copy", "enter scan". One at a time; any thread.
class ThreadCalls
{
public:
    ThreadCalls();
    ThreadCalls(const ThreadCalls&) = delete;
    ThreadCalls& operator=(const ThreadCalls&) = delete;
    ~ThreadCalls();

    [[nodiscard]] std::vector<ShownDialog> Dialogs() const;
    // Subjects of all journal entries of the kinds "call" and "lock", in order.
    [[nodiscard]] static std::vector<std::string> CallsAndLocks();

private:
    static void WINAPI NotedSleep(DWORD milliseconds);
    static void WINAPI NotedEnter(LPCRITICAL_SECTION section);
    static void WINAPI NotedLeave(LPCRITICAL_SECTION section);
    static INT_PTR WINAPI NotedDialogBox(HINSTANCE instance, LPCWSTR name, HWND owner, DLGPROC procedure,
                                         LPARAM parameter);
    static WINBOOL WINAPI NotedSetForegroundWindow(HWND window);

    mutable std::mutex m_lock;
    std::vector<ShownDialog> m_lstDialogs;
    Simulator::Redirection<decltype(Sleep)> m_sleep;
    Simulator::Redirection<decltype(DialogBoxParamW)> m_dialog;
    Simulator::Redirection<decltype(SetForegroundWindow)> m_foreground;
    Simulator::Redirection<decltype(EnterCriticalSection)> m_enter;
    Simulator::Redirection<decltype(LeaveCriticalSection)> m_leave;
};
} // namespace Tests
