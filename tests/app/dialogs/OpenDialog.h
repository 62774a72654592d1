#pragma once

#include "app/dialogs/MessageKind.h"
#include "shared/OwnerTypes.h"

#include <windows.h>

#include <functional>
#include <string>
#include <thread>

namespace Tests
{
// A modal dialog on a thread of its own, as the agent's handlers show theirs, and what a person at the display does
// with it. Questions are asked from the thread that made this object.
class OpenDialog
{
public:
    // Runs what opens a dialog and returns when that is closed. Waits until the dialog is shown, or until it turns
    // out that there is none.
    explicit OpenDialog(std::function<void()> show);
    // A dialog of the program, opened as its callers do.
    OpenDialog(UINT templateId, DLGPROC procedure, const MessageParameters* parameters);
    OpenDialog(const OpenDialog&) = delete;
    OpenDialog& operator=(const OpenDialog&) = delete;
    // Closes the dialog if that has not happened.
    ~OpenDialog();

    // Null when no dialog was opened.
    [[nodiscard]] HWND Window() const noexcept { return m_hwnd; }
    [[nodiscard]] HWND Item(int id) const { return GetDlgItem(m_hwnd, id); }
    [[nodiscard]] std::wstring Text(int id) const;
    // The icon that control 135 shows.
    [[nodiscard]] HICON KindIcon() const;

    // Calls the function on the dialog's thread, between two messages of the dialog.
    void Run(const std::function<void()>& action) const;
    // Presses and lets go a key.
    void Press(WPARAM key) const;
    // A click of the left button into the middle of a control, without moving the pointer there.
    void Click(int id) const;

    // True when the dialog ended and its thread with it, at the latest after some seconds.
    [[nodiscard]] bool HasEnded() const;
    // Closes it by its close button and waits for the thread.
    void Close();
    // What DialogBoxParamW returned; for a dialog of the second constructor that has ended.
    [[nodiscard]] INT_PTR Result() const noexcept { return m_nResult; }

private:
    static LRESULT CALLBACK OnCall(int code, WPARAM wParam, LPARAM lParam);
    static LRESULT CALLBACK OnReturn(int code, WPARAM wParam, LPARAM lParam);
    void WaitUntilShown() const;
    void RunThread(const std::function<void()>& show);

    inline static thread_local OpenDialog* t_pCurrent = nullptr;

    // Manual-reset events.
    Orvik::Shared::UniqueHandle m_hOpenOrEnded;
    Orvik::Shared::UniqueHandle m_hEnded;
    HWND m_hwnd = nullptr;
    INT_PTR m_nResult = -99;
    std::thread m_thread;
};
} // namespace Tests
