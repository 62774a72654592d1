#include "tests/app/dialogs/DialogCalls.h"

#include "app/dialogs/MessageKind.h"

#include <algorithm>
#include <iterator>
#include <mutex>

namespace Tests
{
namespace
{
std::mutex g_lock;
std::vector<DialogCalls::Box> g_lstBoxes;
std::vector<HWND> g_lstForeground;
std::vector<INT_PTR> g_lstEnds;
std::vector<NotedDialogs::Dialog> g_lstDialogs;
INT_PTR g_nDialogResult = 0;
decltype(SetForegroundWindow)* g_pfnSetForegroundWindow = nullptr;
decltype(EndDialog)* g_pfnEndDialog = nullptr;

int WINAPI NotedMessageBoxW(HWND owner, LPCWSTR text, LPCWSTR caption, UINT type)
{
    const std::lock_guard lock(g_lock);
    g_lstBoxes.push_back({owner, text, caption, type});
    return IDOK;
}

WINBOOL WINAPI NotedSetForegroundWindow(HWND hwnd)
{
    {
        const std::lock_guard lock(g_lock);
        g_lstForeground.push_back(hwnd);
    }
    return g_pfnSetForegroundWindow(hwnd);
}

WINBOOL WINAPI NotedEndDialog(HWND dialog, INT_PTR result)
{
    {
        const std::lock_guard lock(g_lock);
        g_lstEnds.push_back(result);
    }
    return g_pfnEndDialog(dialog, result);
}

INT_PTR WINAPI NotedDialogBoxParamW(HINSTANCE module, LPCWSTR name, HWND owner, DLGPROC procedure, LPARAM parameter)
{
    const auto& parameters = *reinterpret_cast<const MessageParameters*>(parameter);
    const std::lock_guard lock(g_lock);
    g_lstDialogs.push_back({module, LOWORD(reinterpret_cast<ULONG_PTR>(name)), owner, procedure, parameters.m_pText,
                            static_cast<int>(parameters.m_kind)});
    return g_nDialogResult;
}

template <class Container>
Container Copy(const Container& container)
{
    const std::lock_guard lock(g_lock);
    return container;
}
} // namespace

DialogCalls::DialogCalls()
    : m_box("MessageBoxW", &NotedMessageBoxW), m_foreground("SetForegroundWindow", &NotedSetForegroundWindow),
      m_end("EndDialog", &NotedEndDialog)
{
    g_pfnSetForegroundWindow = m_foreground.Original();
    g_pfnEndDialog = m_end.Original();
    Clear();
}

std::vector<DialogCalls::Box> DialogCalls::Boxes() const
{
    return Copy(g_lstBoxes);
}

std::vector<std::wstring> DialogCalls::BoxTexts() const
{
    std::vector<std::wstring> texts;
    std::ranges::transform(Boxes(), std::back_inserter(texts), &Box::m_strText);
    return texts;
}

std::vector<HWND> DialogCalls::Foreground() const
{
    return Copy(g_lstForeground);
}

std::vector<INT_PTR> DialogCalls::Ends() const
{
    return Copy(g_lstEnds);
}

void DialogCalls::Clear()
{
    const std::lock_guard lock(g_lock);
    g_lstBoxes.clear();
    g_lstForeground.clear();
    g_lstEnds.clear();
}

NotedDialogs::NotedDialogs(INT_PTR result) : m_redirection("DialogBoxParamW", &NotedDialogBoxParamW)
{
    g_nDialogResult = result;
    g_lstDialogs.clear();
}

std::vector<NotedDialogs::Dialog> NotedDialogs::All() const
{
    return Copy(g_lstDialogs);
}

std::wstring ProgramString(UINT id)
{
    wchar_t text[4096]{};
    LoadStringW(GetModuleHandleW(nullptr), id, text, static_cast<int>(std::size(text)));
    return text;
}
} // namespace Tests
