#pragma once

#include "app/dialogs/Hyperlink.h"
#include "tests/app/dialogs/DialogCalls.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

namespace Tests
{
// Names of a link's properties.
inline constexpr const wchar_t* LinkProcedure = L"_Hyperlink_Original_Proc_";
inline constexpr const wchar_t* LinkFont = L"_Hyperlink_Original_Font_";
inline constexpr const wchar_t* LinkUnderlinedFont = L"_Hyperlink_Underline_Font_";
inline constexpr const wchar_t* LinkMark = L"_Hyperlink_From_Static_";

// A static control of 120 times 20 pixels with a font of its own, in a window of this thread, whose window procedure
// notes what reaches it. Nothing is a link yet.
class LinkControl : public testing::Test
{
protected:
    LinkControl();
    ~LinkControl() override;

    // Makes it a link and forgets what has been noted.
    void Convert();
    // Destroys the control.
    void Destroy();

    [[nodiscard]] static WNDPROC ProcedureOf(HWND window);
    [[nodiscard]] static std::wstring TextOf(HWND window);
    [[nodiscard]] HANDLE Property(const wchar_t* name) const { return GetPropW(m_hwnd, name); }
    [[nodiscard]] HFONT Font() const;
    // The underlined font that the link owns.
    [[nodiscard]] HFONT UnderlinedFont() const { return static_cast<HFONT>(Property(LinkUnderlinedFont)); }
    // The messages among these that reached the previous procedure.
    [[nodiscard]] static std::size_t Reached(UINT message);

    // Procedure of the control before it is a link.
    static LRESULT CALLBACK Noting(HWND control, UINT message, WPARAM wParam, LPARAM lParam);

    // Called by that procedure with each message.
    static inline std::function<void(UINT)> s_onMessage{};
    static inline std::vector<MSG> s_lstReached{};

    HWND m_hwndParent = nullptr;
    HWND m_hwnd = nullptr;
    HFONT m_hFont = nullptr;
    DialogCalls m_calls;
    const MessageParameters m_parameters{L"Save your work.", MessageKind::Recovered};

private:
    static inline WNDPROC s_pfnStatic = nullptr;
};
} // namespace Tests
