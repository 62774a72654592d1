#include "notifications/DesktopToast.h"

#include "shared/LogLevel.h"
#include "simulator/model/CallPlan.h"
#include "simulator/model/Facts.h"
#include "simulator/model/Journal.h"
#include "simulator/model/LiveObjects.h"
#include "tests/notifications/HiddenWindow.h"
#include "tests/notifications/ToastMachine.h"
#include "tests/support/AllocationFault.h"
#include "tests/support/LogCapture.h"

#include <windows.h>

#include <shellapi.h>

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

using Orvik::Shared::Level::TraceOut;
using Orvik::Shared::Level::Verbose;
using Simulator::CallPlan;
using Simulator::Facts;
using Simulator::LiveObjects;
using TestSupport::Logged;

namespace
{
constexpr char Invoke[] = "ToastEventHandler::Invoke";

std::atomic<int> g_programs;
std::atomic<DWORD> g_programThread;

HINSTANCE WINAPI CountedShellExecute(HWND, LPCWSTR, LPCWSTR, LPCWSTR, LPCWSTR, INT)
{
    ++g_programs;
    g_programThread = GetCurrentThreadId();
    return reinterpret_cast<HINSTANCE>(INT_PTR{42});
}

// Toasts that live on after DisplayToast has returned.
class ToastLifetimeTest : public ToastMachine
{
protected:
    ToastLifetimeTest() { g_programs = 0; }

    // Waits like WaitForEvents and lets the windows of this thread take their messages meanwhile.
    void PumpUntilEventsEnd()
    {
        std::thread waiting(
            [this, thread = GetCurrentThreadId()]
            {
                m_desktop.WaitForEvents();
                PostThreadMessageW(thread, WM_QUIT, 0, 0);
            });
        MSG message;
        while (GetMessageW(&message, nullptr, 0, 0) > 0)
            DispatchMessageW(&message);
        waiting.join();
    }
    void Show(const wchar_t* title) { ASSERT_EQ(m_toast.DisplayToast(title, L"Text"), S_OK); }

    DesktopToast m_toast{nullptr, nullptr};

private:
    Simulator::Redirection<decltype(ShellExecuteW)> m_shell{"ShellExecuteW", &CountedShellExecute};
};
} // namespace

TEST_F(ToastLifetimeTest, Click_OnAnyToast_StartsOneProgramOnAnotherThread)
{
    Show(L"A USB-C toast");
    EXPECT_EQ(m_desktop.Click(1), S_OK);
    m_desktop.WaitForEvents();
    EXPECT_EQ(g_programs, 1);
    EXPECT_NE(g_programThread, GetCurrentThreadId());
    EXPECT_TRUE(Logged(TraceOut, Invoke, L"hr: 0x00000000"));
}

TEST_F(ToastLifetimeTest, TimeOut_IsLogged)
{
    Show(L"Title");
    EXPECT_EQ(m_desktop.TimeOut(1), S_OK);
    m_desktop.WaitForEvents();
    EXPECT_TRUE(Logged(Verbose, Invoke, L"The toast has timed out"));
    EXPECT_EQ(g_programs, 0);
}

TEST_F(ToastLifetimeTest, Dismissal_IsLogged)
{
    Show(L"Title");
    EXPECT_EQ(m_desktop.Dismiss(1), S_OK);
    m_desktop.WaitForEvents();
    EXPECT_TRUE(Logged(Verbose, Invoke, L"The user dismissed this toast"));
}

TEST_F(ToastLifetimeTest, Failure_WithoutWindows_HasNoVisibleEffect)
{
    Show(L"Title");
    EXPECT_EQ(m_desktop.Fail(1, static_cast<HRESULT>(0x803E0111)), S_OK);
    m_desktop.WaitForEvents();
    EXPECT_TRUE(Logged(TraceOut, Invoke, L"hr: 0x80004005"));
    EXPECT_TRUE(TestSupport::OperationalLines().back().ends_with(L"Toast Notifier Shown"));
}

TEST_F(ToastLifetimeTest, Failure_AfterASuccessfulShow_ReachesTheHandler)
{
    Facts::Instance().Set("/toasts/failure", "0x803E0111");
    Show(L"Title");
    m_desktop.WaitForEvents();
    EXPECT_TRUE(Logged(TraceOut, Invoke, L"hr: 0x80004005"));
}

