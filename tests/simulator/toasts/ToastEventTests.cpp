#include "tests/simulator/toasts/RecordingHandler.h"
#include "tests/simulator/toasts/ToastsTest.h"

using Simulator::CallPlan;
using Simulator::Facts;
using Simulator::LiveObjects;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
class ToastEventTest : public ToastsTest
{
protected:
    // Shows the toast with one handler and answers its number.
    unsigned ShowWatched(ToastAbi::IToastNotification* toast)
    {
        RegisterHandler(toast, m_calls, "handler");
        Show(toast);
        return m_desktop.Visible().back();
    }
    std::vector<std::string> Lines()
    {
        m_desktop.WaitForEvents();
        return m_calls.Lines();
    }

    HandlerCalls m_calls;
};
} // namespace

TEST_F(ToastEventTest, Click_RaisesActivatedOnly)
{
    EXPECT_EQ(m_desktop.Click(ShowWatched(Toast(L"title", L"text"))), S_OK);
    EXPECT_THAT(Lines(), ElementsAre("handler: activated"));
}

TEST_F(ToastEventTest, Dismiss_RaisesDismissedByUser)
{
    EXPECT_EQ(m_desktop.Dismiss(ShowWatched(Toast(L"title", L"text"))), S_OK);
    EXPECT_THAT(Lines(), ElementsAre("handler: dismissed 0"));
}

TEST_F(ToastEventTest, Hide_RaisesDismissedByApplication)
{
    const ToastAbi::IToastNotificationPtr toast = Toast(L"title", L"text");
    ShowWatched(toast);
    EXPECT_EQ(Notifier()->Hide(toast), S_OK);
    EXPECT_THAT(Lines(), ElementsAre("handler: dismissed 1"));
    EXPECT_EQ(m_desktop.VisibleCount(), 0u);
}

TEST_F(ToastEventTest, TimeOut_RaisesDismissedByTime)
{
    EXPECT_EQ(m_desktop.TimeOut(ShowWatched(Toast(L"title", L"text"))), S_OK);
    EXPECT_THAT(Lines(), ElementsAre("handler: dismissed 2"));
}

TEST_F(ToastEventTest, Fail_RaisesFailedWithTheCode)
{
    EXPECT_EQ(m_desktop.Fail(ShowWatched(Toast(L"title", L"text")), E_ACCESSDENIED), S_OK);
    EXPECT_THAT(Lines(), ElementsAre("handler: failed 0x80070005"));
}

TEST_F(ToastEventTest, ReasonFact_IsWhatTheHandlerHears)
{
    Facts::Instance().Set("/toasts/reason", 77);
    EXPECT_EQ(m_desktop.Dismiss(ShowWatched(Toast(L"title", L"text"))), S_OK);
    EXPECT_THAT(Lines(), ElementsAre("handler: dismissed 77"));
}

TEST_F(ToastEventTest, FailureFact_FailsAfterShow)
{
    Facts::Instance().Set("/toasts/failure", "0x803E0111");
    const ToastAbi::IToastNotificationPtr toast = Toast(L"title", L"text");
    RegisterHandler(toast, m_calls, "handler");
    Show(toast);
    EXPECT_THAT(Lines(), ElementsAre("handler: failed 0x803E0111"));
    EXPECT_EQ(m_desktop.VisibleCount(), 0u);
}

TEST_F(ToastEventTest, Handlers_AreCalledInOrderOfRegistration)
{
    const ToastAbi::IToastNotificationPtr toast = Toast(L"title", L"text");
    RegisterHandler(toast, m_calls, "first");
    RegisterHandler(toast, m_calls, "second");
    RegisterHandler(toast, m_calls, "third");
    Show(toast);
    EXPECT_EQ(m_desktop.Click(1), S_OK);
    EXPECT_THAT(Lines(), ElementsAre("first: activated", "second: activated", "third: activated"));
}

TEST_F(ToastEventTest, RemovedHandler_HearsNothingAndIsReleased)
{
    const ToastAbi::IToastNotificationPtr toast = Toast(L"title", L"text");
    RegisterHandler(toast, m_calls, "stays");
    const HandlerTokens tokens = RegisterHandler(toast, m_calls, "goes");
    EXPECT_EQ(LiveObjects::Count("RecordingHandler"), 2);
    EXPECT_EQ(toast->remove_Activated(tokens.m_activated), S_OK);
    EXPECT_EQ(toast->remove_Dismissed(tokens.m_dismissed), S_OK);
    EXPECT_EQ(toast->remove_Failed(tokens.m_failed), S_OK);
    EXPECT_EQ(LiveObjects::Count("RecordingHandler"), 1);
    Show(toast);
    EXPECT_EQ(m_desktop.Dismiss(1), S_OK);
    EXPECT_THAT(Lines(), ElementsAre("stays: dismissed 0"));
}

