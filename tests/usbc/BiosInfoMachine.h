#pragma once

#include "simulator/model/Facts.h"
#include "tests/platform/PlatformMachine.h"
#include "usbc/UsbCBiosInfo.h"

#include <string>
#include <vector>

// A machine whose platform library answers for USB-C ports, and a reader of its messages.
class BiosInfoMachine : public PlatformMachine
{
protected:
    static constexpr const char* Fetch = "CUsbCBiosInfo::GetMsgDataFromPlix";
    static constexpr const char* Read = "CUsbCBiosInfo::GetMessages";

    // What the library answers when it is asked for that port.
    static void Answer(int port, const std::string& xml)
    {
        Simulator::Facts::Instance().Set("/commands/Platform.USBC.Messages",
                                         {{"by-input", {{std::to_string(port), {{"answer", {{"bstr", xml}}}}}}}});
    }
    static void AnswerAny(const nlohmann::json& fact)
    {
        Simulator::Facts::Instance().Set("/commands/Platform.USBC.Messages", fact);
    }

    // The whole answer around its ports; attributes: those of the element that holds the ports.
    static std::string Output(const std::string& attributes, const std::string& ports)
    {
        return "<?xml version=\"1.0\"?><GetUsbCMessagesOutput><Output><Data " + attributes + ">" + ports +
               "</Data></Output></GetUsbCMessagesOutput>";
    }
    // An answer with one port, number 0, that holds these message elements.
    static std::string OnePort(int messageCount, const std::string& messages)
    {
        return Output("NumberOfPorts=\"1\"",
                      "<Port0 NumberOfMessages=\"" + std::to_string(messageCount) + "\">" + messages + "</Port0>");
    }

    // Reads port 1 with this answer by a new reader.
    static std::vector<PortMessage> MessagesOf(const std::string& xml)
    {
        Answer(1, xml);
        CUsbCBiosInfo info;
        info.GetMessages(1);
        return info.Messages();
    }

    CUsbCBiosInfo m_info;
};
