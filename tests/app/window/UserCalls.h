#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

namespace Tests
{
// What the program asks of the window system, noted instead of done: for the life of the object the calls that make,
// show and end windows and pump messages end here. One at a time.
class UserCalls
{
public:
    UserCalls();
    UserCalls(const UserCalls&) = delete;
    UserCalls& operator=(const UserCalls&) = delete;
    ~UserCalls();

    // Names of the calls, in order.
    std::vector<std::string> m_lstCalls;
    // Whether this event was signalled when each of them was made; nothing without an event.
    HANDLE m_hWatched = nullptr;
    std::vector<bool> m_lstWasSignalled;

    WNDCLASSEXW m_class{};
    std::wstring m_strClass; // of RegisterClassExW
    CREATESTRUCTW m_window{};
    std::wstring m_strWindowClass;
    std::wstring m_strWindowTitle;
    HWND m_hwndCreated = reinterpret_cast<HWND>(0x1234); // what CreateWindowExW answers
    HWND m_hwndSession = nullptr;
    DWORD m_dwSessionFlags = 99;
    HWND m_hwndShown = nullptr;
    int m_nShow = -1;
    HWND m_hwndUpdated = nullptr;
    std::vector<HDEVNOTIFY> m_lstUnregistered;
    int m_nQuitCode = -1;
    MSG m_default{}; // what DefWindowProcW was given
    LRESULT m_lrDefault = 0;
    const SECURITY_ATTRIBUTES* m_pMutexSecurity = reinterpret_cast<const SECURITY_ATTRIBUTES*>(0x99);
    BOOL m_bOwned = FALSE;
    std::wstring m_strMutex;
    DWORD m_dwMutexError = ERROR_SUCCESS;

    struct Received
    {
        BOOL m_nResult; // of GetMessageW
        MSG m_message;
        BOOL m_bAccelerator = FALSE;
    };
    std::vector<Received> m_lstMessages;
    std::size_t m_nReceived = 0;
    // What each GetMessageW was told to leave out.
    struct Filter
    {
        HWND m_hwnd;
        UINT m_first;
        UINT m_last;
        bool operator==(const Filter&) const = default;
    };
    std::vector<Filter> m_lstFilters;
    std::vector<HWND> m_lstAcceleratorWindows;
    HACCEL m_hAccelerators = nullptr;
    // Copies of the messages that were passed on.
    std::vector<MSG> m_lstOffered;    // to TranslateAcceleratorW
    std::vector<MSG> m_lstTranslated; // by TranslateMessage
    std::vector<MSG> m_lstDispatched;

private:
    struct Redirections;
    std::unique_ptr<Redirections> m_pRedirections;
};
} // namespace Tests
