#pragma once

#include "simulator/doubles/WmiEventSource.h"
#include "simulator/model/Facts.h"
#include "simulator/toasts/ToastDesktop.h"
#include "tests/wmievents/MachineTest.h"

#include <string>
#include <vector>

namespace Tests
{
// The USB-C event of the hub, in a machine whose firmware has one message for port 2.
class UsbCTest : public HubTest
{
protected:
    static constexpr const char* Registration = "Notifications::OrvikWmiEvents::COrvikWmiEvents::RegisterUSBCWMIEvent";
    static constexpr const char* Handler = "Notifications::OrvikWmiEvents::COrvikWmiEvents::ProcessUSBCWMIEvent";
    static constexpr int EventId = 131073;

    UsbCTest()
    {
        const std::string xml =
            "<GetUsbCMessagesOutput><Output><Data NumberOfPorts=\"1\"><Port0 NumberOfMessages=\"1\">"
            "<Message0 MessageId=\"2\"/></Port0></Data></Output></GetUsbCMessagesOutput>";
        Simulator::Facts::Instance().Set("/commands/Platform.USBC.Messages",
                                         {{"by-input", {{"2", {{"answer", {{"bstr", xml}}}}}}}});
        Answer("Platform.MachineID", {{"bstr", "1234"}});
        Answer("Platform.USBC.Supported", {{"bool", true}});
    }
    ~UsbCTest() override { Simulator::ToastDesktop::Instance().Reset(); }

    [[nodiscard]] static Simulator::WmiEventBatch Event(const nlohmann::json& data)
    {
        return {.m_strClass = "orvikBEvnt", .m_lstObjects = {{{"EventID", EventId}, {"EventData", data}}}};
    }

    // The ports that the firmware was asked about.
    [[nodiscard]] static std::vector<int> AskedPorts()
    {
        std::vector<int> ports;
        for (const auto& entry : Simulator::Journal::Instance().Entries())
        {
            if (entry.m_strSubject == "IPlixCommand::ExecuteWithInput")
                ports.push_back(entry.m_details.at("input").at("value"));
        }
        return ports;
    }
};
} // namespace Tests
