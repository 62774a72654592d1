#include "tests/app/window/UserCalls.h"

#include "simulator/redirect/ImportRedirection.h"

#include <wtsapi32.h>

#include <deque>

namespace Tests
{
namespace
{
UserCalls* g_pCalls = nullptr;

UserCalls& Note(const char* name)
{
    g_pCalls->m_lstCalls.emplace_back(name);
    if (const HANDLE watched = g_pCalls->m_hWatched; watched != nullptr)
    {
        const bool isSignalled = WaitForSingleObject(watched, 0) == WAIT_OBJECT_0;
        g_pCalls->m_lstWasSignalled.push_back(isSignalled);
        // The wait took the signal.
        if (isSignalled)
            SetEvent(watched);
    }
    return *g_pCalls;
}

ATOM WINAPI NotedRegisterClassExW(const WNDCLASSEXW* windowClass)
{
    UserCalls& calls = Note("RegisterClassExW");
    calls.m_class = *windowClass;
    calls.m_strClass = windowClass->lpszClassName;
    return 1;
}

HWND WINAPI NotedCreateWindowExW(DWORD exStyle, LPCWSTR className, LPCWSTR title, DWORD style, int x, int y, int width,
                                 int height, HWND parent, HMENU menu, HINSTANCE instance, LPVOID parameter)
{
    UserCalls& calls = Note("CreateWindowExW");
    calls.m_window = {parameter, instance, menu,   parent, height, width, y, x, static_cast<LONG>(style),
                      nullptr,   nullptr,  exStyle};
    calls.m_strWindowClass = className;
    calls.m_strWindowTitle = title;
    return calls.m_hwndCreated;
}

WINBOOL WINAPI NotedSessionNotification(HWND hwnd, DWORD flags)
{
    UserCalls& calls = Note("WTSRegisterSessionNotification");
    calls.m_hwndSession = hwnd;
    calls.m_dwSessionFlags = flags;
    return TRUE;
}

WINBOOL WINAPI NotedShowWindow(HWND hwnd, int show)
{
    UserCalls& calls = Note("ShowWindow");
    calls.m_hwndShown = hwnd;
    calls.m_nShow = show;
    return FALSE;
}

WINBOOL WINAPI NotedUpdateWindow(HWND hwnd)
{
    Note("UpdateWindow").m_hwndUpdated = hwnd;
    return TRUE;
}

LCID WINAPI NotedUserDefaultLcid()
{
    Note("GetUserDefaultLCID");
    return 0x0409;
}

WINBOOL WINAPI NotedUnregister(HDEVNOTIFY handle)
{
    Note("UnregisterDeviceNotification").m_lstUnregistered.push_back(handle);
    return handle != nullptr;
}

void WINAPI NotedPostQuitMessage(int code)
{
    Note("PostQuitMessage").m_nQuitCode = code;
}

LRESULT WINAPI NotedDefWindowProcW(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    UserCalls& calls = Note("DefWindowProcW");
    calls.m_default = {hwnd, message, wParam, lParam, 0, {}};
    return calls.m_lrDefault;
}

HANDLE WINAPI NotedCreateMutexW(LPSECURITY_ATTRIBUTES security, WINBOOL owned, LPCWSTR name)
{
    UserCalls& calls = Note("CreateMutexW");
    calls.m_pMutexSecurity = security;
    calls.m_bOwned = owned;
    calls.m_strMutex = name;
    const HANDLE handle = CreateMutexExW(nullptr, nullptr, 0, MUTEX_ALL_ACCESS);
    SetLastError(calls.m_dwMutexError);
    return handle;
}

WINBOOL WINAPI NotedGetMessageW(LPMSG message, HWND hwnd, UINT first, UINT last)
{
    UserCalls& calls = Note("GetMessageW");
    calls.m_lstFilters.push_back({hwnd, first, last});
    const UserCalls::Received& received = calls.m_lstMessages.at(calls.m_nReceived++);
    if (received.m_nResult != -1)
        *message = received.m_message;
    return received.m_nResult;
}

int WINAPI NotedTranslateAcceleratorW(HWND hwnd, HACCEL accelerators, LPMSG message)
{
    UserCalls& calls = Note("TranslateAcceleratorW");
    calls.m_lstAcceleratorWindows.push_back(hwnd);
    calls.m_hAccelerators = accelerators;
    calls.m_lstOffered.push_back(*message);
    return calls.m_lstMessages[calls.m_nReceived - 1].m_bAccelerator;
}

WINBOOL WINAPI NotedTranslateMessage(const MSG* message)
{
    Note("TranslateMessage").m_lstTranslated.push_back(*message);
    return FALSE;
}

LRESULT WINAPI NotedDispatchMessageW(const MSG* message)
{
    Note("DispatchMessageW").m_lstDispatched.push_back(*message);
    return 0;
}
} // namespace

struct UserCalls::Redirections
{
    std::deque<Simulator::ImportRedirection> m_lst;
};

UserCalls::UserCalls() : m_pRedirections(std::make_unique<Redirections>())
{
    g_pCalls = this;
    const std::pair<const char*, void*> redirected[] = {
        {"RegisterClassExW", reinterpret_cast<void*>(&NotedRegisterClassExW)},
        {"CreateWindowExW", reinterpret_cast<void*>(&NotedCreateWindowExW)},
        {"WTSRegisterSessionNotification", reinterpret_cast<void*>(&NotedSessionNotification)},
        {"ShowWindow", reinterpret_cast<void*>(&NotedShowWindow)},
        {"UpdateWindow", reinterpret_cast<void*>(&NotedUpdateWindow)},
        {"GetUserDefaultLCID", reinterpret_cast<void*>(&NotedUserDefaultLcid)},
        {"UnregisterDeviceNotification", reinterpret_cast<void*>(&NotedUnregister)},
        {"PostQuitMessage", reinterpret_cast<void*>(&NotedPostQuitMessage)},
        {"DefWindowProcW", reinterpret_cast<void*>(&NotedDefWindowProcW)},
        {"CreateMutexW", reinterpret_cast<void*>(&NotedCreateMutexW)},
        {"GetMessageW", reinterpret_cast<void*>(&NotedGetMessageW)},
        {"TranslateAcceleratorW", reinterpret_cast<void*>(&NotedTranslateAcceleratorW)},
        {"TranslateMessage", reinterpret_cast<void*>(&NotedTranslateMessage)},
        {"DispatchMessageW", reinterpret_cast<void*>(&NotedDispatchMessageW)}};
    for (const auto& [name, replacement] : redirected)
        m_pRedirections->m_lst.emplace_back(nullptr, name, replacement);
}

UserCalls::~UserCalls()
{
    // In reverse order of making.
    while (!m_pRedirections->m_lst.empty())
        m_pRedirections->m_lst.pop_back();
}
} // namespace Tests
