#include "shared/LogLevel.h"
#include "simulator/doubles/WmiEventSource.h"
#include "simulator/model/Facts.h"
#include "simulator/model/LiveObjects.h"
#include "simulator/redirect/ImportRedirection.h"
#include "simulator/toasts/ToastDesktop.h"
#include "tests/support/BstrLedger.h"
#include "tests/support/LogCapture.h"
#include "tests/support/PolicyKey.h"
#include "tests/wmievents/AppDataFolder.h"
#include "tests/wmievents/EmptyHandedCommand.h"
#include "tests/wmievents/FailingBstr.h"
#include "tests/wmievents/MachineTest.h"
#include "wmievents/WmiEventsState.h"

#include <comdef.h>
#include <roapi.h>

#include <gmock/gmock.h>

using Notifications::OrvikWmiEvents::g_szPublicEventClass;
using Simulator::CallPlan;
using Simulator::Facts;
using Simulator::LiveObjects;
using Simulator::WmiEventSource;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::Logged;
using TestSupport::LogLines;
namespace Level = Orvik::Shared::Level;

namespace
{
constexpr const char* Handler = "Notifications::OrvikWmiEvents::COrvikWmiEvents::ProcessWMIEvent";
constexpr const wchar_t* Before = L"TraceIn|Before Calling F10Setting.WMIEvents.Enabled";
constexpr const wchar_t* After = L"TraceOut|After Calling F10Setting.WMIEvents.Enabled";

class PublicEventTest : public Tests::HubTest
{
protected:
    ~PublicEventTest() override { Simulator::ToastDesktop::Instance().Reset(); }

    void Process(const wchar_t* eventClass, const wchar_t* description)
    {
        _variant_t data(description);
        m_hub.ProcessWMIEvent(eventClass, &data);
    }

    // The text of the one toast that is shown for this value.
    std::string TextShownFor(VARIANT* data)
    {
        StartWatching();
        m_hub.ProcessWMIEvent(g_szPublicEventClass, data);
        const auto toasts = Toasts();
        EXPECT_EQ(toasts.size(), 1u);
        return toasts.empty() ? "no toast" : toasts[0][1];
    }

    // The handler got no command object: this is the only line.
    static void ExpectOnlyCreationFailed(const std::wstring& code)
    {
        EXPECT_THAT(
            LogLines(Handler),
            ElementsAre(L"TraceIn|", L"Information|Create Plix instance cmd failed.  HR=0X" + code, L"TraceOut|"));
        EXPECT_EQ(TestSupport::OperationalLines().size(), 1u);
        EXPECT_THAT(Commands(), IsEmpty());
        EXPECT_THAT(Toasts(), IsEmpty());
    }

    Tests::AppDataFolder m_appData;
};

HRESULT WINAPI RaiseInstead(HSTRING, REFIID, void**)
{
    throw _com_error(E_ACCESSDENIED);
}
} // namespace

TEST_F(PublicEventTest, Event_OfThePublicClass_ShowsItsDescription)
{
    Process(L"OrvikBIOS_BIOSEvent", L"Lid opened");
    const auto toasts = Toasts();
    ASSERT_EQ(toasts.size(), 1u);
    EXPECT_EQ(toasts[0][0], "Orvik Notifications");
    EXPECT_EQ(toasts[0][1], "Lid opened");
    EXPECT_THAT(LogLines(Handler), ElementsAre(L"TraceIn|", Before, After, L"TraceOut|"));
}

TEST_F(PublicEventTest, Event_InOtherLetterCase_IsShown)
{
    Process(L"orvikbios_biosevent", L"Lid opened");
    EXPECT_EQ(Toasts().size(), 1u);
}

TEST_F(PublicEventTest, Event_OfAnotherClass_IsNotShown)
{
    for (const wchar_t* eventClass : {L"", L"OrvikBIOS_BIOSEven", L"OrvikBIOS_BIOSEvent2"})
        Process(eventClass, L"Lid opened");
    EXPECT_THAT(Toasts(), IsEmpty());
    EXPECT_EQ(Commands().size(), 3u);
    EXPECT_FALSE(std::filesystem::exists(m_appData.Shortcut()));
}

TEST_F(PublicEventTest, Event_ShortcutIsMadeBeforeTheToast)
{
    EXPECT_FALSE(std::filesystem::exists(m_appData.Shortcut()));
    Process(L"OrvikBIOS_BIOSEvent", L"Lid opened");
    EXPECT_TRUE(std::filesystem::exists(m_appData.Shortcut()));
    const auto lines = TestSupport::LogLines();
    const auto position = [&](const wchar_t* line)
    { return std::find(lines.begin(), lines.end(), line) - lines.begin(); };
    EXPECT_LT(position(L"TraceIn|DesktopToast::TryCreateShortcut|"), position(L"TraceIn|DesktopToast::DisplayToast|"));
}

