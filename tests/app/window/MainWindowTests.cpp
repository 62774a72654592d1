#include "app/MainWindow.h"

#include "app/ProcessInstances.h"
#include "app/StartUp.h"
#include "res/Resource.h"
#include "shared/LogLevel.h"
#include "tests/app/window/UserCalls.h"
#include "tests/support/LogCapture.h"

#include <wtsapi32.h>

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;
using Tests::UserCalls;
using TestSupport::Logged;
using TestSupport::LogLines;
namespace Level = Orvik::Shared::Level;

namespace
{
HINSTANCE Module()
{
    return GetModuleHandleW(nullptr);
}

class MainWindowTest : public testing::Test
{
protected:
    MainWindowTest()
    {
        LoadProcessNames(Module());
        g_hwndMain = nullptr;
    }

    UserCalls m_calls;
};
} // namespace

TEST_F(MainWindowTest, RegisterMainWindowClass_Fields)
{
    RegisterMainWindowClass(Module());
    const WNDCLASSEXW& registered = m_calls.m_class;
    EXPECT_EQ(registered.cbSize, sizeof(WNDCLASSEXW));
    EXPECT_EQ(registered.style, 3u);
    EXPECT_EQ(registered.lpfnWndProc, &WndProc);
    EXPECT_EQ(registered.cbClsExtra, 0);
    EXPECT_EQ(registered.cbWndExtra, 0);
    EXPECT_EQ(registered.hInstance, Module());
    EXPECT_NE(registered.hIcon, nullptr);
    EXPECT_EQ(registered.hIcon, LoadIconW(Module(), MAKEINTRESOURCEW(137)));
    EXPECT_EQ(registered.hIconSm, registered.hIcon);
    EXPECT_EQ(registered.hCursor, LoadCursorW(nullptr, IDC_ARROW));
    EXPECT_EQ(registered.hbrBackground, reinterpret_cast<HBRUSH>(6));
    EXPECT_EQ(registered.lpszMenuName, MAKEINTRESOURCEW(505));
    EXPECT_EQ(m_calls.m_strClass, L"ORVIKNOTIFICATIONS");
}

TEST_F(MainWindowTest, InitInstance_CreatesTheHiddenWindow)
{
    EXPECT_EQ(InitInstance(Module()), TRUE);
    EXPECT_THAT(m_calls.m_lstCalls, ElementsAre("GetUserDefaultLCID", "CreateWindowExW",
                                                "WTSRegisterSessionNotification", "ShowWindow", "UpdateWindow"));
    EXPECT_EQ(m_calls.m_window.dwExStyle, 0u);
    EXPECT_EQ(m_calls.m_strWindowClass, L"ORVIKNOTIFICATIONS");
    EXPECT_EQ(m_calls.m_strWindowTitle, L"Orvik Notifications");
    EXPECT_EQ(m_calls.m_window.style, 0x00CF0000);
    EXPECT_EQ(m_calls.m_window.x, CW_USEDEFAULT);
    EXPECT_EQ(m_calls.m_window.cx, CW_USEDEFAULT);
    EXPECT_EQ(m_calls.m_window.y, 0);
    EXPECT_EQ(m_calls.m_window.cy, 0);
    EXPECT_EQ(m_calls.m_window.hwndParent, nullptr);
    EXPECT_EQ(m_calls.m_window.hMenu, nullptr);
    EXPECT_EQ(m_calls.m_window.hInstance, Module());
    EXPECT_EQ(m_calls.m_window.lpCreateParams, nullptr);
    EXPECT_EQ(m_calls.m_hwndSession, m_calls.m_hwndCreated);
    EXPECT_EQ(m_calls.m_dwSessionFlags, static_cast<DWORD>(NOTIFY_FOR_THIS_SESSION));
    EXPECT_EQ(m_calls.m_hwndShown, m_calls.m_hwndCreated);
    EXPECT_EQ(m_calls.m_nShow, SW_HIDE);
    EXPECT_EQ(m_calls.m_hwndUpdated, m_calls.m_hwndCreated);
}

TEST_F(MainWindowTest, InitInstance_KeepsModuleAndWindow)
{
    ASSERT_EQ(InitInstance(Module()), TRUE);
    EXPECT_EQ(g_hInstance, Module());
    EXPECT_EQ(g_hwndMain, m_calls.m_hwndCreated);
    EXPECT_THAT(LogLines("InitInstance"), ElementsAre(L"TraceIn|", L"TraceOut|1"));
}

TEST_F(MainWindowTest, InitInstance_NoWindow_IsFalseAndTracesNoWayOut)
{
    m_calls.m_hwndCreated = nullptr;
    EXPECT_EQ(InitInstance(Module()), FALSE);
    EXPECT_THAT(m_calls.m_lstCalls, ElementsAre("GetUserDefaultLCID", "CreateWindowExW"));
    EXPECT_EQ(g_hInstance, Module());
    EXPECT_EQ(g_hwndMain, nullptr);
    EXPECT_THAT(LogLines("InitInstance"), ElementsAre(L"TraceIn|"));
}

