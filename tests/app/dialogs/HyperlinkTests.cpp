#include "app/dialogs/Hyperlink.h"

#include "simulator/redirect/ImportRedirection.h"
#include "tests/app/dialogs/LinkControl.h"

#include <gmock/gmock.h>

#include <limits>

using testing::ElementsAre;
using testing::IsEmpty;
using Tests::LinkControl;

namespace
{
using HyperlinkTest = LinkControl;

// For WM_LBUTTONDOWN.
constexpr LPARAM g_inside = MAKELPARAM(5, 5);

int WINAPI FillString(HINSTANCE, UINT, LPWSTR buffer, int capacity)
{
    const auto length = static_cast<std::size_t>(capacity - 1);
    std::char_traits<wchar_t>::assign(buffer, length, L'x');
    buffer[length] = L'\0';
    return capacity - 1;
}

int WINAPI NoString(HINSTANCE, UINT, LPWSTR, int)
{
    return 0;
}
} // namespace

TEST_F(HyperlinkTest, Conversion_SetsPropertiesProcedureAndStyle)
{
    EXPECT_EQ(ConvertStaticToHyperlink(m_hwnd, m_parameters), 1);
    EXPECT_EQ(Property(Tests::LinkProcedure), reinterpret_cast<HANDLE>(&Noting));
    EXPECT_EQ(Property(Tests::LinkFont), m_hFont);
    EXPECT_EQ(Property(Tests::LinkMark), reinterpret_cast<HANDLE>(1));
    EXPECT_EQ(ProcedureOf(m_hwnd), &HyperlinkProc);
    EXPECT_EQ(GetWindowLongPtrW(m_hwnd, GWL_STYLE), WS_CHILD | WS_VISIBLE | SS_NOPREFIX | SS_NOTIFY);
    EXPECT_EQ(Font(), m_hFont);
}

TEST_F(HyperlinkTest, Conversion_UnderlinedFontDiffersInTheLineAlone)
{
    Convert();
    LOGFONTW plain{};
    LOGFONTW underlined{};
    ASSERT_NE(GetObjectW(m_hFont, sizeof(plain), &plain), 0);
    ASSERT_NE(GetObjectW(UnderlinedFont(), sizeof(underlined), &underlined), 0);
    EXPECT_EQ(underlined.lfUnderline, TRUE);
    underlined.lfUnderline = FALSE;
    EXPECT_EQ(memcmp(&plain, &underlined, offsetof(LOGFONTW, lfFaceName)), 0);
    EXPECT_STREQ(plain.lfFaceName, underlined.lfFaceName);
}

TEST_F(HyperlinkTest, Conversion_TextIsTheSupportPagesAddress)
{
    Convert();
    EXPECT_EQ(TextOf(m_hwnd), Tests::ProgramString(553));
    EXPECT_THAT(TextOf(m_hwnd), testing::StartsWith(L"https://"));
}

TEST_F(HyperlinkTest, Conversion_ParentIsRecordedAndKeepsItsProcedure)
{
    const WNDPROC before = ProcedureOf(m_hwndParent);
    Convert();
    EXPECT_EQ(GetPropW(m_hwndParent, Tests::LinkProcedure), reinterpret_cast<HANDLE>(before));
    EXPECT_EQ(ProcedureOf(m_hwndParent), before);
    EXPECT_NE(before, &HyperlinkParentProc);
    EXPECT_EQ(GetPropW(m_hwndParent, Tests::LinkMark), nullptr);
}

TEST_F(HyperlinkTest, Conversion_ParentThatColoursItsLinks_IsNotRecorded)
{
    const WNDPROC before = ProcedureOf(m_hwndParent);
    SetPropW(m_hwndParent, Tests::LinkProcedure, reinterpret_cast<HANDLE>(before));
    SetWindowLongPtrW(m_hwndParent, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&HyperlinkParentProc));
    Convert();
    EXPECT_EQ(GetPropW(m_hwndParent, Tests::LinkProcedure), reinterpret_cast<HANDLE>(before));
    EXPECT_EQ(ProcedureOf(m_hwndParent), &HyperlinkParentProc);
    SetWindowLongPtrW(m_hwndParent, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(before));
}

