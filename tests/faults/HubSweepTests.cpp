#include "shared/LogLevel.h"
#include "simulator/doubles/WmiEventSource.h"
#include "simulator/toasts/ToastDesktop.h"
#include "tests/faults/FaultSweep.h"
#include "tests/support/LogCapture.h"
#include "tests/wmievents/AppDataFolder.h"
#include "tests/wmievents/MachineTest.h"
#include "wmievents/WmiEventsState.h"

#include <comdef.h>

#include <gmock/gmock.h>

#include <memory>

using testing::AnyOf;
using testing::Contains;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::StartsWith;
using TestSupport::LogLines;

namespace
{
constexpr const char* g_pHub = "Notifications::OrvikWmiEvents::COrvikWmiEvents::";

// The hub's own operations, each of whose platform calls fails in turn. None lets an exception out.
class HubSweep : public Tests::MachineTest
{
protected:
    ~HubSweep() override { Simulator::ToastDesktop::Instance().Reset(); }

    // A registration: its hub is new each time, and its event arrives at the handler once it worked.
    std::vector<std::string> SweepRegistration(const char* name, const std::function<HRESULT(Tests::HubProbe&)>& call,
                                               const Simulator::WmiEventBatch& event)
    {
        std::unique_ptr<Tests::HubProbe> hub;
        HRESULT result = E_UNEXPECTED;
        const std::string operation = g_pHub + std::string(name);
        m_sweep.m_operation = [&]
        {
            if (!hub)
                hub = std::make_unique<Tests::HubProbe>();
            EXPECT_NO_THROW(result = call(*hub));
        };
        m_sweep.m_checkFailure = [&](const FaultStep& step)
        {
            if (result == S_OK)
            {
                // COM's question about a running state may be refused, and the hub goes on without an apartment.
                EXPECT_THAT(step.m_strCall, AnyOf("PlixCommand::QueryInterface", "CoInitialize", "CoUninitialize"));
                return;
            }
            EXPECT_THAT(result, AnyOf(step.m_hr, E_OUTOFMEMORY));
            EXPECT_THAT(LogLines(operation), Contains(AnyOf(StartsWith(L"Information|Create Plix instance cmd failed."),
                                                            StartsWith(L"Information|Invalid Command "),
                                                            StartsWith(L"Information|Exception occurred when calling "),
                                                            StartsWith(L"Information|Failed to register for "),
                                                            StartsWith(L"Verbose|Failed to register for "))));
        };
        m_sweep.m_checkSuccess = [&]
        {
            EXPECT_EQ(result, S_OK);
            EXPECT_THAT(Simulator::WmiEventSource::Raise(event), testing::ElementsAre(S_OK));
        };
        m_sweep.m_cleanUp = [&]
        {
            hub.reset();
            Simulator::ToastDesktop::Instance().Reset();
        };
        return m_sweep.Run();
    }

    // A handler, which is called on the thread of the test; when it worked, a toast is shown.
    std::vector<std::string> SweepHandler(const std::function<void(Tests::HubProbe&)>& handler)
    {
        Tests::HubProbe hub;
        m_sweep.m_operation = [&] { EXPECT_NO_THROW(handler(hub)); };
        // Without a toast some record tells why: the handler's own or the toast's result.
        m_sweep.m_checkFailure = [&](const FaultStep&)
        {
            if (!Toasts().empty())
                return;
            EXPECT_THAT(TestSupport::LogLines(),
                        Contains(AnyOf(HasSubstr(L"|Create Plix instance cmd failed."), HasSubstr(L"|Invalid Command "),
                                       HasSubstr(L"|Exception "), HasSubstr(L"|Failed to CreateInstance of "),
                                       HasSubstr(L"|xml.GetDocument() failed"),
                                       HasSubstr(L"|pIPlixNotification.CreateInstance of "),
                                       StartsWith(L"TraceOut|DesktopToast::DisplayToast|hr: 0x8"))));
        };
        m_sweep.m_checkSuccess = [&] { EXPECT_EQ(Toasts().size(), 1u); };
        m_sweep.m_cleanUp = [&] { Simulator::ToastDesktop::Instance().Reset(); };
        return m_sweep.Run();
    }

    FaultSweep m_sweep;
    Tests::AppDataFolder m_appData;
};
} // namespace

