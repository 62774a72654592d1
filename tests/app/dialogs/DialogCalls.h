#pragma once

#include "simulator/redirect/ImportRedirection.h"

#include <windows.h>

#include <string>
#include <vector>

namespace Tests
{
// What dialogs and links ask of the window system, noted for the life of the object; message boxes are answered with OK
// instead of shown. One at a time; calls may come from any thread.
class DialogCalls
{
public:
    struct Box
    {
        HWND m_hwndOwner;
        std::wstring m_strText;
        std::wstring m_strCaption;
        UINT m_nType;
    };

    DialogCalls();
    DialogCalls(const DialogCalls&) = delete;
    DialogCalls& operator=(const DialogCalls&) = delete;

    [[nodiscard]] std::vector<Box> Boxes() const;
    // Texts of the message boxes.
    [[nodiscard]] std::vector<std::wstring> BoxTexts() const;
    // Dialogs that were brought to the front.
    [[nodiscard]] std::vector<HWND> Foreground() const;
    // Results that dialogs were ended with.
    [[nodiscard]] std::vector<INT_PTR> Ends() const;
    // Forgets all of them.
    static void Clear();

private:
    Simulator::Redirection<decltype(MessageBoxW)> m_box;
    Simulator::Redirection<decltype(SetForegroundWindow)> m_foreground;
    Simulator::Redirection<decltype(EndDialog)> m_end;
};

// Dialogs that would have been opened, for the life of the object; they are noted and end at once. One at a time; calls
// may come from any thread.
class NotedDialogs
{
public:
    struct Dialog
    {
        HINSTANCE m_hModule;
        UINT m_nTemplate;
        HWND m_hwndOwner;
        DLGPROC m_pfnProcedure;
        std::wstring m_strText;
        int m_nKind;
    };

    // What DialogBoxParamW answers.
    explicit NotedDialogs(INT_PTR result = 0);
    NotedDialogs(const NotedDialogs&) = delete;
    NotedDialogs& operator=(const NotedDialogs&) = delete;

    [[nodiscard]] std::vector<Dialog> All() const;
    [[nodiscard]] std::size_t Count() const { return All().size(); }

private:
    Simulator::Redirection<decltype(DialogBoxParamW)> m_redirection;
};

// A string of the program, up to 4,095 characters.
[[nodiscard]] std::wstring ProgramString(UINT id);
} // namespace Tests
