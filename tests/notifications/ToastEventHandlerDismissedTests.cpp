#include "notifications/ToastEventHandler.h"

#include "platform/ComPointers.h"
#include "shared/LogLevel.h"
#include "simulator/model/CallPlan.h"
#include "simulator/model/LiveObjects.h"
#include "simulator/toasts/ToastEventArgs.h"
#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>
#include <vector>

using namespace ToastAbi;
using Orvik::Shared::Level::Verbose;
using Simulator::CallPlan;
using testing::ElementsAre;

namespace
{
constexpr char Invoke[] = "ToastEventHandler::Invoke";

// The arguments of a dismissal for that reason, as the agent sees them.
IToastDismissedEventArgsPtr Arguments(INT32 reason)
{
    Simulator::Abi::IToastDismissedEventArgs* arguments = nullptr;
    EXPECT_EQ(Simulator::MakeObject<Simulator::ToastDismissedEventArgs>(&arguments, reason), S_OK);
    const IUnknownPtr spOwner(arguments, false);
    IToastDismissedEventArgsPtr spArguments;
    EXPECT_EQ(spOwner->QueryInterface(__uuidof(IToastDismissedEventArgs), reinterpret_cast<void**>(&spArguments)),
              S_OK);
    return spArguments;
}

class ToastEventHandlerDismissedTest : public testing::Test
{
protected:
    ToastEventHandlerDismissedTest() { CallPlan::Instance().Reset(); }
    ~ToastEventHandlerDismissedTest() override { EXPECT_EQ(Simulator::LiveObjects::Count(), 0); }

    [[nodiscard]] HRESULT Dismiss(INT32 reason) { return m_spHandler->Invoke(nullptr, Arguments(reason)); }

    IToastDismissedHandlerPtr m_spHandler{static_cast<IToastDismissedHandler*>(new ToastEventHandler(nullptr, nullptr)),
                                          false};
};
} // namespace

TEST_F(ToastEventHandlerDismissedTest, Invoke_UserCanceled_IsLogged)
{
    EXPECT_EQ(Dismiss(0), S_OK);
    EXPECT_THAT(TestSupport::LogLines(Invoke),
                ElementsAre(L"TraceIn|", L"Verbose|The user dismissed this toast", L"TraceOut|hr: 0x00000000"));
}

TEST_F(ToastEventHandlerDismissedTest, Invoke_ApplicationHidden_IsLogged)
{
    EXPECT_EQ(Dismiss(1), S_OK);
    EXPECT_THAT(TestSupport::LogLines(Invoke),
                ElementsAre(L"TraceIn|", L"Verbose|The application hid the toast using ToastNotifier.hide()",
                            L"TraceOut|hr: 0x00000000"));
}

TEST_F(ToastEventHandlerDismissedTest, Invoke_TimedOut_IsLogged)
{
    EXPECT_EQ(Dismiss(2), S_OK);
    EXPECT_THAT(TestSupport::LogLines(Invoke),
                ElementsAre(L"TraceIn|", L"Verbose|The toast has timed out", L"TraceOut|hr: 0x00000000"));
}

TEST_F(ToastEventHandlerDismissedTest, Invoke_AnyOtherReason_IsLoggedAsNotActivated)
{
    for (const INT32 reason : {3, -1, 4, 1000, INT32_MAX, INT32_MIN})
    {
        TestSupport::ClearLog();
        EXPECT_EQ(Dismiss(reason), S_OK) << reason;
        EXPECT_THAT(TestSupport::LogLines(Invoke),
                    ElementsAre(L"TraceIn|", L"Verbose|Toast not activated", L"TraceOut|hr: 0x00000000"))
            << reason;
    }
}

TEST_F(ToastEventHandlerDismissedTest, Invoke_ReasonUnreadable_GivesTheCodeAndLogsNothing)
{
    CallPlan::Instance().Fail("IToastDismissedEventArgs::get_Reason", static_cast<HRESULT>(0x80041234));
    EXPECT_EQ(Dismiss(0), static_cast<HRESULT>(0x80041234));
    EXPECT_THAT(TestSupport::LogLines(Invoke), ElementsAre(L"TraceIn|", L"TraceOut|hr: 0x80041234"));
}

TEST_F(ToastEventHandlerDismissedTest, Invoke_NoArguments_FailsAndLogsNothing)
{
    EXPECT_EQ(m_spHandler->Invoke(nullptr, nullptr), E_POINTER);
    EXPECT_THAT(TestSupport::LogLines(Invoke), ElementsAre(L"TraceIn|", L"TraceOut|hr: 0x80004003"));
}

TEST_F(ToastEventHandlerDismissedTest, Invoke_FromManyThreads_LogsEachReason)
{
    constexpr const wchar_t* texts[] = {L"The user dismissed this toast",
                                        L"The application hid the toast using ToastNotifier.hide()",
                                        L"The toast has timed out", L"Toast not activated"};
    std::vector<std::thread> threads;
    for (INT32 reason = 0; reason < 4; ++reason)
    {
        threads.emplace_back(
            [this, reason]
            {
                for (int n = 0; n < 50; ++n)
                    EXPECT_EQ(Dismiss(reason), S_OK);
            });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (const wchar_t* text : texts)
        EXPECT_EQ(TestSupport::LogCount(Verbose, Invoke, text), 50u);
}