TEST_F(MainWindowTest, WndProc_Create_LogsAndReturnsZero)
{
    m_calls.m_lrDefault = 7;
    EXPECT_EQ(WndProc(m_calls.m_hwndCreated, WM_CREATE, 1, 2), 0);
    EXPECT_THAT(TestSupport::LogLines(), ElementsAre(L"Verbose|WndProc|WM_CREATE"));
    EXPECT_THAT(m_calls.m_lstCalls, IsEmpty());
}

TEST_F(MainWindowTest, WndProc_Destroy_UnregistersBothHandlesEvenWhenNullAndEndsTheLoop)
{
    m_calls.m_lrDefault = 7;
    EXPECT_EQ(WndProc(m_calls.m_hwndCreated, WM_DESTROY, 1, 2), 0);
    EXPECT_THAT(m_calls.m_lstCalls,
                ElementsAre("UnregisterDeviceNotification", "UnregisterDeviceNotification", "PostQuitMessage"));
    EXPECT_THAT(m_calls.m_lstUnregistered, ElementsAre(nullptr, nullptr));
    EXPECT_EQ(m_calls.m_nQuitCode, 0);
    EXPECT_TRUE(TestSupport::NothingLogged());
}

TEST_F(MainWindowTest, WndProc_Destroy_DeviceHandleThenHubHandle)
{
    g_hUsbDeviceNotification = reinterpret_cast<HDEVNOTIFY>(0x10);
    g_hUsbHubNotification = reinterpret_cast<HDEVNOTIFY>(0x20);
    EXPECT_EQ(WndProc(m_calls.m_hwndCreated, WM_DESTROY, 0, 0), 0);
    EXPECT_THAT(m_calls.m_lstUnregistered,
                ElementsAre(reinterpret_cast<HDEVNOTIFY>(0x10), reinterpret_cast<HDEVNOTIFY>(0x20)));
    g_hUsbDeviceNotification = nullptr;
    g_hUsbHubNotification = nullptr;
}

TEST_F(MainWindowTest, WndProc_Destroy_EndsTheMonitorAfterTheNotificationsAndBeforeTheLoop)
{
    ASSERT_TRUE(g_acpiStopEvent.Create());
    m_calls.m_hWatched = g_acpiStopEvent.Get();
    EXPECT_EQ(WndProc(m_calls.m_hwndCreated, WM_DESTROY, 0, 0), 0);
    EXPECT_THAT(m_calls.m_lstCalls,
                ElementsAre("UnregisterDeviceNotification", "UnregisterDeviceNotification", "PostQuitMessage"));
    EXPECT_THAT(m_calls.m_lstWasSignalled, ElementsAre(false, false, true));
    EXPECT_EQ(WaitForSingleObject(g_acpiStopEvent.Get(), 0), WAIT_OBJECT_0);
    EXPECT_EQ(m_calls.m_nQuitCode, 0);
    g_acpiStopEvent.Close();
}

TEST_F(MainWindowTest, WndProc_Ignored_AreAnsweredWithoutAnything)
{
    m_calls.m_lrDefault = 7;
    for (const UINT message : {0x0111u, 0x031Fu, 0x8002u})
        EXPECT_EQ(WndProc(m_calls.m_hwndCreated, message, 5, 6), 0);
    EXPECT_THAT(m_calls.m_lstCalls, IsEmpty());
    EXPECT_TRUE(TestSupport::NothingLogged());
}

TEST_F(MainWindowTest, WndProc_Neighbours_AreHandedOn)
{
    m_calls.m_lrDefault = 7;
    for (const UINT message : {0x0003u, 0x0110u, 0x0112u, 0x0217u, 0x021Au, 0x02B0u, 0x02B2u, 0x031Eu, 0x0320u, 0x04FDu,
                               0x04FFu, 0x8001u, 0x8003u})
        EXPECT_EQ(WndProc(m_calls.m_hwndCreated, message, 5, 6), 7);
}

TEST_F(MainWindowTest, WndProc_AnyOther_IsHandedOn)
{
    m_calls.m_lrDefault = 42;
    for (const UINT message : {WM_NULL, WM_CLOSE, WM_PAINT, WM_QUERYENDSESSION, WM_TIMER, WM_APP + 77})
    {
        EXPECT_EQ(WndProc(m_calls.m_hwndCreated, message, 5, 6), 42);
        EXPECT_EQ(m_calls.m_default.hwnd, m_calls.m_hwndCreated);
        EXPECT_EQ(m_calls.m_default.message, message);
        EXPECT_EQ(m_calls.m_default.wParam, 5u);
        EXPECT_EQ(m_calls.m_default.lParam, 6);
    }
    EXPECT_TRUE(TestSupport::NothingLogged());
}

TEST(MainWindow, RealWindow_IsHiddenAndEndsTheLoopWhenDestroyed)
{
    LoadProcessNames(Module());
    RegisterMainWindowClass(Module());
    ASSERT_EQ(InitInstance(Module()), TRUE);
    EXPECT_FALSE(IsWindowVisible(g_hwndMain));
    EXPECT_TRUE(Logged(Level::Verbose, "WndProc", L"WM_CREATE"));
    PostMessageW(g_hwndMain, WM_CLOSE, 0, 0);
    EXPECT_EQ(RunMessageLoop(nullptr), 0);
    EXPECT_FALSE(IsWindow(g_hwndMain));
}
