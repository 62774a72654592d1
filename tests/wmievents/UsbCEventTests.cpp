#include "shared/LogLevel.h"
#include "simulator/doubles/JsonVariant.h"
#include "simulator/model/LiveObjects.h"
#include "tests/support/LogCapture.h"
#include "tests/support/PolicyKey.h"
#include "tests/wmievents/AskedPolicies.h"
#include "tests/wmievents/UsbCTest.h"

#include <comdef.h>

#include <gmock/gmock.h>

#include <algorithm>
#include <utility>

using Simulator::CallPlan;
using Simulator::Facts;
using Simulator::LiveObjects;
using Simulator::RunningDelivery;
using Simulator::WmiEventSource;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::Logged;
using TestSupport::LogLines;
using TestSupport::SuppressPolicy;
namespace Level = Orvik::Shared::Level;

namespace
{
class UsbCEventTest : public Tests::UsbCTest
{
protected:
    HRESULT Process(const nlohmann::json& data, int eventId = EventId)
    {
        _variant_t variant;
        EXPECT_EQ(Simulator::VariantFromJson(data, variant), S_OK);
        return m_hub.ProcessUSBCWMIEvent(eventId, &variant);
    }
};

constexpr const char* g_shown = "The device plugged into the USB-C port cannot charge your PC.";
constexpr const char* g_showAll = "Notifications::OrvikNotifications::CNotificationsHandler::ShowUsbCMessages";
constexpr const wchar_t* g_notThisEvent = L"Information|Not an event with USBC event id. should not see this.";
} // namespace

TEST_F(UsbCEventTest, Event_OfPortTwo_ShowsThatPortsMessages)
{
    ASSERT_EQ(m_hub.RegisterUSBCWMIEvent(L""), S_OK);
    StartWatching();
    EXPECT_THAT(WmiEventSource::Raise(Event(2)), ElementsAre(S_OK));
    EXPECT_THAT(AskedPorts(), ElementsAre(2));
    ASSERT_EQ(Toasts().size(), 1u);
    EXPECT_EQ(Toasts()[0][0], "USB Type-C? Connector");
    EXPECT_EQ(Toasts()[0][1], g_shown);
    EXPECT_THAT(LogLines(Handler),
                ElementsAre(L"TraceIn|", L"Verbose|Received USBC event", L"Verbose|USB Type-C event for iPortID: 2.",
                            L"TraceOut|hr: 0x00000000"));
    EXPECT_THAT(LogLines(g_showAll),
                ElementsAre(L"TraceIn|portNumber = 2", L"Verbose|message #0, message id = 2", L"TraceOut|"));
    for (const auto& record : TestSupport::LogRecords())
        EXPECT_NE(record.m_dwThreadId, GetCurrentThreadId()) << record;
}

TEST_F(UsbCEventTest, Event_HandlerIsNewAndInitialisedEachTime)
{
    for (int i = 0; i < 2; ++i)
    {
        StartWatching();
        EXPECT_EQ(Process({{"ui1", 2}}), S_OK);
        EXPECT_THAT(Commands(), ElementsAre("Platform.MachineID", "Platform.USBC.Supported"));
        EXPECT_EQ(LogLines("Notifications::OrvikNotifications::CNotificationsHandler::Init").size(), 7u);
        EXPECT_EQ(Toasts().size(), 1u);
    }
}

TEST_F(UsbCEventTest, Port_IsTheFirstByteOfTheValue)
{
    const std::pair<nlohmann::json, int> values[] = {{{{"ui1", 2}}, 2},
                                                     {{{"i4", 2}}, 2},
                                                     {{{"i4", 0x01020302}}, 2},
                                                     {{{"i4", -1}}, 255},
                                                     {{{"i2", 0x0705}}, 5},
                                                     {{{"ui1", 0}}, 0},
                                                     {{{"bool", true}}, 255},
                                                     {{{"null-bstr", true}}, 0},
                                                     {{{"i8", 0x1FF}}, 255},
                                                     {{{"ui4", 3}}, 3},
                                                     {{{"raw", {{"vt", 4242}, {"value", 9}}}}, 9}};
    for (const auto& [value, port] : values)
    {
        StartWatching();
        VARIANT variant{};
        ASSERT_EQ(Simulator::VariantFromJson(value, variant), S_OK);
        EXPECT_EQ(m_hub.ProcessUSBCWMIEvent(EventId, &variant), S_OK);
        EXPECT_THAT(AskedPorts(), ElementsAre(port)) << value;
        EXPECT_TRUE(Logged(Level::Verbose, Handler, L"USB Type-C event for iPortID: " + std::to_wstring(port) + L"."));
    }
}