TEST_F(HyperlinkTest, Conversion_WithoutAParent_KeepsTheText)
{
    const HWND alone =
        CreateWindowExW(0, L"STATIC", L"Click Here", WS_POPUP, 0, 0, 9, 9, nullptr, nullptr, nullptr, nullptr);
    ASSERT_EQ(GetParent(alone), nullptr);
    EXPECT_EQ(ConvertStaticToHyperlink(alone, m_parameters), 1);
    EXPECT_EQ(TextOf(alone), L"Click Here");
    EXPECT_EQ(ProcedureOf(alone), &HyperlinkProc);
    EXPECT_NE(GetWindowLongPtrW(alone, GWL_STYLE) & SS_NOTIFY, 0);
    DestroyWindow(alone);
}

TEST_F(HyperlinkTest, Conversion_WithoutAControl_DoesNothing)
{
    EXPECT_EQ(ConvertStaticToHyperlink(nullptr, m_parameters), 1);
    EXPECT_EQ(GetPropW(m_hwndParent, Tests::LinkProcedure), nullptr);
    EXPECT_EQ(TextOf(m_hwnd), L"Click Here");
}

TEST_F(HyperlinkTest, Conversion_WithoutTheString_EmptiesTheText)
{
    const Simulator::Redirection<decltype(LoadStringW)> none("LoadStringW", &NoString);
    Convert();
    EXPECT_EQ(TextOf(m_hwnd), L"");
}

TEST_F(HyperlinkTest, Conversion_LongestString_IsTheTextAsAWhole)
{
    const Simulator::Redirection<decltype(LoadStringW)> fill("LoadStringW", &FillString);
    Convert();
    EXPECT_EQ(TextOf(m_hwnd), std::wstring(2047, L'x'));
}

TEST_F(HyperlinkTest, Messages_GoOnToThePreviousProcedureWithItsAnswer)
{
    Convert();
    EXPECT_EQ(SendMessageW(m_hwnd, WM_APP + 5, 6, 7), 4711);
    ASSERT_EQ(s_lstReached.size(), 1u);
    EXPECT_EQ(s_lstReached[0].hwnd, m_hwnd);
    EXPECT_EQ(s_lstReached[0].wParam, 6u);
    EXPECT_EQ(s_lstReached[0].lParam, 7);
    for (const UINT message : {WM_NULL, WM_MOUSEMOVE, WM_LBUTTONDOWN, WM_LBUTTONUP, WM_KEYDOWN, WM_ENABLE, WM_NCHITTEST,
                               WM_TIMER, WM_USER + 1})
    {
        s_lstReached.clear();
        SendMessageW(m_hwnd, message, 0, g_inside);
        EXPECT_EQ(Reached(message), 1u) << message;
    }
    ReleaseCapture();
}

TEST_F(HyperlinkTest, Click_ShowsTheMessageOfTheLinkKind)
{
    Convert();
    const std::pair<int, UINT> strings[] = {{0, 530}, {1, 531}, {2, 508}};
    for (const auto& [kind, id] : strings)
    {
        g_nLinkKind = kind;
        SendMessageW(m_hwnd, WM_LBUTTONDOWN, MK_LBUTTON, g_inside);
        const auto boxes = m_calls.Boxes();
        ASSERT_FALSE(boxes.empty());
        EXPECT_EQ(boxes.back().m_hwndOwner, nullptr);
        EXPECT_EQ(boxes.back().m_strText, Tests::ProgramString(id));
        EXPECT_EQ(boxes.back().m_strCaption, L"");
        EXPECT_EQ(boxes.back().m_nType, static_cast<UINT>(MB_OK));
    }
    EXPECT_EQ(m_calls.Boxes().size(), 3u);
    EXPECT_EQ(Reached(WM_LBUTTONDOWN), 3u);
}

