#pragma once

#include <windows.h>

#include <chrono>
#include <condition_variable>
#include <list>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace Simulator
{
// What a person can do to a dialog.
enum class DialogAnswer
{
    Ok,    // click the button
    Close, // click the cross of the window
    Esc,   // press the key
    Check, // click the check box
    Link   // click the link
};

// The modal dialogs and message boxes of this process, and everything that a person may do to them. Each is journalled
// (kind "dialog") when it can be answered ("opened", with what DialogReading.h tells of it, its "number" and "thread",
// the number of the agent's thread that shows it), when a person does something ("answered", "with") and when the call
// that shows it returns ("closed"). One per process, never freed; any thread.
class DialogDesktop
{
public:
    static DialogDesktop& Instance();

    // Calls what shows one modal dialog or message box on this thread, and gives back what it gave back.
    template <class Function>
    auto Watch(Function show)
    {
        const Watched watched(*this);
        return show();
    }

    // Numbers of the open ones, 1, 2, 3 ... in the order of opening; a process that was started anew begins again.
    [[nodiscard]] std::vector<unsigned> Open() const;
    // All below throw std::runtime_error with a sentence when no dialog of that number is open.
    // What it shows now, as in its entry "opened".
    [[nodiscard]] nlohmann::json Describe(unsigned number);
    // Returns when the dialog's thread has done all that the answer makes it do at once: the dialog is closed, or
    // another one is open above it, or it waits again. Throws when it has nothing to answer so, or does not return in
    // that time.
    void Answer(unsigned number, DialogAnswer answer, std::chrono::milliseconds limit);
    // Writes a PNG file of the dialog with its frame; E_FAIL when there is no screen.
    [[nodiscard]] HRESULT Picture(unsigned number, const std::wstring& path);

private:
    struct Request;
    struct Hooks;

    struct Dialog
    {
        DWORD m_dwThreadId;
        HWND m_hwnd = nullptr;
        unsigned m_nNumber = 0;  // 0 while it cannot yet be answered
        unsigned m_nHandled = 0; // the last fence that its thread has reached
    };

    class Watched
    {
    public:
        explicit Watched(DialogDesktop& desktop);
        Watched(const Watched&) = delete;
        Watched& operator=(const Watched&) = delete;
        ~Watched();

    private:
        DialogDesktop& m_desktop;
        std::list<Dialog>::iterator m_dialog;
        std::unique_ptr<Hooks> m_pHooks; // of the thread's outermost dialog alone
    };

    DialogDesktop() = default;

    static LRESULT CALLBACK AfterSent(int code, WPARAM wParam, LPARAM lParam);
    static LRESULT CALLBACK BeforeDispatch(int code, WPARAM wParam, LPARAM lParam);

    // The functions below run on a dialog's thread.
    void OnShown(HWND window);
    void OnReady(HWND window);
    void OnFence(const MSG& message);
    static void Serve(HWND window, Request& request);

    [[nodiscard]] HWND WindowOf(unsigned number) const;
    [[nodiscard]] bool IsHandled(unsigned number, unsigned fence) const;
    void Ask(unsigned number, Request& request);

    mutable std::mutex m_lock;
    std::condition_variable m_changed;
    std::list<Dialog> m_lstDialogs; // oldest call first
    unsigned m_nLast = 0;
    unsigned m_nLastFence = 0;
};
} // namespace Simulator
