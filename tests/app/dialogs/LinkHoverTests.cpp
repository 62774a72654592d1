#include "app/dialogs/Hyperlink.h"

#include "simulator/redirect/ImportRedirection.h"
#include "tests/app/dialogs/LinkControl.h"

#include <gmock/gmock.h>

#include <algorithm>

using Simulator::Redirection;
using testing::ElementsAre;
using testing::IsEmpty;
using Tests::LinkControl;

// The pointer over a link: font, capture and cursor.
namespace
{
struct Invalidated
{
    HWND m_hwnd;
    bool m_bIsWhole;

    bool operator==(const Invalidated&) const = default;
};

std::vector<Invalidated> g_lstInvalidated;
std::vector<LPCWSTR> g_lstLoadedCursors;
std::vector<LPCWSTR> g_lstMissingCursors;
decltype(LoadCursorW)* g_pfnLoadCursor = nullptr;

WINBOOL WINAPI NotedInvalidateRect(HWND hwnd, const RECT* area, WINBOOL)
{
    g_lstInvalidated.push_back({hwnd, area == nullptr});
    return TRUE;
}

HCURSOR WINAPI NotedLoadCursorW(HINSTANCE module, LPCWSTR name)
{
    EXPECT_EQ(module, nullptr);
    g_lstLoadedCursors.push_back(name);
    return std::ranges::count(g_lstMissingCursors, name) != 0 ? nullptr : g_pfnLoadCursor(module, name);
}

class LinkHoverTest : public LinkControl
{
protected:
    LinkHoverTest()
    {
        g_lstInvalidated.clear();
        g_lstLoadedCursors.clear();
        g_lstMissingCursors.clear();
        g_pfnLoadCursor = m_loadCursor.Original();
        Convert();
    }
    ~LinkHoverTest() override { ReleaseCapture(); }

    // The pointer at a place of the control.
    void Move(int x, int y) { SendMessageW(m_hwnd, WM_MOUSEMOVE, 0, MAKELPARAM(x, y)); }

    void ExpectUnderlined(bool isUnderlined)
    {
        EXPECT_EQ(Font(), isUnderlined ? UnderlinedFont() : m_hFont);
        EXPECT_EQ(GetCapture(), isUnderlined ? m_hwnd : nullptr);
    }

    // The cursor after a WM_SETCURSOR that came to no other procedure.
    HCURSOR CursorOverTheLink()
    {
        SetCursor(g_pfnLoadCursor(nullptr, IDC_WAIT));
        s_lstReached.clear();
        EXPECT_EQ(
            SendMessageW(m_hwnd, WM_SETCURSOR, reinterpret_cast<WPARAM>(m_hwnd), MAKELPARAM(HTCLIENT, WM_MOUSEMOVE)),
            TRUE);
        EXPECT_THAT(s_lstReached, IsEmpty());
        return GetCursor();
    }

    Redirection<decltype(InvalidateRect)> m_invalidate{"InvalidateRect", &NotedInvalidateRect};
    Redirection<decltype(LoadCursorW)> m_loadCursor{"LoadCursorW", &NotedLoadCursorW};
};
} // namespace

TEST_F(LinkHoverTest, PointerComes_UnderlinesAndTakesTheCapture)
{
    ExpectUnderlined(false);
    Move(5, 5);
    ExpectUnderlined(true);
    EXPECT_THAT(g_lstInvalidated, ElementsAre(Invalidated{m_hwnd, true}));
}

TEST_F(LinkHoverTest, PointerStays_NothingChanges)
{
    Move(5, 5);
    s_lstReached.clear();
    g_lstInvalidated.clear();
    for (const int x : {0, 6, 119})
        Move(x, 5);
    Move(5, 0);
    Move(5, 19);
    ExpectUnderlined(true);
    EXPECT_THAT(g_lstInvalidated, IsEmpty());
    EXPECT_EQ(Reached(WM_SETFONT), 0u);
    EXPECT_EQ(Reached(WM_MOUSEMOVE), 5u);
}

TEST_F(LinkHoverTest, PointerLeaves_FontAndCaptureGoBack)
{
    const std::pair<int, int> outside[] = {{-1, 5}, {5, -1}, {120, 5}, {5, 20}, {-500, -500}, {3000, 3000}};
    for (const auto& [x, y] : outside)
    {
        Move(5, 5);
        ExpectUnderlined(true);
        g_lstInvalidated.clear();
        Move(x, y);
        ExpectUnderlined(false);
        EXPECT_THAT(g_lstInvalidated, ElementsAre(Invalidated{m_hwnd, true})) << x << ", " << y;
    }
}

TEST_F(LinkHoverTest, PointerComesAgain_UnderlinesAgain)
{
    for (int i = 0; i < 3; ++i)
    {
        Move(5, 5);
        ExpectUnderlined(true);
        Move(200, 5);
        ExpectUnderlined(false);
    }
}

TEST_F(LinkHoverTest, AnotherWindowTookTheCapture_NextMoveTakesItBack)
{
    Move(5, 5);
    SetCapture(m_hwndParent);
    Move(6, 6);
    ExpectUnderlined(true);
}

TEST_F(LinkHoverTest, ControlIsDestroyedMeanwhile_CaptureAndFontAreGone)
{
    Move(5, 5);
    const HFONT underlined = UnderlinedFont();
    Destroy();
    EXPECT_EQ(GetCapture(), nullptr);
    EXPECT_EQ(GetObjectType(underlined), 0u);
}

TEST_F(LinkHoverTest, ControlHasNoFontOfItsOwn_PointerComesAndGoes)
{
    const HWND plain =
        CreateWindowExW(0, L"STATIC", L"", WS_CHILD, 0, 0, 50, 20, m_hwndParent, nullptr, nullptr, nullptr);
    ConvertStaticToHyperlink(plain, m_parameters);
    EXPECT_EQ(GetPropW(plain, Tests::LinkUnderlinedFont), nullptr);
    SendMessageW(plain, WM_MOUSEMOVE, 0, MAKELPARAM(5, 5));
    EXPECT_EQ(GetCapture(), plain);
    SendMessageW(plain, WM_MOUSEMOVE, 0, MAKELPARAM(500, 5));
    EXPECT_EQ(GetCapture(), nullptr);
    DestroyWindow(plain);
}

TEST_F(LinkHoverTest, Cursor_IsTheHand)
{
    EXPECT_EQ(CursorOverTheLink(), g_pfnLoadCursor(nullptr, MAKEINTRESOURCEW(32649)));
    EXPECT_THAT(g_lstLoadedCursors, ElementsAre(MAKEINTRESOURCEW(32649)));
}

TEST_F(LinkHoverTest, Cursor_WithoutAHand_IsTheArrow)
{
    g_lstMissingCursors = {IDC_HAND};
    EXPECT_EQ(CursorOverTheLink(), g_pfnLoadCursor(nullptr, MAKEINTRESOURCEW(32512)));
    EXPECT_THAT(g_lstLoadedCursors, ElementsAre(MAKEINTRESOURCEW(32649), MAKEINTRESOURCEW(32512)));
}

TEST_F(LinkHoverTest, Cursor_WithoutBoth_IsNone)
{
    g_lstMissingCursors = {IDC_HAND, IDC_ARROW};
    EXPECT_EQ(CursorOverTheLink(), nullptr);
}
