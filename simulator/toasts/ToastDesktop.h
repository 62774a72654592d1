#pragma once

#include "simulator/toasts/ToastContent.h"
#include "simulator/toasts/ToastInterfaces.h"

#include <windows.h>

namespace Simulator
{
// One toast that is on the screen.
struct VisibleToast
{
    unsigned m_nNumber; // 1, 2, 3 ... in the order of showing
    ToastContent m_content;
    ULONGLONG m_ullDue; // GetTickCount64 at which it times out; 0: never
};

// The corner of the screen where toasts appear, and everything a person, the clock or Windows may do to them. A toast
// leaves it by exactly one of click, dismissal, time-out, Hide and failure; each is journalled (kind "toast") and
// raises the toast's events on the event pool. One per process, never freed; any thread.
class ToastDesktop
{
public:
    static ToastDesktop& Instance();

    // Facts: /toasts/timeout-ms (default 7000, 0 never), /toasts/draw (default true: a real window as well),
    // /toasts/failure ("0x803E0111": the toast is never seen and raises Failed with that code).
    void Show(const Abi::IToastNotificationPtr& toast, ToastContent content);
    void Hide(Abi::IToastNotification* toast);

    // HRESULT_FROM_WIN32(ERROR_NOT_FOUND) for a number that is not on the screen (any more).
    [[nodiscard]] HRESULT Click(unsigned number);
    [[nodiscard]] HRESULT Dismiss(unsigned number);
    [[nodiscard]] HRESULT TimeOut(unsigned number);
    [[nodiscard]] HRESULT Fail(unsigned number, HRESULT error);

    // Writes a PNG file of the toast's window, or of all of them as they are stacked; E_FAIL when it has none
    // (/toasts/draw is false, or there is no screen).
    [[nodiscard]] HRESULT Picture(unsigned number, const std::wstring& path);
    [[nodiscard]] HRESULT PictureAll(const std::wstring& path);
    // Where the toast's window is on the screen; E_FAIL when it has none.
    [[nodiscard]] HRESULT Place(unsigned number, RECT& place);

    [[nodiscard]] std::size_t VisibleCount() const;
    [[nodiscard]] std::vector<unsigned> Visible() const;
    [[nodiscard]] std::vector<VisibleToast> Snapshot() const;

    // Returns when every event raised so far has been handled. Not for a handler.
    void WaitForEvents();
    // Takes every toast off the screen without an event, waits for handlers, and numbers from 1 again.
    void Reset();

private:
    struct Entry
    {
        VisibleToast m_visible;
        Abi::IToastNotificationPtr m_spToast;
    };

    ToastDesktop() = default;

    [[nodiscard]] HRESULT Take(unsigned number, Entry& entry);
    [[nodiscard]] HRESULT EndByDismissal(unsigned number, INT32 reason);

    mutable std::mutex m_lock;
    std::vector<Entry> m_lstEntries; // oldest first
    unsigned m_nLast = 0;
};
} // namespace Simulator