TEST_F(ToastEventTest, Tokens_AreDistinctAndNeverZero)
{
    const ToastAbi::IToastNotificationPtr toast = Toast(L"title", L"text");
    const HandlerTokens first = RegisterHandler(toast, m_calls, "first");
    const HandlerTokens second = RegisterHandler(toast, m_calls, "second");
    EXPECT_NE(first.m_activated.value, 0);
    EXPECT_NE(second.m_activated.value, first.m_activated.value);
    // A token that was given back or never given is no error.
    EXPECT_EQ(toast->remove_Activated(first.m_activated), S_OK);
    EXPECT_EQ(toast->remove_Activated(first.m_activated), S_OK);
    EXPECT_EQ(toast->remove_Activated({12345}), S_OK);
}

TEST_F(ToastEventTest, NullHandler_IsRefusedAndGetsNoToken)
{
    EventRegistrationToken token{9};
    EXPECT_EQ(Toast(L"title", L"text")->add_Dismissed(nullptr, &token), E_POINTER);
    EXPECT_EQ(token.value, 0);
}

TEST_F(ToastEventTest, Events_ComOnThreadsOfTheMultithreadedApartment)
{
    const ToastAbi::IToastNotificationPtr toast = Toast(L"title", L"text");
    RegisterHandler(toast, m_calls, "handler");
    for (unsigned number = 1; number <= 5; ++number)
    {
        Show(toast);
        EXPECT_EQ(number % 2 == 0 ? m_desktop.Click(number) : m_desktop.Dismiss(number), S_OK);
    }
    m_desktop.WaitForEvents();
    ASSERT_EQ(m_calls.All().size(), 5u);
    for (const HandlerCall& call : m_calls.All())
    {
        EXPECT_NE(call.m_dwThreadId, GetCurrentThreadId());
        EXPECT_TRUE(call.m_bMultithreaded);
        EXPECT_EQ(call.m_pSender, static_cast<IUnknown*>(toast.GetInterfacePtr()));
    }
}

TEST_F(ToastEventTest, ShownToast_LivesWithoutItsMaker)
{
    {
        const ToastAbi::IToastNotificationPtr toast = Toast(L"title", L"text");
        RegisterHandler(toast, m_calls, "handler");
        Show(toast);
    }
    EXPECT_EQ(LiveObjects::Count("ToastNotification"), 1);
    EXPECT_EQ(m_desktop.Click(1), S_OK);
    EXPECT_THAT(Lines(), ElementsAre("handler: activated"));
    EXPECT_THAT(LiveObjects::All(), IsEmpty());
}

TEST_F(ToastEventTest, ReasonThatFails_ReachesTheHandler)
{
    CallPlan::Instance().Fail("IToastDismissedEventArgs::get_Reason", PlannedFailure);
    CallPlan::Instance().Fail("IToastFailedEventArgs::get_ErrorCode", PlannedFailure);
    EXPECT_EQ(m_desktop.Dismiss(ShowWatched(Toast(L"title", L"text"))), S_OK);
    m_desktop.WaitForEvents();
    EXPECT_EQ(m_desktop.Fail(ShowWatched(Toast(L"title", L"text")), E_FAIL), S_OK);
    EXPECT_THAT(Lines(), ElementsAre("handler: dismissed without reason", "handler: failed without error code"));
}

TEST_F(ToastEventTest, HangingHandler_DoesNotHoldUpOtherToasts)
{
    CallPlan::Instance().Hang("IToastDismissedEventArgs::get_Reason");
    const unsigned hanging = ShowWatched(Toast(L"first", L"text"));
    const ToastAbi::IToastNotificationPtr second = Toast(L"second", L"text");
    RegisterHandler(second, m_calls, "second");
    Show(second);
    EXPECT_EQ(m_desktop.Dismiss(hanging), S_OK);
    EXPECT_EQ(m_desktop.Click(2), S_OK);
    for (int i = 0; i < 500 && m_calls.Lines().empty(); ++i)
        Sleep(10);
    EXPECT_THAT(m_calls.Lines(), ElementsAre("second: activated"));
    CallPlan::Instance().ReleaseHung();
    EXPECT_THAT(Lines(), ElementsAre("second: activated", "handler: dismissed 0"));
}
