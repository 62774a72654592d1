#include "bench/support/Crossings.h"

#include "notifications/DesktopToast.h"
#include "notifications/WindowsRuntime.h"
#include "platform/ComPointers.h"
#include "platform/PlixCommand.h"
#include "platform/PlixNotification.h"
#include "platform/UniqueBstr.h"
#include "platform/XmlDocument.h"
#include "simulator/doubles/WbemClassObjectDouble.h"
#include "usbc/XmlAttributes.h"
#include "wmievents/OrvikWmiEvents.h"
#include "wmievents/WmiEventSink.h"

#include <windows.h>

#include <stdexcept>

using namespace ToastAbi;
using Notifications::OrvikWmiEvents::COrvikWmiEvents;
using Notifications::OrvikWmiEvents::WmiEventSink;
using WindowsRuntime::RuntimeString;

namespace EventBench
{
namespace
{
// The event's way begins and ends here.
struct AtIndicate
{
    AtIndicate() { EventClock::Start(); }
    AtIndicate(const AtIndicate&) = delete;
    AtIndicate& operator=(const AtIndicate&) = delete;
    ~AtIndicate() { EventClock::Suspend(); }
};

struct AtShow
{
    AtShow() { EventClock::Finish(); }
};

void Require(HRESULT hr)
{
    if (FAILED(hr))
        throw std::runtime_error("a sample object cannot be had");
}

template <class Interface>
void** Receive(Interface** object)
{
    return reinterpret_cast<void**>(object);
}

void WatchWmi()
{
    const IWbemClassObjectPtr spEvent(new Simulator::WbemClassObjectDouble("orvikBEvnt", nlohmann::json::object()),
                                      false);
    WatchMethods<"event", InDoubles, &IWbemClassObject::Get>(spEvent.GetInterfacePtr());
    // Lives as long as the process, as every sink does.
    IWbemObjectSink* const sink = new WmiEventSink(nullptr, &COrvikWmiEvents::ProcessSmartAdapterEvent);
    MethodCrossing<"sink", AtIndicate, &IWbemObjectSink::Indicate>::Install(sink);
}

void WatchPlatformLibrary()
{
    IPlixCommandPtr spCommand;
    Require(CreatePlixCommand(spCommand));
    WatchMethods<"command", InDoubles, &IPlixCommand::Execute, &IPlixCommand::ExecuteWithInput>(
        spCommand.GetInterfacePtr());
    IUnknownPtr spNotification;
    Require(CreatePlixNotification(spNotification));
    WatchMethods<"notification component", InDoubles>(spNotification.GetInterfacePtr());
}

void WatchParser()
{
    XmlDocument document;
    Require(document.Load(MakeBstr(L"<a b='c'/>").get()));
    const IXMLDOMNodePtr spElement = SelectNode(document.GetDocument(), L"/a");
    IXMLDOMNamedNodeMapPtr spAttributes;
    Require(spElement->get_attributes(&spAttributes));
    IXMLDOMNodePtr spAttribute;
    Require(spAttributes->getNamedItem(MakeBstr(L"b").get(), &spAttribute));

    WatchMethods<"parser", InWindows, &IXMLDOMDocument::put_async, &IXMLDOMDocument::put_validateOnParse,
                 &IXMLDOMDocument::put_resolveExternals, &IXMLDOMDocument::put_preserveWhiteSpace,
                 &IXMLDOMDocument::loadXML, &IXMLDOMDocument::get_xml, &IXMLDOMDocument::selectSingleNode>(
        document.GetDocument());
    WatchMethods<"parsed element", InWindows, &IXMLDOMNode::get_attributes>(spElement.GetInterfacePtr());
    WatchMethods<"parsed attributes", InWindows, &IXMLDOMNamedNodeMap::getNamedItem>(spAttributes.GetInterfacePtr());
    WatchMethods<"parsed attribute", InWindows, &IXMLDOMNode::get_text>(spAttribute.GetInterfacePtr());
}

void WatchToastDocument(IXmlDocument* document)
{
    RuntimeString text;
    RuntimeString image;
    RuntimeString src;
    Require(text.Create(L"text"));
    Require(image.Create(L"image"));
    Require(src.Create(L"src"));
    IXmlNodeListPtr spImages;
    Require(document->GetElementsByTagName(image.Get(), &spImages));
    IXmlNodePtr spImage;
    Require(spImages->Item(0, &spImage));
    IXmlNamedNodeMapPtr spAttributes;
    Require(spImage->get_Attributes(&spAttributes));
    IXmlNodePtr spSrc;
    Require(spAttributes->GetNamedItem(src.Get(), &spSrc));
    IXmlTextPtr spText;
    Require(document->CreateTextNode(text.Get(), &spText));
    IXmlNodePtr spTextNode;
    Require(spText->QueryInterface(__uuidof(IXmlNode), Receive(&spTextNode)));

    WatchMethods<"toast document", InDoubles, &IXmlDocument::GetElementsByTagName, &IXmlDocument::CreateTextNode>(
        document);
    WatchMethods<"toast elements", InDoubles, &IXmlNodeList::Item, &IXmlNodeList::get_Length>(
        spImages.GetInterfacePtr());
    WatchMethods<"toast element", InDoubles, &IXmlNode::get_Attributes, &IXmlNode::AppendChild>(
        spImage.GetInterfacePtr());
    WatchMethods<"toast attributes", InDoubles, &IXmlNamedNodeMap::GetNamedItem>(spAttributes.GetInterfacePtr());
    WatchMethods<"toast attribute", InDoubles, &IXmlNode::AppendChild>(spSrc.GetInterfacePtr());
    WatchMethods<"toast text", InDoubles>(spText.GetInterfacePtr());
    WatchMethods<"toast text node", InDoubles>(spTextNode.GetInterfacePtr());
}

void WatchToasts()
{
    IToastNotificationManagerStaticsPtr spManager;
    Require(WindowsRuntime::GetActivationFactory(ToastNotificationManagerClass,
                                                 __uuidof(IToastNotificationManagerStatics), Receive(&spManager)));
    IXmlDocumentPtr spDocument;
    Require(spManager->GetTemplateContent(ToastTemplateType::ToastImageAndText04, &spDocument));
    WatchToastDocument(spDocument);
    RuntimeString applicationId;
    Require(applicationId.Create(L"bench"));
    IToastNotifierPtr spNotifier;
    Require(spManager->CreateToastNotifierWithId(applicationId.Get(), &spNotifier));
    IToastNotificationFactoryPtr spFactory;
    Require(WindowsRuntime::GetActivationFactory(ToastNotificationClass, __uuidof(IToastNotificationFactory),
                                                 Receive(&spFactory)));
    IToastNotificationPtr spToast;
    Require(spFactory->CreateToastNotification(spDocument, &spToast));

    WatchMethods<"toast manager", InDoubles, &IToastNotificationManagerStatics::GetTemplateContent,
                 &IToastNotificationManagerStatics::CreateToastNotifierWithId>(spManager.GetInterfacePtr());
    WatchMethods<"toast factory", InDoubles, &IToastNotificationFactory::CreateToastNotification>(
        spFactory.GetInterfacePtr());
    WatchMethods<"toast", InDoubles, &IToastNotification::add_Activated, &IToastNotification::add_Dismissed,
                 &IToastNotification::add_Failed>(spToast.GetInterfacePtr());
    WatchMethods<"notifier", InDoubles>(spNotifier.GetInterfacePtr());
    MethodCrossing<"notifier", AtShow, &IToastNotifier::Show>::Install(spNotifier.GetInterfacePtr());
}
} // namespace

void WatchObjects()
{
    WatchWmi();
    WatchPlatformLibrary();
    WatchParser();
    WatchToasts();
}
} // namespace EventBench