TEST_F(UsbCEventTest, Data_Missing_IsAnInvalidArgument)
{
    EXPECT_EQ(m_hub.ProcessUSBCWMIEvent(EventId, nullptr), E_INVALIDARG);
    EXPECT_THAT(LogLines(Handler),
                ElementsAre(L"TraceIn|", L"Verbose|Received USBC event", g_notThisEvent, L"TraceOut|hr: 0x80070057"));
    EXPECT_THAT(Calls(), IsEmpty());
}

TEST_F(UsbCEventTest, Event_OfAnotherNumber_IsAnInvalidArgument)
{
    for (const int eventId : {131072, 131074, 1, 3, 0, -1})
    {
        StartWatching();
        EXPECT_EQ(Process({{"ui1", 2}}, eventId), E_INVALIDARG);
        EXPECT_THAT(LogLines(Handler), ElementsAre(L"TraceIn|", L"Verbose|Received USBC event", g_notThisEvent,
                                                   L"TraceOut|hr: 0x80070057"));
        EXPECT_THAT(Calls(), IsEmpty());
    }
}

TEST_F(UsbCEventTest, Suppressed_IsLoggedAndNothingIsAskedOrShown)
{
    for (const wchar_t* policy : {L"SuppressAllNotifications", L"SuppressUsbCBiosNotifications"})
    {
        StartWatching();
        const SuppressPolicy suppress(policy);
        EXPECT_EQ(Process({{"ui1", 2}}), S_OK);
        EXPECT_THAT(LogLines(Handler),
                    ElementsAre(L"TraceIn|", L"Verbose|Received USBC event",
                                L"Verbose|USB Type-C event for iPortID: 2.", L"TraceOut|hr: 0x00000000"));
        EXPECT_THAT(Calls(), IsEmpty());
        EXPECT_THAT(Toasts(), IsEmpty());
    }
}

TEST_F(UsbCEventTest, Policies_OfAllFirstAndOfTheFirmwaresMessagesOnlyWhenThatIsOff)
{
    Tests::AskedPolicies asked;
    TestSupport::PolicyKey policies(TestSupport::SuppressKeys[0]);
    policies.Text(L"SuppressAllNotifications", L"true");
    asked.Clear();
    EXPECT_EQ(Process({{"ui1", 2}}), S_OK);
    EXPECT_THAT(asked.Names(), ElementsAre(L"SuppressAllNotifications"));
    policies.Text(L"SuppressAllNotifications", L"false");
    policies.Text(L"SuppressUsbCBiosNotifications", L"true");
    asked.Clear();
    EXPECT_EQ(Process({{"ui1", 2}}), S_OK);
    EXPECT_THAT(asked.Names(), ElementsAre(L"SuppressAllNotifications", L"SuppressUsbCBiosNotifications"));
}

TEST_F(UsbCEventTest, Policies_OfOthers_DoNotSilence)
{
    TestSupport::PolicyKey policies(TestSupport::SuppressKeys[0]);
    for (const wchar_t* policy : {L"SuppressUsbCNotifications", L"SuppressSmartAdapterNotifications",
                                  L"SuppressVeritorNotifications", L"SuppressAllLoggings"})
        policies.Text(policy, L"true");
    EXPECT_EQ(Process({{"ui1", 2}}), S_OK);
    EXPECT_EQ(Toasts().size(), 1u);
}

