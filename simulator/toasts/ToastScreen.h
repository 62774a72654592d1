#pragma once

#include <windows.h>

#include <map>
#include <memory>
#include <mutex>
#include <string>

namespace Simulator
{
class ToastWindow;

// The thread that owns the toasts' windows and watches their time-outs. It shows what ToastDesktop says is visible and
// decides nothing itself. Started with the first toast; one per process, never freed; any thread may call.
class ToastScreen
{
public:
    static ToastScreen& Instance();

    // Soon the screen will be as the desktop is now.
    void Refresh();
    // The same, and returns when it is done. No effect before the first toast.
    void Settle();

    // number 0: all toasts as they are stacked. E_FAIL when there is no window to take a picture of.
    [[nodiscard]] HRESULT Picture(unsigned number, const std::wstring& path);
    [[nodiscard]] HRESULT Place(unsigned number, RECT& place);

private:
    struct Request;

    ToastScreen();

    static DWORD WINAPI ThreadMain(void* screen);
    static LRESULT CALLBACK ControllerProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    // The functions below run on the screen's thread.
    void Run();
    void Update();
    void EndOverdue();
    void Stack();
    void Serve(Request& request);
    [[nodiscard]] HRESULT Ask(Request& request);

    std::mutex m_lock;
    HANDLE m_hReady; // manual-reset event, set when the controller exists
    bool m_bStarted = false;
    HWND m_hwndController = nullptr;
    std::map<unsigned, std::unique_ptr<ToastWindow>> m_mapWindows; // by number; only the screen's thread
};
} // namespace Simulator
