#include "res/Resource.h"
#include "shared/LogLevel.h"
#include "simulator/doubles/WmiEventSource.h"
#include "simulator/model/Facts.h"
#include "simulator/model/LiveObjects.h"
#include "simulator/redirect/ImportRedirection.h"
#include "simulator/toasts/ToastActivation.h"
#include "simulator/toasts/ToastDesktop.h"
#include "tests/support/BstrLedger.h"
#include "tests/support/LogCapture.h"
#include "tests/support/PolicyKey.h"
#include "tests/wmievents/MachineTest.h"

#include <roapi.h>

#include <gmock/gmock.h>

#include <thread>
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
constexpr const char* Handler = "Notifications::OrvikWmiEvents::COrvikWmiEvents::ProcessSmartAdapterEvent";
constexpr const char* Title = "Orvik Notifications";

class SmartAdapterEventTest : public Tests::HubTest
{
protected:
    ~SmartAdapterEventTest() override { Simulator::ToastDesktop::Instance().Reset(); }

    void Process(const nlohmann::json& answer)
    {
        Answer("SmartAdapter.Status", answer);
        m_hub.ProcessSmartAdapterEvent();
    }
};

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
unsigned g_nFactories;

// Gives the first factory that is asked for; for each further one it says yes and gives nothing.
HRESULT WINAPI GiveOneFactory(HSTRING classId, REFIID iid, void** factory)
{
    *factory = nullptr;
    if (g_nFactories++ > 0)
        return S_OK;
    IActivationFactory* made = nullptr;
    if (const HRESULT hr = Simulator::GetToastActivationFactory(classId, &made); FAILED(hr))
        return hr;
    const HRESULT hr = made->QueryInterface(iid, factory);
    made->Release();
    return hr;
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
    EXPECT_THAT(LogLines(Handler),
                ElementsAre(L"TraceIn|", L"Verbose|SmartAdapterData: 3", L"Information|szTitle: Orvik Notifications",
                            L"Information|szStatus: Smart AC adapter power output is too low for this computer.",
                            L"TraceOut|"));
}