TEST_F(HubSweep, RegisterSmartAdapterEvent_EachCallFails_LetsNothingOutAndLeavesNothing)
{
    const auto reached = SweepRegistration("RegisterSmartAdapterEvent",
                                           [](auto& hub) { return hub.RegisterSmartAdapterEvent(L"C:\\Orvik.ico"); },
                                           {.m_strClass = "orvikBEvnt", .m_lstObjects = {{{"EventID", 3}}}});
    EXPECT_THAT(reached, IsSupersetOf({"OleRun", "SysAllocString", "IPlixCommand::Execute",
                                       "IWbemLocator::ConnectServer", "IWbemServices::ExecNotificationQueryAsync"}));
}

TEST_F(HubSweep, RegisterGPIOWMIEvent_EachCallFails_LetsNothingOutAndLeavesNothing)
{
    const auto reached =
        SweepRegistration("RegisterGPIOWMIEvent", [](auto& hub) { return hub.RegisterGPIOWMIEvent(); },
                          {.m_strClass = "OrvikBIOS_BIOSEvent", .m_lstObjects = {{{"Description", "Lid opened"}}}});
    EXPECT_THAT(reached, IsSupersetOf({"OleRun", "SysAllocString", "IWbemLocator::ConnectServer",
                                       "IWbemServices::ExecNotificationQueryAsync"}));
}

TEST_F(HubSweep, ProcessSmartAdapterEvent_EachCallFails_LetsNothingOutAndLeavesNothing)
{
    const auto reached = SweepHandler([](auto& hub) { hub.ProcessSmartAdapterEvent(); });
    EXPECT_THAT(reached,
                IsSupersetOf({"OleRun", "SysAllocString", "IPlixCommand::Execute", "CLSIDFromProgID",
                              "PlixNotification::QueryInterface", "RoGetActivationFactory", "IToastNotifier::Show"}));
}

TEST_F(HubSweep, ProcessWMIEvent_EachCallFails_LetsNothingOutAndLeavesNothing)
{
    _variant_t description(L"Lid opened");
    const CStringW eventClass = Notifications::OrvikWmiEvents::g_szPublicEventClass;
    const auto reached = SweepHandler([&](auto& hub) { hub.ProcessWMIEvent(eventClass, &description); });
    EXPECT_THAT(reached, IsSupersetOf({"OleRun", "SysAllocString", "IPlixCommand::Execute", "RoGetActivationFactory",
                                       "IToastNotifier::Show"}));
}

TEST_F(HubSweep, RegisterUSBCWMIEvent_EachCallFails_LetsNothingOutAndLeavesNothing)
{
    const auto reached =
        SweepRegistration("RegisterUSBCWMIEvent", [](auto& hub) { return hub.RegisterUSBCWMIEvent(L"C:\\Orvik.ico"); },
                          {.m_strClass = "orvikBEvnt", .m_lstObjects = {{{"EventID", 131073}, {"EventData", 2}}}});
    EXPECT_THAT(reached, IsSupersetOf({"OleRun", "SysAllocString", "IWbemLocator::ConnectServer",
                                       "IWbemServices::ExecNotificationQueryAsync"}));
}

TEST_F(HubSweep, ProcessUSBCWMIEvent_EachCallFails_LetsNothingOutAndLeavesNothing)
{
    Answer("Platform.MachineID", {{"bstr", "1234"}});
    Answer("Platform.USBC.Supported", {{"bool", true}});
    Answer("Platform.USBC.Messages", {{"bstr", "<GetUsbCMessagesOutput><Output><Data NumberOfPorts=\"1\"><Port0 "
                                               "NumberOfMessages=\"1\"><Message0 MessageId=\"2\"/></Port0></Data>"
                                               "</Output></GetUsbCMessagesOutput>"}});
    _variant_t port(BYTE{2});
    const auto reached = SweepHandler([&](auto& hub) { EXPECT_EQ(hub.ProcessUSBCWMIEvent(131073, &port), S_OK); });
    EXPECT_THAT(reached, IsSupersetOf({"OleRun", "SysAllocString", "IPlixCommand::Execute",
                                       "IPlixCommand::ExecuteWithInput", "CLSIDFromProgID", "IToastNotifier::Show"}));
}
