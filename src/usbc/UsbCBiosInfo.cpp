#include "usbc/UsbCBiosInfo.h"

#include "platform/PlatformCommand.h"
#include "shared/Log.h"
#include "shared/TraceScope.h"
#include "usbc/XmlAttributes.h"

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <iterator>
#include <new>

using Orvik::Shared::TraceScope;
namespace Level = Orvik::Shared::Level;

namespace
{
// Ports and messages are numbered by a byte in the firmware: more of them is a mistake in its answer.
constexpr std::int32_t g_nMaxCount = 256;

// Which values a message carries beside its number.
struct ValueOfMessage
{
    std::int32_t m_nMessageId;
    const wchar_t* m_pAttribute;
    std::int32_t PortMessage::* m_pField;
};
constexpr ValueOfMessage g_values[] = {{1, L"NormalPower", &PortMessage::iNormalPower},
                                       {1, L"SuppliedPower", &PortMessage::iSuppliedPower},
                                       {3, L"RequestedPower", &PortMessage::iRequestedPower},
                                       {3, L"MaxSuppliedPower", &PortMessage::iMaxSuppliedPower},
                                       {6, L"NeededVoltage", &PortMessage::iNeededVoltage},
                                       {6, L"NeededCurrent", &PortMessage::iNeededCurrent},
                                       {7, L"ProvidedVoltage", &PortMessage::iProvidedVoltage},
                                       {7, L"ProvidedCurrent", &PortMessage::iProvidedCurrent},
                                       {7, L"RequestedVoltage", &PortMessage::iRequestedVoltage},
                                       {7, L"RequestedCurrent", &PortMessage::iRequestedCurrent}};

// The path of a port or, with its second number, of a message.
template <class... Numbers>
IXMLDOMNodePtr SelectNumbered(IXMLDOMDocument* document, const wchar_t* format, Numbers... numbers)
{
    // Room for the longest path with two numbers of up to three digits.
    wchar_t path[80]{};
    _snwprintf(path, std::size(path) - 1, format, numbers...);
    return SelectNode(document, path);
}

// -1 when the node or its attribute cannot be read.
std::int32_t ReadCount(IXMLDOMNode* node, const wchar_t* attribute)
{
    std::int32_t count = -1;
    if (node != nullptr)
        ReadAttribute(node, attribute, count);
    return std::min(count, g_nMaxCount);
}

void ReadValues(const TraceScope& trace, IXMLDOMNode* node, PortMessage& message)
{
    const UniqueBstr valid = ReadAttribute(node, L"Valid");
    if (!valid || _wcsicmp(valid.get(), L"true") != 0)
        return;
    trace.Verbose(L"Valid = %s", static_cast<const wchar_t*>(valid.get()));
    for (const ValueOfMessage& value : g_values)
    {
        if (value.m_nMessageId == message.iMessageId)
            ReadAttribute(node, value.m_pAttribute, message.*value.m_pField);
    }
    if (message.iMessageId == 1)
    {
        trace.Verbose(L"portMessage.iNormalPower = %d", message.iNormalPower);
        trace.Verbose(L"portMessage.iSuppliedPower = %d", message.iSuppliedPower);
    }
}

// Sends the command for one port. Raises _com_error and std::bad_alloc.
HRESULT AskForMessages(const TraceScope& trace, BYTE portNumber, std::wstring& xml)
{
    IPlixCommandPtr spCommand;
    HRESULT hr = CreateCommand(trace, spCommand);
    if (FAILED(hr) || !spCommand)
        return hr;
    Orvik::Shared::Log(Level::TraceIn, trace.FunctionName(), L"Calling Platform.USBC.Messages");
    const _variant_t output =
        ExecutePlixCommandWithInput(spCommand, L"Platform.USBC.Messages", _variant_t(portNumber), &hr);
    trace.Verbose(L"Calling Platform.USBC.Messages passed.");
    if (output.vt == VT_BSTR && output.bstrVal != nullptr)
        xml = output.bstrVal;
    return hr;
}

HRESULT LogMessagesFailure(const TraceScope& trace, const _com_error& error)
{
    trace.Information(L"Platform.USBC.Messages failed. hr = 0x%X", error.Error());
    return LogCommandFailure(trace, error, L"Invalid Command Platform.USBC.Messages. hr = 0x%X",
                             L"Exception occurred during Platform.USBC.Messages. hr = 0x%X");
}
} // namespace

HRESULT CUsbCBiosInfo::GetMsgDataFromPlix(int portNumber, std::wstring& xml)
{
    TraceScope trace(ORVIK_FUNCTION);
    xml.clear();
    try
    {
        return trace.Exit(AskForMessages(trace, static_cast<BYTE>(portNumber), xml));
    }
    catch (const _com_error& error)
    {
        return trace.Exit(LogMessagesFailure(trace, error));
    }
    catch (const std::bad_alloc&)
    {
        return trace.Exit(LogMessagesFailure(trace, _com_error(E_OUTOFMEMORY)));
    }
}

void CUsbCBiosInfo::GetMessages(int portNumber)
{
    const TraceScope trace(ORVIK_FUNCTION);
    trace.Verbose(L"portNumber = %d", portNumber);
    std::wstring xml;
    if (FAILED(GetMsgDataFromPlix(portNumber, xml)))
    {
        trace.Information(L"GetMsgDataFromPlix failed");
        return;
    }
    trace.Verbose(L"GetMsgDataFromPlix passed");

    XmlDocument document;
    // What does not parse is a document without nodes.
    static_cast<void>(document.Load(MakeBstr(xml.c_str()).get()));
    if (document.GetDocument() == nullptr)
    {
        trace.Information(L"xml.GetDocument() failed");
        return;
    }
    ReadPorts(trace, document.GetDocument());
}

void CUsbCBiosInfo::ReadPorts(const TraceScope& trace, IXMLDOMDocument* document)
{
    const IXMLDOMNodePtr spData = SelectNode(document, L"/GetUsbCMessagesOutput/Output/Data");
    const std::int32_t portCount = ReadCount(spData, L"NumberOfPorts");
    trace.Verbose(L"Number Of Ports = %d", portCount);
    if (portCount < 1)
    {
        trace.Verbose(L"no usb-c ports, quit.");
        return;
    }
    for (int port = 0; port < portCount; ++port)
    {
        trace.Verbose(L"Get info for port # %d.", port);
        const IXMLDOMNodePtr spPort = SelectNumbered(document, L"/GetUsbCMessagesOutput/Output/Data/Port%d", port);
        if (!spPort)
            continue;
        const std::int32_t messageCount = ReadCount(spPort, L"NumberOfMessages");
        trace.Verbose(L"Number Of Messages = %d.", messageCount);
        ReadMessages(trace, document, port, messageCount);
    }
}

void CUsbCBiosInfo::ReadMessages(const TraceScope& trace, IXMLDOMDocument* document, int port, int messageCount)
{
    // One record for the whole port: readers of the list see the values that its messages gave so far.
    PortMessage message;
    for (int i = 0; i < messageCount; ++i)
    {
        const IXMLDOMNodePtr spMessage =
            SelectNumbered(document, L"/GetUsbCMessagesOutput/Output/Data/Port%d/Message%d", port, i);
        if (!spMessage)
            continue;
        ReadAttribute(spMessage, L"MessageId", message.iMessageId);
        trace.Verbose(L"iMessageId = %d", message.iMessageId);
        ReadValues(trace, spMessage, message);
        if (message.iMessageId >= 1)
            m_lstMessages.push_back(message);
    }
}
