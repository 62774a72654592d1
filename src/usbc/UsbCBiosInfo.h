#pragma once

#include "platform/XmlDocument.h"
#include "usbc/PortMessage.h"

#include <windows.h>

#include <string>
#include <vector>

namespace Orvik::Shared
{
class TraceScope;
}

// Reads the firmware's messages about USB-C ports by the platform command "Platform.USBC.Messages". Belongs to one
// thread, which has initialised COM.
class CUsbCBiosInfo
{
public:
    // The command's answer for one port, empty when it is no text. portNumber: its low byte is sent. The result is that
    // of the command, of the failure to create or send it included; every failure is logged and nothing is raised.
    [[nodiscard]] HRESULT GetMsgDataFromPlix(int portNumber, std::wstring& xml);

    // Appends the messages that the answer for this port lists, in its order, to those read before. An answer that
    // cannot be had or read adds nothing. Raises _com_error with E_OUTOFMEMORY when a text cannot be allocated, and
    // std::bad_alloc when the list cannot grow.
    void GetMessages(int portNumber);

    [[nodiscard]] const std::vector<PortMessage>& Messages() const noexcept { return m_lstMessages; }

private:
    void ReadPorts(const Orvik::Shared::TraceScope& trace, IXMLDOMDocument* document);
    void ReadMessages(const Orvik::Shared::TraceScope& trace, IXMLDOMDocument* document, int port, int messageCount);

    std::vector<PortMessage> m_lstMessages;
};
