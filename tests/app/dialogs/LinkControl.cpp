#include "tests/app/dialogs/LinkControl.h"

#include <algorithm>
#include <iterator>

namespace Tests
{
LinkControl::LinkControl()
{
    g_nLinkKind = -1;
    m_hwndParent = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 50, 50, 300, 100, nullptr, nullptr, nullptr, nullptr);
    m_hwnd = CreateWindowExW(0, L"STATIC", L"Click Here", WS_CHILD | WS_VISIBLE | SS_NOPREFIX, 10, 30, 120, 20,
                             m_hwndParent, reinterpret_cast<HMENU>(140), nullptr, nullptr);
    m_hFont = CreateFontW(-13, 0, 0, 0, FW_SEMIBOLD, TRUE, FALSE, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS,
                          CLIP_DEFAULT_PRECIS, DEFAULT_QUALITY, DEFAULT_PITCH, L"Tahoma");
    SendMessageW(m_hwnd, WM_SETFONT, reinterpret_cast<WPARAM>(m_hFont), FALSE);
    s_pfnStatic = ProcedureOf(m_hwnd);
    SetWindowLongPtrW(m_hwnd, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Noting));
    s_onMessage = nullptr;
    s_lstReached.clear();
}

LinkControl::~LinkControl()
{
    s_onMessage = nullptr;
    DestroyWindow(m_hwndParent);
    DeleteObject(m_hFont);
}

void LinkControl::Convert()
{
    EXPECT_EQ(ConvertStaticToHyperlink(m_hwnd, m_parameters), 1);
    s_lstReached.clear();
}

void LinkControl::Destroy()
{
    DestroyWindow(m_hwnd);
}

WNDPROC LinkControl::ProcedureOf(HWND window)
{
    return reinterpret_cast<WNDPROC>(GetWindowLongPtrW(window, GWLP_WNDPROC));
}

std::wstring LinkControl::TextOf(HWND window)
{
    wchar_t text[4096]{};
    GetWindowTextW(window, text, static_cast<int>(std::size(text)));
    return text;
}

HFONT LinkControl::Font() const
{
    return reinterpret_cast<HFONT>(SendMessageW(m_hwnd, WM_GETFONT, 0, 0));
}

std::size_t LinkControl::Reached(UINT message)
{
    return static_cast<std::size_t>(std::ranges::count(s_lstReached, message, &MSG::message));
}

LRESULT CALLBACK LinkControl::Noting(HWND control, UINT message, WPARAM wParam, LPARAM lParam)
{
    s_lstReached.push_back({control, message, wParam, lParam, 0, {}});
    if (s_onMessage)
        s_onMessage(message);
    if (message == WM_APP + 5)
        return 4711;
    return CallWindowProcW(s_pfnStatic, control, message, wParam, lParam);
}
} // namespace Tests