TEST_F(HyperlinkTest, Click_OtherLinkKinds_ShowNothing)
{
    Convert();
    for (const int kind : {-1, 3, 4, 5, 6, 530, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()})
    {
        g_nLinkKind = kind;
        SendMessageW(m_hwnd, WM_LBUTTONDOWN, MK_LBUTTON, g_inside);
    }
    EXPECT_THAT(m_calls.Boxes(), IsEmpty());
    EXPECT_EQ(Reached(WM_LBUTTONDOWN), 8u);
}

TEST_F(HyperlinkTest, Click_OtherButtonsAndLettingGo_ShowNothing)
{
    Convert();
    g_nLinkKind = 0;
    for (const UINT message : {WM_LBUTTONUP, WM_LBUTTONDBLCLK, WM_RBUTTONDOWN, WM_MBUTTONDOWN, WM_NCLBUTTONDOWN})
        SendMessageW(m_hwnd, message, 0, g_inside);
    EXPECT_THAT(m_calls.Boxes(), IsEmpty());
}

TEST_F(HyperlinkTest, Click_MessageComesBeforeTheControlSeesTheClick)
{
    Convert();
    g_nLinkKind = 1;
    std::vector<std::size_t> boxesBefore;
    s_onMessage = [&](UINT message)
    {
        if (message == WM_LBUTTONDOWN)
            boxesBefore.push_back(m_calls.Boxes().size());
    };
    SendMessageW(m_hwnd, WM_LBUTTONDOWN, MK_LBUTTON, g_inside);
    EXPECT_THAT(boxesBefore, ElementsAre(1));
}

TEST_F(HyperlinkTest, Click_LongestString_IsShownAsAWhole)
{
    Convert();
    g_nLinkKind = 2;
    const Simulator::Redirection<decltype(LoadStringW)> fill("LoadStringW", &FillString);
    SendMessageW(m_hwnd, WM_LBUTTONDOWN, MK_LBUTTON, g_inside);
    EXPECT_THAT(m_calls.BoxTexts(), ElementsAre(std::wstring(2047, L'x')));
}

TEST_F(HyperlinkTest, Click_WithoutTheString_ShowsAnEmptyMessage)
{
    Convert();
    g_nLinkKind = 2;
    const Simulator::Redirection<decltype(LoadStringW)> none("LoadStringW", &NoString);
    SendMessageW(m_hwnd, WM_LBUTTONDOWN, MK_LBUTTON, g_inside);
    EXPECT_THAT(m_calls.BoxTexts(), ElementsAre(L""));
}

TEST_F(HyperlinkTest, End_RemovesPropertiesRestoresTheFontAndDeletesTheUnderlinedOne)
{
    Convert();
    const HFONT underlined = UnderlinedFont();
    SendMessageW(m_hwnd, WM_MOUSEMOVE, 0, g_inside);
    ASSERT_EQ(Font(), underlined);
    s_lstReached.clear();
    std::size_t looked = 0;
    s_onMessage = [&](UINT message)
    {
        if (message != WM_DESTROY)
            return;
        ++looked;
        for (const wchar_t* const name :
             {Tests::LinkProcedure, Tests::LinkFont, Tests::LinkUnderlinedFont, Tests::LinkMark})
            EXPECT_EQ(Property(name), nullptr) << name;
        EXPECT_EQ(Font(), m_hFont);
        EXPECT_EQ(GetObjectType(underlined), 0u);
    };
    Destroy();
    EXPECT_EQ(looked, 1u);
    EXPECT_EQ(Reached(WM_DESTROY), 1u);
    EXPECT_EQ(Reached(WM_NCDESTROY), 1u);
    EXPECT_EQ(GetObjectType(m_hFont), static_cast<DWORD>(OBJ_FONT));
}
