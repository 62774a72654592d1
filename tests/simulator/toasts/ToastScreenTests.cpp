#include "tests/simulator/toasts/ScreenTest.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
class ToastScreenTest : public ScreenTest
{
protected:
    // Moves the real mouse there and clicks. The toast must be what is there: other programs have windows too.
    void Click(POINT point, unsigned number, DWORD down = MOUSEEVENTF_LEFTDOWN, DWORD up = MOUSEEVENTF_LEFTUP)
    {
        for (int i = 0; i < 300 && !IsToastAt(point, number); ++i)
            Sleep(10);
        ASSERT_TRUE(IsToastAt(point, number)) << "Another window covers the toast.";
        // Each event carries the point: the display may report an older place of the pointer in between.
        INPUT events[3] = {};
        for (INPUT& event : events)
        {
            event.type = INPUT_MOUSE;
            event.mi.dx = Absolute(point.x, SM_CXSCREEN);
            event.mi.dy = Absolute(point.y, SM_CYSCREEN);
            event.mi.dwFlags = MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE;
        }
        events[1].mi.dwFlags |= down;
        events[2].mi.dwFlags |= up;
        ASSERT_EQ(SendInput(3, events, sizeof(INPUT)), 3u);
    }

    void WaitUntilGone(unsigned number)
    {
        const auto visible = [&]
        {
            const std::vector<unsigned> numbers = m_desktop.Visible();
            return std::find(numbers.begin(), numbers.end(), number) != numbers.end();
        };
        for (int i = 0; i < 500 && visible(); ++i)
            Sleep(10);
        // The screen's thread may be between taking the toast away and raising its event.
        for (int i = 0; i < 500 && m_calls.All().empty(); ++i)
            Sleep(10);
        m_desktop.WaitForEvents();
    }

private:
    static LONG Absolute(LONG pixel, int metric)
    {
        const int size = GetSystemMetrics(metric);
        return (pixel * 65536 + 32768) / size;
    }

    bool IsToastAt(POINT point, unsigned number)
    {
        RECT place{};
        DWORD process = 0;
        GetWindowThreadProcessId(WindowFromPoint(point), &process);
        return SUCCEEDED(m_desktop.Place(number, place)) && PtInRect(&place, point) && process == GetCurrentProcessId();
    }
};

POINT Middle(const RECT& place)
{
    return {(place.left + place.right) / 2, (place.top + place.bottom) / 2};
}

POINT Cross(const RECT& place)
{
    RECT cross = Simulator::CloseCross({place.right - place.left, place.bottom - place.top});
    OffsetRect(&cross, place.left, place.top);
    return Middle(cross);
}
} // namespace

TEST_F(ToastScreenTest, MouseClick_ActivatesTheToast)
{
    const unsigned number = ShowDrawn(L"title", L"text");
    Click(Middle(Place(number)), number);
    WaitUntilGone(number);
    EXPECT_THAT(m_calls.Lines(), ElementsAre("handler: activated"));
    EXPECT_THAT(ToastEntries(), ElementsAre("shown", "clicked"));
}

TEST_F(ToastScreenTest, MouseClickOnTheCross_DismissesTheToast)
{
    const unsigned number = ShowDrawn(L"title", L"text");
    Click(Cross(Place(number)), number);
    WaitUntilGone(number);
    EXPECT_THAT(m_calls.Lines(), ElementsAre("handler: dismissed 0"));
    EXPECT_THAT(ToastEntries(), ElementsAre("shown", "dismissed"));
}

TEST_F(ToastScreenTest, MouseClick_HitsTheToastThatIsThere)
{
    const unsigned first = ShowDrawn(L"first", L"text");
    const unsigned second = ShowDrawn(L"second", L"text");
    Click(Middle(Place(first)), first);
    WaitUntilGone(first);
    EXPECT_THAT(m_desktop.Visible(), ElementsAre(second));
    EXPECT_EQ(LastToastDetails()["title"], "first");
}

TEST_F(ToastScreenTest, RightClick_DoesNothing)
{
    const unsigned number = ShowDrawn(L"title", L"text");
    Click(Middle(Place(number)), number, MOUSEEVENTF_RIGHTDOWN, MOUSEEVENTF_RIGHTUP);
    Sleep(200);
    EXPECT_THAT(m_desktop.Visible(), ElementsAre(number));
    EXPECT_THAT(m_calls.Lines(), IsEmpty());
}

TEST_F(ToastScreenTest, Events_ComNeitherFromTheScreenNorFromTheCaller)
{
    const unsigned number = ShowDrawn(L"title", L"text");
    const RECT place = Place(number);
    const DWORD screenThread = GetWindowThreadProcessId(WindowFromPoint(Middle(place)), nullptr);
    Click(Middle(place), number);
    WaitUntilGone(number);
    ASSERT_EQ(m_calls.All().size(), 1u);
    EXPECT_NE(m_calls.All().front().m_dwThreadId, screenThread);
    EXPECT_NE(m_calls.All().front().m_dwThreadId, GetCurrentThreadId());
}

TEST_F(ToastScreenTest, Window_IsTopmostAndTakesNoFocus)
{
    const HWND before = GetForegroundWindow();
    const unsigned number = ShowDrawn(L"title", L"text");
    const RECT place = Place(number);
    const HWND window = FindWindowW(L"OrvikSimulatorToast", L"title");
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(IsWindowVisible(window));
    EXPECT_TRUE((GetWindowLongW(window, GWL_EXSTYLE) & WS_EX_TOPMOST) != 0);
    EXPECT_EQ(GetForegroundWindow(), before);
    RECT work{};
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    EXPECT_EQ(work.right - place.right, 16);
    EXPECT_EQ(work.bottom - place.bottom, 16);
}

TEST_F(ToastScreenTest, SeveralToasts_AreStackedAndCloseRanks)
{
    const unsigned first = ShowDrawn(L"first", L"text");
    const unsigned second = ShowDrawn(L"second", L"text\nof two lines");
    const unsigned third = ShowDrawn(L"third", L"text");
    const RECT corner = Place(third);
    EXPECT_EQ(Place(third).top - Place(second).bottom, 12);
    EXPECT_EQ(Place(second).top - Place(first).bottom, 12);
    EXPECT_EQ(m_desktop.Dismiss(third), S_OK);
    EXPECT_EQ(Place(second).bottom, corner.bottom);
    EXPECT_EQ(Place(second).top - Place(first).bottom, 12);
}

TEST_F(ToastScreenTest, TimeOut_TakesTheWindowAway)
{
    Simulator::Facts::Instance().Set("/toasts/timeout-ms", 300);
    const unsigned number = ShowDrawn(L"vanishing", L"text");
    Place(number);
    EXPECT_NE(FindWindowW(L"OrvikSimulatorToast", L"vanishing"), nullptr);
    WaitUntilGone(number);
    for (int i = 0; i < 300 && FindWindowW(L"OrvikSimulatorToast", L"vanishing") != nullptr; ++i)
        Sleep(10);
    EXPECT_EQ(FindWindowW(L"OrvikSimulatorToast", L"vanishing"), nullptr);
    EXPECT_THAT(m_calls.Lines(), ElementsAre("handler: dismissed 2"));
}

TEST_F(ToastScreenTest, Reset_TakesTheWindowsAwayAtOnce)
{
    Place(ShowDrawn(L"vanishing", L"text"));
    m_desktop.Reset();
    EXPECT_EQ(FindWindowW(L"OrvikSimulatorToast", L"vanishing"), nullptr);
}
