#include "res/Resource.h"
#include "shared/LogLevel.h"
#include "simulator/model/Facts.h"
#include "simulator/model/LiveObjects.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/support/BstrLedger.h"
#include "tests/support/LogCapture.h"
#include "tests/support/PolicyKey.h"
#include "tests/wmievents/AskedPolicies.h"
#include "tests/wmievents/SmartAdapterTest.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <utility>

using Simulator::CallPlan;
using Simulator::Facts;
using Simulator::LiveObjects;
using Simulator::Redirection;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::Logged;
using TestSupport::LogLines;
using TestSupport::SuppressPolicy;
namespace Level = Orvik::Shared::Level;

namespace
{
using SmartAdapterEventTest = Tests::SmartAdapterTest;

constexpr const char* Title = "Orvik Notifications";

struct LoadedString
{
    HINSTANCE m_hModule;
    UINT m_nId;
    int m_nCapacity;
};
std::vector<LoadedString> g_lstLoaded;

// Behaves as the system does with a text of 300 characters under every id.
int WINAPI LoadLongStringW(HINSTANCE module, UINT id, LPWSTR buffer, int capacity)
{
    g_lstLoaded.push_back({module, id, capacity});
    const int length = std::min(300, capacity - 1);
    std::fill_n(buffer, length, L'x');
    buffer[length] = L'\0';
    return length;
}

int WINAPI LoadNoStringW(HINSTANCE, UINT, LPWSTR, int)
{
    SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
    return 0;
}

// Puts the load among the calls of the journal.
int WINAPI JournalledLoadStringW(HINSTANCE, UINT id, LPWSTR buffer, int)
{
    Simulator::Journal::Instance().Append("call", "LoadStringW " + std::to_string(id));
    *buffer = L'\0';
    return 0;
}
} // namespace

TEST_F(SmartAdapterEventTest, Status_ThatMatters_ShowsItsMessage)
{
    const std::pair<long, const char*> messages[] = {
        {2, "For full performance, connect a higher capacity power adapter."},
        {3, "Smart AC adapter power output is too low for this computer."},
        {4, "The Smart AC Adapter is not functioning correctly."},
        {5, "The connected power source cannot fully power your device. For full performance, use a higher capacity "
            "power source."}};
    for (const auto& [status, message] : messages)
    {
        StartWatching();
        Process({{"i4", status}});
        const auto toasts = Toasts();
        ASSERT_EQ(toasts.size(), 1u) << status;
        ASSERT_GE(toasts[0].size(), 2u);
        EXPECT_EQ(toasts[0][0], Title);
        EXPECT_EQ(toasts[0][1], message);
    }
}

TEST_F(SmartAdapterEventTest, Status_ThatMatters_WritesTheseRecords)
{
    Process({{"i4", 3}});
    EXPECT_THAT(LogLines(Handler), testing::ElementsAreArray(ShownRecords));
}

TEST_F(SmartAdapterEventTest, Status_AnyOther_OnlyLogsTheStatus)
{
    for (const long status : {0L, 1L, 6L, 7L, -1L, 2147483647L, -2147483647L - 1})
    {
        StartWatching();
        Process({{"i4", status}});
        EXPECT_THAT(LogLines(Handler),
                    ElementsAre(L"TraceIn|", Before, After, L"Verbose|SmartAdapterData: " + std::to_wstring(status),
                                L"TraceOut|"));
        EXPECT_THAT(Toasts(), IsEmpty());
        EXPECT_FALSE(WasCalled("CLSIDFromProgID"));
    }
}

TEST_F(SmartAdapterEventTest, Order_CommandThenComponentThenToast)
{
    m_hub.ProcessSmartAdapterEvent();
    const auto calls = Calls();
    const auto position = [&](const char* call) { return std::find(calls.begin(), calls.end(), call) - calls.begin(); };
    EXPECT_LT(position("IPlixCommand::Execute"), position("CLSIDFromProgID"));
    EXPECT_LT(position("CLSIDFromProgID"), position("RoGetActivationFactory"));
    EXPECT_LT(position("RoGetActivationFactory"), position("IToastNotifier::Show"));

    EXPECT_THAT(Commands(), ElementsAre("SmartAdapter.Status"));
}

