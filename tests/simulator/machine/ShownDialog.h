#pragma once

#include "simulator/machine/DialogDesktop.h"

#include <windows.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

// What a dialog of a test does with a message; false leaves it to the dialog below. On the dialog's thread.
using DialogBehaviour = std::function<bool(HWND dialog, UINT message, WPARAM wParam)>;

// Show one of the program's dialogs, or a message box, on the calling thread, under the eyes of the desktop. The dialog
// has the message "message" and ends at every command and at its cross where the behaviour does not say otherwise.
void ShowDialog(UINT templateId, const DialogBehaviour& behaviour = {});
void ShowBox(const std::wstring& text, const std::wstring& title, UINT type = MB_OK);

// What is shown on a thread of its own, which is closed in the end if nobody has done so.
class ShownDialog
{
public:
    // Returns when it can be answered.
    explicit ShownDialog(std::function<void()> show);
    explicit ShownDialog(UINT templateId, DialogBehaviour behaviour = {});
    ShownDialog(const ShownDialog&) = delete;
    ShownDialog& operator=(const ShownDialog&) = delete;
    ~ShownDialog();

    [[nodiscard]] unsigned Number() const noexcept { return m_nNumber; }
    [[nodiscard]] nlohmann::json Describe() const { return Simulator::DialogDesktop::Instance().Describe(m_nNumber); }
    void Answer(Simulator::DialogAnswer answer) const;
    [[nodiscard]] bool IsOpen() const;

private:
    unsigned m_nNumber = 0;
    std::thread m_thread;
};

// The journal's entries about dialogs: "opened 1", "answered 1 ok", "closed 1".
[[nodiscard]] std::vector<std::string> DialogEntries();