TEST_F(UsbCEventTest, Policy_IsReadAgainOnEveryEvent)
{
    {
        const SuppressPolicy suppress(L"SuppressUsbCBiosNotifications");
        EXPECT_EQ(Process({{"ui1", 2}}), S_OK);
    }
    EXPECT_THAT(Toasts(), IsEmpty());
    EXPECT_EQ(Process({{"ui1", 2}}), S_OK);
    EXPECT_EQ(Toasts().size(), 1u);
}

TEST_F(UsbCEventTest, Platform_SaysUsbCIsNotSupported_MessagesAreShownAllTheSame)
{
    Answer("Platform.USBC.Supported", {{"bool", false}});
    EXPECT_EQ(Process({{"ui1", 2}}), S_OK);
    EXPECT_EQ(Toasts().size(), 1u);
}

TEST_F(UsbCEventTest, Platform_Fails_EndsWithoutAToastAndTheNextEventIsShown)
{
    for (const char* call : {"CoCreateInstance", "IPlixCommand::ExecuteWithInput", "CLSIDFromProgID"})
    {
        StartWatching();
        CallPlan::Instance().Fail(call, E_FAIL, 1, Simulator::Repeat::Always);
        EXPECT_EQ(Process({{"ui1", 2}}), S_OK) << call;
        EXPECT_THAT(Toasts(), IsEmpty()) << call;
        StartWatching();
        EXPECT_EQ(Process({{"ui1", 2}}), S_OK);
        EXPECT_EQ(Toasts().size(), 1u) << call;
    }
    Simulator::ToastDesktop::Instance().Reset();
    EXPECT_THAT(LiveObjects::All(), IsEmpty());
}

TEST_F(UsbCEventTest, Delivery_ForwarderLeavesTheResultBehind)
{
    ASSERT_EQ(m_hub.RegisterUSBCWMIEvent(L""), S_OK);
    StartWatching();
    // Matched by its batch, named otherwise in the event itself.
    Simulator::WmiEventBatch batch = Event(2);
    batch.m_nEventId = EventId;
    batch.m_lstObjects[0]["EventID"] = 7;
    EXPECT_THAT(WmiEventSource::Raise(batch), ElementsAre(S_OK));
    EXPECT_TRUE(Logged(Level::Information, Handler, L"Not an event with USBC event id. should not see this."));
    EXPECT_THAT(Toasts(), IsEmpty());
    EXPECT_THAT(WmiEventSource::Raise(Event(2)), ElementsAre(S_OK));
    EXPECT_EQ(Toasts().size(), 1u);
}

TEST_F(UsbCEventTest, Delivery_FromSeveralThreads_ShowsAToastEach)
{
    ASSERT_EQ(m_hub.RegisterUSBCWMIEvent(L""), S_OK);
    StartWatching();
    WmiEventSource::RaiseFromThreads(Event(2), 4, 5);
    EXPECT_EQ(Toasts().size(), 20u);
}

TEST_F(UsbCEventTest, Delivery_WhileACommandHangs_HandlerLivesUntilItIsShown)
{
    ASSERT_EQ(m_hub.RegisterUSBCWMIEvent(L""), S_OK);
    StartWatching();
    Facts::Instance().Set("/commands/Platform.USBC.Messages/hang", true);
    RunningDelivery hanging(Event(2));
    for (int i = 0; i < 2000 && AskedPorts().empty(); ++i)
        Sleep(5);
    EXPECT_FALSE(hanging.IsDone());
    const SuppressPolicy suppress(L"SuppressUsbCBiosNotifications");
    EXPECT_THAT(WmiEventSource::Raise(Event(1)), ElementsAre(S_OK));
    EXPECT_TRUE(Logged(Level::Verbose, Handler, L"USB Type-C event for iPortID: 1."));
    Facts::Instance().Set("/commands/Platform.USBC.Messages/hang", false);
    EXPECT_THAT(hanging.Results(), ElementsAre(S_OK));
    EXPECT_EQ(Toasts().size(), 1u);
}