TEST_F(PublicEventTest, Event_ShortcutCannotBeMade_ToastIsShownAllTheSame)
{
    std::filesystem::remove_all(m_appData.Shortcut().parent_path());
    Process(L"OrvikBIOS_BIOSEvent", L"Lid opened");
    EXPECT_EQ(Toasts().size(), 1u);
}

TEST_F(PublicEventTest, Option_IsAskedFirst)
{
    Process(L"OrvikBIOS_BIOSEvent", L"Lid opened");
    EXPECT_THAT(Commands(), ElementsAre("F10Setting.WMIEvents.Enabled"));
    EXPECT_EQ(LiveObjects::Count("PlixCommand"), 0);
}

TEST_F(PublicEventTest, Option_OffOrOfAnotherType_NothingIsShownAndNoShortcutMade)
{
    for (const nlohmann::json& answer : std::vector<nlohmann::json>{
             {{"bool", false}}, {{"i4", 1}}, {{"bstr", "true"}}, {{"empty", true}}, {{"unknown", true}}})
    {
        StartWatching();
        Answer("F10Setting.WMIEvents.Enabled", answer);
        Process(L"OrvikBIOS_BIOSEvent", L"Lid opened");
        EXPECT_THAT(Toasts(), IsEmpty()) << answer;
        EXPECT_THAT(LogLines(Handler), ElementsAre(L"TraceIn|", Before, After, L"TraceOut|")) << answer;
        EXPECT_THAT(TestSupport::OperationalLines(), IsEmpty()) << answer;
    }
    EXPECT_FALSE(std::filesystem::exists(m_appData.Shortcut()));
    EXPECT_THAT(LogLines("DesktopToast::TryCreateShortcut"), IsEmpty());
}

TEST_F(PublicEventTest, Option_CommandFails_IsLogged)
{
    Fail("F10Setting.WMIEvents.Enabled", static_cast<HRESULT>(0x80000003));
    Process(L"OrvikBIOS_BIOSEvent", L"Lid opened");
    EXPECT_THAT(
        LogLines(Handler),
        ElementsAre(L"TraceIn|", Before, L"Information|Exception when call Popup. hr = 0x80000003", L"TraceOut|"));
    EXPECT_THAT(Toasts(), IsEmpty());
    EXPECT_THAT(LiveObjects::All(), IsEmpty());
}

TEST_F(PublicEventTest, Option_NameCannotBeAllocated_IsLogged)
{
    _variant_t data(L"Lid opened");
    const Tests::FailingBstr noMemory(1);
    m_hub.ProcessWMIEvent(g_szPublicEventClass, &data);
    EXPECT_TRUE(Logged(Level::Information, Handler, L"Exception when call Popup. hr = 0x8007000E"));
}

TEST_F(PublicEventTest, NoPlatformLibrary_OnlyThatLine)
{
    Facts::Instance().Set("/platform/registered", false);
    Process(L"OrvikBIOS_BIOSEvent", L"Lid opened");
    ExpectOnlyCreationFailed(L"80040154");
}

TEST_F(PublicEventTest, NoApartment_CodeHasSmallLetters)
{
    CallPlan::Instance().Fail("CoCreateInstance", CO_E_NOTINITIALIZED);
    Process(L"OrvikBIOS_BIOSEvent", L"Lid opened");
    ExpectOnlyCreationFailed(L"800401f0");
}

TEST_F(PublicEventTest, SuccessWithoutACommandObject_IsAFailure)
{
    const Tests::EmptyHandedCommand emptyHanded;
    StartWatching();
    Process(L"OrvikBIOS_BIOSEvent", L"Lid opened");
    ExpectOnlyCreationFailed(L"0");
}

TEST_F(PublicEventTest, CommandObject_IsGivenBackBeforeAnythingIsShown)
{
    Process(L"OrvikBIOS_BIOSEvent", L"Lid opened");
    std::vector<std::string> order;
    for (const auto& entry : Simulator::Journal::Instance().Entries())
    {
        if (entry.m_strSubject == "RoGetActivationFactory" ||
            (entry.m_strSubject == "PlixCommand::Release" && entry.m_details.at("count") == 0))
            order.push_back(entry.m_strSubject);
    }
    EXPECT_THAT(order, ElementsAre("PlixCommand::Release", "RoGetActivationFactory", "RoGetActivationFactory"));
}

TEST_F(PublicEventTest, Policies_AreNotConsulted)
{
    const TestSupport::SuppressPolicy suppress(L"SuppressAllNotifications");
    Process(L"OrvikBIOS_BIOSEvent", L"Lid opened");
    EXPECT_EQ(Toasts().size(), 1u);
}

TEST_F(PublicEventTest, NotificationComponent_IsNotNeeded)
{
    Facts::Instance().Set("/notification/registered", false);
    Process(L"OrvikBIOS_BIOSEvent", L"Lid opened");
    EXPECT_EQ(Toasts().size(), 1u);
    EXPECT_FALSE(WasCalled("CLSIDFromProgID"));
}

TEST_F(PublicEventTest, Description_NullText_IsEmpty)
{
    VARIANT data{};
    data.vt = VT_BSTR;
    EXPECT_EQ(TextShownFor(&data), "");
}