TEST_F(SmartAdapterEventTest, Order_MessageIsLoadedBeforeTheComponentAndTitleAfterIt)
{
    const Redirection<decltype(LoadStringW)> journalled("LoadStringW", &JournalledLoadStringW);
    m_hub.ProcessSmartAdapterEvent();
    auto calls = Calls();
    std::erase_if(calls, [](const std::string& call)
                  { return call != "CLSIDFromProgID" && call != "CoCreateInstance" && !call.starts_with("Load"); });
    EXPECT_THAT(calls,
                ElementsAre("CoCreateInstance", "LoadStringW " + std::to_string(IDS_ADAPTER_OUTPUT_TOO_LOW),
                            "CLSIDFromProgID", "CoCreateInstance", "LoadStringW " + std::to_string(IDS_APP_TITLE)));
}

TEST_F(SmartAdapterEventTest, Component_NotRegistered_TitleIsNotLoaded)
{
    Facts::Instance().Set("/notification/registered", false);
    g_lstLoaded.clear();
    const Redirection<decltype(LoadStringW)> loads("LoadStringW", &LoadLongStringW);
    m_hub.ProcessSmartAdapterEvent();
    ASSERT_EQ(g_lstLoaded.size(), 1u);
    EXPECT_EQ(g_lstLoaded[0].m_nId, static_cast<UINT>(IDS_ADAPTER_OUTPUT_TOO_LOW));
}

TEST_F(SmartAdapterEventTest, Component_IsCreatedAsItsProgIdSaysAndGivenBack)
{
    m_hub.ProcessSmartAdapterEvent();
    EXPECT_EQ(Details("CLSIDFromProgID")["progid"], "orvikplixutils.orvikPlixNotification");
    EXPECT_EQ(Details("CoCreateInstance", 2)["class"], "PlixNotification");
    EXPECT_EQ(Details("CoCreateInstance", 2)["context"], 23);
    EXPECT_EQ(LiveObjects::Count("PlixNotification"), 0);
    EXPECT_EQ(LiveObjects::Count("PlixCommand"), 0);
}

TEST_F(SmartAdapterEventTest, Component_NotRegistered_NoToast)
{
    Facts::Instance().Set("/notification/registered", false);
    m_hub.ProcessSmartAdapterEvent();
    EXPECT_THAT(LogLines(Handler),
                ElementsAre(L"TraceIn|", Before, After, L"Verbose|SmartAdapterData: 3",
                            L"Information|Failed to CreateInstance of PlixNotification, hr = 0x800401F3",
                            L"TraceOut|"));
    EXPECT_FALSE(WasCalled("RoGetActivationFactory"));
}

TEST_F(SmartAdapterEventTest, Component_AnyStepFails_NoToast)
{
    const std::pair<const char*, unsigned> steps[] = {
        {"CLSIDFromProgID", 1}, {"CoCreateInstance", 2}, {"OleRun", 2}, {"PlixNotification::QueryInterface", 1}};
    for (const auto& [call, nth] : steps)
    {
        StartWatching();
        CallPlan::Instance().Fail(call, E_ACCESSDENIED, nth);
        m_hub.ProcessSmartAdapterEvent();
        EXPECT_TRUE(
            Logged(Level::Information, Handler, L"Failed to CreateInstance of PlixNotification, hr = 0x80070005"))
            << call;
        EXPECT_THAT(Toasts(), IsEmpty()) << call;
    }
    EXPECT_THAT(LiveObjects::All(), IsEmpty());
}

TEST_F(SmartAdapterEventTest, Suppressed_LogsAndAsksNothing)
{
    for (const wchar_t* policy : {L"SuppressAllNotifications", L"SuppressSmartAdapterNotifications"})
    {
        StartWatching();
        const SuppressPolicy suppress(policy);
        m_hub.ProcessSmartAdapterEvent();
        EXPECT_THAT(LogLines(Handler), ElementsAre(L"TraceIn|", L"Verbose|Notifications are suppressed", L"TraceOut|"));
        EXPECT_THAT(Calls(), IsEmpty());
    }
}

