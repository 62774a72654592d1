#include "app/dialogs/Hyperlink.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/app/dialogs/LinkControl.h"

#include <gmock/gmock.h>

#include <cstdint>

using testing::ElementsAre;
using testing::IsEmpty;
using Tests::LinkControl;

namespace
{
struct Call
{
    std::uintptr_t m_nProcedure;
    UINT m_nMessage;

    bool operator==(const Call&) const = default;
};

std::vector<Call> g_lstCalled;
std::vector<std::pair<int, LONG_PTR>> g_lstReplaced;

// The procedures of these tests are numbers.
LRESULT WINAPI NotedCallWindowProcW(WNDPROC procedure, HWND, UINT message, WPARAM wParam, LPARAM)
{
    g_lstCalled.push_back({reinterpret_cast<std::uintptr_t>(procedure), message});
    if (message == WM_CTLCOLORSTATIC)
        SetTextColor(reinterpret_cast<HDC>(wParam), 0x00FF00);
    return 99;
}

LONG_PTR WINAPI NotedSetWindowLongPtrW(HWND, int index, LONG_PTR value)
{
    g_lstReplaced.emplace_back(index, value);
    return 0;
}

class HyperlinkParentTest : public LinkControl
{
protected:
    static constexpr std::uintptr_t Procedure = 0x140001230;

    HyperlinkParentTest()
    {
        g_lstCalled.clear();
        g_lstReplaced.clear();
        Record(Procedure);
        m_hContext = GetDC(m_hwnd);
        SetTextColor(m_hContext, 0x123456);
    }
    ~HyperlinkParentTest() override
    {
        ReleaseDC(m_hwnd, m_hContext);
        RemovePropW(m_hwndParent, Tests::LinkProcedure);
    }

    void Record(std::uintptr_t procedure) const
    {
        SetPropW(m_hwndParent, Tests::LinkProcedure, reinterpret_cast<HANDLE>(procedure));
    }

    LRESULT Colour() const
    {
        return HyperlinkParentProc(m_hwndParent, WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(m_hContext),
                                   reinterpret_cast<LPARAM>(m_hwnd));
    }

    HDC m_hContext = nullptr;

private:
    Simulator::Redirection<decltype(CallWindowProcW)> m_call{"CallWindowProcW", &NotedCallWindowProcW};
    Simulator::Redirection<decltype(SetWindowLongPtrW)> m_replace{"SetWindowLongPtrW", &NotedSetWindowLongPtrW};
};
} // namespace

TEST_F(HyperlinkParentTest, Colour_OfALink_IsSetBehindTheRecordedProcedure)
{
    SetPropW(m_hwnd, Tests::LinkMark, reinterpret_cast<HANDLE>(1));
    EXPECT_EQ(Colour(), 99);
    EXPECT_THAT(g_lstCalled, ElementsAre(Call{Procedure, WM_CTLCOLORSTATIC}));
    EXPECT_EQ(GetTextColor(m_hContext), 0xC00000u);
}

TEST_F(HyperlinkParentTest, Colour_OfAnotherControl_IsTheRecordedProcedures)
{
    EXPECT_EQ(Colour(), 99);
    EXPECT_THAT(g_lstCalled, ElementsAre(Call{Procedure, WM_CTLCOLORSTATIC}));
    EXPECT_EQ(GetTextColor(m_hContext), 0x00FF00u);
}

TEST_F(HyperlinkParentTest, End_PutsBackTheLowerHalfOfTheProcedureAndForgetsIt)
{
    const std::pair<std::uintptr_t, LONG_PTR> procedures[] = {
        {0x140001230, 0x40001230},
        {0x7FF890001230, static_cast<LONG_PTR>(0xFFFFFFFF90001230)},
        {0x12345678, 0x12345678},
        {0xFFFFFFFFFFFF0005, static_cast<LONG_PTR>(0xFFFFFFFFFFFF0005)}};
    for (const auto& [recorded, restored] : procedures)
    {
        Record(recorded);
        g_lstCalled.clear();
        g_lstReplaced.clear();
        EXPECT_EQ(HyperlinkParentProc(m_hwndParent, WM_DESTROY, 0, 0), 99);
        EXPECT_THAT(g_lstReplaced, ElementsAre(std::pair(GWLP_WNDPROC, restored)));
        EXPECT_EQ(GetPropW(m_hwndParent, Tests::LinkProcedure), nullptr);
        EXPECT_THAT(g_lstCalled, ElementsAre(Call{recorded, WM_DESTROY}));
    }
}

TEST_F(HyperlinkParentTest, OtherMessages_GoToTheRecordedProcedure)
{
    for (const UINT message : {WM_NULL, WM_COMMAND, WM_CLOSE, WM_CTLCOLOREDIT, WM_NCDESTROY, WM_APP})
    {
        g_lstCalled.clear();
        EXPECT_EQ(HyperlinkParentProc(m_hwndParent, message, 0, 0), 99);
        EXPECT_THAT(g_lstCalled, ElementsAre(Call{Procedure, message}));
    }
    EXPECT_THAT(g_lstReplaced, IsEmpty());
    EXPECT_EQ(GetPropW(m_hwndParent, Tests::LinkProcedure), reinterpret_cast<HANDLE>(Procedure));
}