TEST_F(PublicEventTest, Description_OfAnotherType_IsEmptyAndNotFollowed)
{
    VARIANT data{};
    for (const int type : {+VT_EMPTY, +VT_I4, +VT_UNKNOWN, VT_ARRAY | VT_UI1, VT_BYREF | VT_BSTR, 4242})
    {
        data.vt = static_cast<VARTYPE>(type);
        data.llVal = 0x1234;
        EXPECT_EQ(TextShownFor(&data), "") << type;
    }
}

TEST_F(PublicEventTest, Description_NoValueAtAll_IsEmpty)
{
    EXPECT_EQ(TextShownFor(nullptr), "");
}

TEST_F(PublicEventTest, Description_IsShownWhole)
{
    const std::wstring text(2000, L'x');
    _variant_t data(text.c_str());
    EXPECT_EQ(TextShownFor(&data), std::string(2000, 'x'));
}

TEST_F(PublicEventTest, Toast_Fails_TheNextEventIsShown)
{
    CallPlan::Instance().Fail("RoGetActivationFactory", E_FAIL);
    Process(L"OrvikBIOS_BIOSEvent", L"one");
    EXPECT_THAT(Toasts(), IsEmpty());
    Process(L"OrvikBIOS_BIOSEvent", L"two");
    EXPECT_EQ(Toasts().size(), 1u);
}

TEST_F(PublicEventTest, Toast_RaisesAnError_IsLoggedAndTheNextEventIsShown)
{
    {
        const Simulator::Redirection<decltype(RoGetActivationFactory)> raising("RoGetActivationFactory", &RaiseInstead);
        Process(L"OrvikBIOS_BIOSEvent", L"one");
    }
    EXPECT_TRUE(Logged(Level::Information, Handler, L"Exception when call Popup. hr = 0x80070005"));
    EXPECT_THAT(Toasts(), IsEmpty());
    Process(L"OrvikBIOS_BIOSEvent", L"two");
    EXPECT_EQ(Toasts().size(), 1u);
}

TEST_F(PublicEventTest, FromFirmware_ReachesTheScreen)
{
    ASSERT_EQ(m_hub.RegisterGPIOWMIEvent(), S_OK);
    EXPECT_THAT(WmiEventSource::Raise("OrvikBIOS_BIOSEvent", {{"Description", "Lid opened"}}), ElementsAre(S_OK));
    EXPECT_THAT(WmiEventSource::Raise("OrvikBIOS_BIOSEvent", {{"Description", 3}}), ElementsAre(S_OK));
    EXPECT_THAT(WmiEventSource::Raise("OrvikBIOS_BIOSEvent", nlohmann::json::object()), ElementsAre(S_OK));
    const auto toasts = Toasts();
    ASSERT_EQ(toasts.size(), 2u);
    EXPECT_EQ(toasts[0][1], "Lid opened");
    EXPECT_EQ(toasts[1][1], "");
    EXPECT_TRUE(std::filesystem::exists(m_appData.Shortcut()));
}

TEST_F(PublicEventTest, FromFirmware_OptionOff_ShowsNothing)
{
    ASSERT_EQ(m_hub.RegisterGPIOWMIEvent(), S_OK);
    Answer("F10Setting.WMIEvents.Enabled", {{"bool", false}});
    WmiEventSource::Raise("OrvikBIOS_BIOSEvent", {{"Description", "Lid opened"}});
    EXPECT_THAT(Toasts(), IsEmpty());
}

TEST_F(PublicEventTest, FromFirmware_BothKindsAtTheSameTime_EachIsShown)
{
    ASSERT_EQ(m_hub.RegisterGPIOWMIEvent(), S_OK);
    ASSERT_EQ(m_hub.RegisterSmartAdapterEvent(L""), S_OK);
    Simulator::RunningDelivery publicEvent(
        {.m_strClass = "OrvikBIOS_BIOSEvent", .m_lstObjects = {{{"Description", "Lid opened"}}}});
    Simulator::RunningDelivery adapterEvent({.m_strClass = "orvikBEvnt", .m_lstObjects = {{{"EventID", 3}}}});
    EXPECT_THAT(publicEvent.Results(), ElementsAre(S_OK));
    EXPECT_THAT(adapterEvent.Results(), ElementsAre(S_OK));
    EXPECT_EQ(Toasts().size(), 2u);
}

TEST_F(PublicEventTest, Handler_LeavesNothingBehind)
{
    _variant_t data(L"Lid opened");
    m_hub.ProcessWMIEvent(g_szPublicEventClass, &data);
    Simulator::ToastDesktop::Instance().Reset();
    const TestSupport::BstrLedger ledger;
    m_hub.ProcessWMIEvent(g_szPublicEventClass, &data);
    Simulator::ToastDesktop::Instance().Reset();
    EXPECT_GE(ledger.Allocations(), 1u);
    EXPECT_THAT(ledger.LiveTexts(), IsEmpty());
    EXPECT_THAT(LiveObjects::All(), IsEmpty());
}