TEST_F(ToastLifetimeTest, Failure_ToastOfAProgramWithWindows_IsToldByTheMainOneAlone)
{
    const HiddenWindow toastWindow;
    const HiddenWindow mainWindow;
    DesktopToast toast(toastWindow.Get(), mainWindow.Get());
    ASSERT_EQ(toast.DisplayToast(L"Title", L"Text"), S_OK);
    EXPECT_EQ(m_desktop.Fail(1, E_FAIL), S_OK);
    PumpUntilEventsEnd();
    EXPECT_EQ(mainWindow.Text(), L"The toast encountered an error.");
    EXPECT_EQ(toastWindow.Text(), L"before");
    EXPECT_TRUE(Logged(TraceOut, Invoke, L"hr: 0x00000000"));
}

TEST_F(ToastLifetimeTest, Handler_OfAShownToast_LivesUntilTheToastEnds)
{
    Show(L"Title");
    EXPECT_GT(LiveObjects::Count("ToastNotification"), 0);
    EXPECT_EQ(m_desktop.Click(1), S_OK);
    m_desktop.WaitForEvents();
    EXPECT_EQ(LiveObjects::Count(), 0);
}

TEST_F(ToastLifetimeTest, DesktopToast_Ends_ItsToastsStillReact)
{
    {
        DesktopToast toast(nullptr, nullptr);
        ASSERT_EQ(toast.DisplayToast(L"Title", L"Text"), S_OK);
    }
    EXPECT_EQ(m_desktop.Click(1), S_OK);
    m_desktop.WaitForEvents();
    EXPECT_EQ(g_programs, 1);
}

TEST_F(ToastLifetimeTest, Events_OfManyToastsAtOnce_AreAllHandled)
{
    constexpr unsigned toasts = 40;
    for (unsigned i = 0; i < toasts; ++i)
        Show(L"Title");
    const auto end = [](unsigned first, auto action)
    {
        for (unsigned number = first; number <= toasts; number += 4)
            EXPECT_EQ(action(number), S_OK);
    };
    std::thread clicks([&] { end(1, [this](unsigned number) { return m_desktop.Click(number); }); });
    std::thread dismissals([&] { end(2, [this](unsigned number) { return m_desktop.Dismiss(number); }); });
    std::thread timeOuts([&] { end(3, [this](unsigned number) { return m_desktop.TimeOut(number); }); });
    end(4, [this](unsigned number) { return m_desktop.Fail(number, E_FAIL); });
    clicks.join();
    dismissals.join();
    timeOuts.join();
    m_desktop.WaitForEvents();
    EXPECT_EQ(g_programs, 10);
    EXPECT_EQ(TestSupport::LogCount(Verbose, Invoke, L"The user dismissed this toast"), 10u);
    EXPECT_EQ(TestSupport::LogCount(Verbose, Invoke, L"The toast has timed out"), 10u);
    EXPECT_EQ(TestSupport::LogCount(TraceOut, Invoke, L"hr: 0x80004005"), 10u);
    EXPECT_EQ(m_desktop.VisibleCount(), 0u);
}

TEST_F(ToastLifetimeTest, ManyToasts_EachEndedInEveryWay_LeaveNothingOnTheHeap)
{
    const auto round = [this]
    {
        for (int i = 0; i < 4; ++i)
            Show(L"Title");
        EXPECT_EQ(m_desktop.Click(1), S_OK);
        EXPECT_EQ(m_desktop.Dismiss(2), S_OK);
        EXPECT_EQ(m_desktop.TimeOut(3), S_OK);
        EXPECT_EQ(m_desktop.Fail(4, E_FAIL), S_OK);
        m_desktop.WaitForEvents();
        m_desktop.Reset();
        StartOver();
    };
    round();
    round();
    const std::size_t before = LiveHeapBlocks();
    for (int i = 0; i < 10; ++i)
        round();
    EXPECT_EQ(LiveHeapBlocks(), before);
}

TEST_F(ToastLifetimeTest, FailedToasts_OfEveryStep_LeaveNoHandlerOnTheHeap)
{
    const auto round = [this]
    {
        for (const char* call : {"IToastNotification::add_Activated", "IToastNotification::add_Dismissed",
                                 "IToastNotification::add_Failed", "IToastNotifier::Show"})
        {
            CallPlan::Instance().Fail(call, E_ACCESSDENIED);
            EXPECT_EQ(m_toast.DisplayToast(L"Title", L"Text"), E_ACCESSDENIED) << call;
            StartOver();
        }
    };
    round();
    round();
    const std::size_t before = LiveHeapBlocks();
    for (int i = 0; i < 10; ++i)
        round();
    EXPECT_EQ(LiveHeapBlocks(), before);
}