TEST_F(SmartAdapterEventTest, Policies_OfAllFirstAndOfTheAdapterOnlyWhenThatIsOff)
{
    Tests::AskedPolicies asked;
    TestSupport::PolicyKey policies(TestSupport::SuppressKeys[0]);
    policies.Text(L"SuppressAllNotifications", L"true");
    asked.Clear();
    m_hub.ProcessSmartAdapterEvent();
    EXPECT_THAT(asked.Names(), ElementsAre(L"SuppressAllNotifications"));
    policies.Text(L"SuppressAllNotifications", L"false");
    asked.Clear();
    m_hub.ProcessSmartAdapterEvent();
    EXPECT_THAT(asked.Names(), ElementsAre(L"SuppressAllNotifications", L"SuppressSmartAdapterNotifications"));
}

TEST_F(SmartAdapterEventTest, OtherPolicies_DoNotSilence)
{
    TestSupport::PolicyKey policies(TestSupport::SuppressKeys[0]);
    for (const wchar_t* policy : {L"SuppressUsbCNotifications", L"SuppressUsbCBiosNotifications",
                                  L"SuppressVeritorNotifications", L"SuppressAllLoggings"})
        policies.Text(policy, L"true");
    policies.Text(L"SuppressAllNotifications", L"1");
    m_hub.ProcessSmartAdapterEvent();
    EXPECT_EQ(Toasts().size(), 1u);
}

TEST_F(SmartAdapterEventTest, Policy_IsReadAgainOnEveryEvent)
{
    {
        const SuppressPolicy suppress(L"SuppressSmartAdapterNotifications");
        m_hub.ProcessSmartAdapterEvent();
    }
    EXPECT_THAT(Toasts(), IsEmpty());
    m_hub.ProcessSmartAdapterEvent();
    EXPECT_EQ(Toasts().size(), 1u);
}

TEST_F(SmartAdapterEventTest, Texts_AreCutToTheirBuffers)
{
    g_lstLoaded.clear();
    const Redirection<decltype(LoadStringW)> longTexts("LoadStringW", &LoadLongStringW);
    m_hub.ProcessSmartAdapterEvent();
    ASSERT_EQ(g_lstLoaded.size(), 2u);
    EXPECT_EQ(g_lstLoaded[0].m_nId, static_cast<UINT>(IDS_ADAPTER_OUTPUT_TOO_LOW));
    EXPECT_EQ(g_lstLoaded[0].m_nCapacity, 260);
    EXPECT_EQ(g_lstLoaded[1].m_nId, static_cast<UINT>(IDS_APP_TITLE));
    EXPECT_EQ(g_lstLoaded[1].m_nCapacity, 128);
    const auto toasts = Toasts();
    ASSERT_EQ(toasts.size(), 1u);
    EXPECT_EQ(toasts[0][0], std::string(127, 'x'));
    EXPECT_EQ(toasts[0][1], std::string(259, 'x'));
}

TEST_F(SmartAdapterEventTest, Texts_AreMissing_ToastIsEmpty)
{
    const Redirection<decltype(LoadStringW)> noTexts("LoadStringW", &LoadNoStringW);
    m_hub.ProcessSmartAdapterEvent();
    EXPECT_TRUE(Logged(Level::Information, Handler, L"szTitle: "));
    EXPECT_TRUE(Logged(Level::Information, Handler, L"szStatus: "));
    const auto toasts = Toasts();
    ASSERT_EQ(toasts.size(), 1u);
    EXPECT_EQ(toasts[0][0], "");
    EXPECT_EQ(toasts[0][1], "");
}

TEST_F(SmartAdapterEventTest, Handler_LeavesNothingBehind)
{
    m_hub.ProcessSmartAdapterEvent();
    Simulator::ToastDesktop::Instance().Reset();
    const TestSupport::BstrLedger ledger;
    m_hub.ProcessSmartAdapterEvent();
    Simulator::ToastDesktop::Instance().Reset();
    EXPECT_GE(ledger.Allocations(), 1u);
    EXPECT_THAT(ledger.LiveTexts(), IsEmpty());
    EXPECT_THAT(LiveObjects::All(), IsEmpty());
}