TEST_F(SmartAdapterEventTest, Status_AnyOther_OnlyLogsTheStatus)
{
    for (const long status : {0L, 1L, 6L, 7L, -1L, 2147483647L, -2147483647L - 1})
    {
        StartWatching();
        Process({{"i4", status}});
        EXPECT_THAT(LogLines(Handler),
                    ElementsAre(L"TraceIn|", L"Verbose|SmartAdapterData: " + std::to_wstring(status), L"TraceOut|"));
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

TEST_F(SmartAdapterEventTest, Component_IsCreatedAsItsProgIdSaysAndGivenBack)
{
    m_hub.ProcessSmartAdapterEvent();
    EXPECT_EQ(Details("CLSIDFromProgID")["progid"], "orvikplixutils.orvikPlixNotification");
    EXPECT_EQ(Details("CoCreateInstance", 2)["class"], "PlixNotification");
    EXPECT_EQ(Details("CoCreateInstance", 2)["context"], 23);
    EXPECT_EQ(LiveObjects::Count("PlixNotification"), 0);
    EXPECT_EQ(LiveObjects::Count("PlixCommand"), 0);
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

TEST_F(SmartAdapterEventTest, NoPlatformLibrary_OnlyThatLine)
{
    Facts::Instance().Set("/platform/registered", false);
    m_hub.ProcessSmartAdapterEvent();
    EXPECT_THAT(LogLines(Handler),
                ElementsAre(L"TraceIn|", L"Information|Create Plix instance cmd failed.  HR=0X80040154", L"TraceOut|"));
    EXPECT_THAT(Toasts(), IsEmpty());
}

TEST_F(SmartAdapterEventTest, Command_Fails_LogsByItsCode)
{
    const std::pair<HRESULT, const wchar_t*> failures[] = {
        {static_cast<HRESULT>(0x80000003), L"Invalid Command SmartAdapter.Status. hr = 0x80000003"},
        {E_INVALIDARG, L"Exception occurred when calling SmartAdapter.Status, [hr:0x80070057]"},
        {E_FAIL, L"Exception occurred when calling SmartAdapter.Status, [hr:0x80004005]"}};
    for (const auto& [hr, line] : failures)
    {
        StartWatching();
        Fail("SmartAdapter.Status", hr);
        m_hub.ProcessSmartAdapterEvent();
        EXPECT_THAT(LogLines(Handler), ElementsAre(L"TraceIn|", std::wstring(L"Information|") + line, L"TraceOut|"));
        EXPECT_THAT(Toasts(), IsEmpty());
    }
    EXPECT_THAT(LiveObjects::All(), IsEmpty());
}

TEST_F(SmartAdapterEventTest, Command_AnswersAnotherNumericType_IsConverted)
{
    for (const nlohmann::json& answer :
         std::vector<nlohmann::json>{{{"i2", 3}}, {{"ui4", 3}}, {{"int", 3}}, {{"r8", 3.0}}, {{"bstr", "3"}}})
    {
        StartWatching();
        Process(answer);
        EXPECT_TRUE(Logged(Level::Verbose, Handler, L"SmartAdapterData: 3")) << answer;
        EXPECT_EQ(Toasts().size(), 1u) << answer;
    }
}

TEST_F(SmartAdapterEventTest, Command_AnswersNothing_IsStatusZero)
{
    Process({{"empty", true}});
    EXPECT_TRUE(Logged(Level::Verbose, Handler, L"SmartAdapterData: 0"));
    EXPECT_THAT(Toasts(), IsEmpty());
}

TEST_F(SmartAdapterEventTest, Command_AnswersWhatIsNoNumber_LogsTheConversionsCode)
{
    for (const nlohmann::json& answer :
         std::vector<nlohmann::json>{{{"unknown", true}}, {{"bstr", "three"}}, {{"ui1-array", {1, 2}}}})
    {
        StartWatching();
        Process(answer);
        EXPECT_TRUE(Logged(Level::Information, Handler,
                           L"Exception occurred when calling SmartAdapter.Status, [hr:0x80020005]"))
            << answer;
        EXPECT_THAT(Toasts(), IsEmpty());
    }
    EXPECT_THAT(LiveObjects::All(), IsEmpty());
}

TEST_F(SmartAdapterEventTest, Component_NotRegistered_NoToast)
{
    Facts::Instance().Set("/notification/registered", false);
    m_hub.ProcessSmartAdapterEvent();
    EXPECT_THAT(LogLines(Handler),
                ElementsAre(L"TraceIn|", L"Verbose|SmartAdapterData: 3",
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

TEST_F(SmartAdapterEventTest, Toast_Fails_EndsQuietlyAndTheNextEventIsShown)
{
    CallPlan::Instance().Fail("IToastNotifier::Show", E_FAIL);
    m_hub.ProcessSmartAdapterEvent();
    EXPECT_THAT(Toasts(), IsEmpty());
    EXPECT_EQ(LogLines(Handler).size(), 5u);
    m_hub.ProcessSmartAdapterEvent();
    EXPECT_EQ(Toasts().size(), 1u);
}

TEST_F(SmartAdapterEventTest, Toast_RaisesAnError_DoesNotLeaveTheHandler)
{
    g_nFactories = 0;
    const Redirection<decltype(RoGetActivationFactory)> emptyHanded("RoGetActivationFactory", &GiveOneFactory);
    ASSERT_EQ(m_hub.RegisterSmartAdapterEvent(L""), S_OK);
    EXPECT_THAT(Simulator::WmiEventSource::Raise("orvikBEvnt", {{"EventID", 3}}), ElementsAre(S_OK));
    EXPECT_EQ(g_nFactories, 2u);
    EXPECT_TRUE(
        Logged(Level::Information, Handler, L"Exception occurred when calling SmartAdapter.Status, [hr:0x80004003]"));
    EXPECT_THAT(Toasts(), IsEmpty());
}

TEST_F(SmartAdapterEventTest, Event_FromFirmware_BecomesAToast)
{
    ASSERT_EQ(m_hub.RegisterSmartAdapterEvent(L""), S_OK);
    Simulator::WmiEventSource::Raise("orvikBEvnt", {{"EventID", 3}});
    EXPECT_EQ(Toasts().size(), 1u);
    EXPECT_TRUE(Logged(Level::Verbose, Handler, L"SmartAdapterData: 3"));
}

TEST_F(SmartAdapterEventTest, Events_AtTheSameTime_ShowAToastEach)
{
    ASSERT_EQ(m_hub.RegisterSmartAdapterEvent(L""), S_OK);
    Simulator::WmiEventSource::RaiseFromThreads({.m_strClass = "orvikBEvnt", .m_lstObjects = {{{"EventID", 3}}}}, 4, 5);
    EXPECT_EQ(Toasts().size(), 20u);
}

TEST_F(SmartAdapterEventTest, Event_WhileACommandHangs_TheNextOneIsHandled)
{
    ASSERT_EQ(m_hub.RegisterSmartAdapterEvent(L""), S_OK);
    Facts::Instance().Set("/commands/SmartAdapter.Status/hang", true);
    Simulator::RunningDelivery hanging({.m_strClass = "orvikBEvnt", .m_lstObjects = {{{"EventID", 3}}}});
    while (Commands().size() < 2)
        Sleep(1);
    const SuppressPolicy suppress(L"SuppressSmartAdapterNotifications");
    Simulator::WmiEventSource::Raise("orvikBEvnt", {{"EventID", 3}});
    EXPECT_TRUE(Logged(Level::Verbose, Handler, L"Notifications are suppressed"));
    EXPECT_FALSE(hanging.IsDone());
    Facts::Instance().Set("/commands/SmartAdapter.Status/hang", false);
    EXPECT_THAT(hanging.Results(), ElementsAre(S_OK));
    EXPECT_EQ(Toasts().size(), 1u);
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
