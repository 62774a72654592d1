#include "tests/simulator/toasts/ToastsTest.h"

#include "simulator/toasts/ToastActivation.h"
#include "simulator/toasts/ToastInterfaces.h"

using Simulator::CallPlan;
using Simulator::Facts;
using Simulator::Journal;
using Simulator::LiveObjects;
using Simulator::RuntimeText;

std::wstring TakeText(HSTRING string)
{
    std::wstring text(RuntimeText::View(string));
    RuntimeText::Free(string);
    return text;
}

ToastsTest::ToastsTest()
{
    EXPECT_HRESULT_SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
    Facts::Instance().Clear();
    Facts::Instance().Set("/toasts/draw", false);
    Facts::Instance().Set("/toasts/timeout-ms", 0);
    CallPlan::Instance().Reset();
    Journal::Instance().Clear();
}

ToastsTest::~ToastsTest()
{
    CallPlan::Instance().Reset();
    m_desktop.Reset();
    EXPECT_THAT(LiveObjects::All(), testing::IsEmpty());
    CoUninitialize();
}

ToastsTest::FactoryOwner::FactoryOwner(std::wstring_view className)
{
    EXPECT_HRESULT_SUCCEEDED(Simulator::GetToastActivationFactory(RuntimeString(className), &m_pFactory));
}

ToastsTest::FactoryOwner::~FactoryOwner()
{
    if (m_pFactory != nullptr)
        m_pFactory->Release();
}

ToastAbi::IToastNotificationManagerStaticsPtr ToastsTest::Manager()
{
    return Factory<ToastAbi::IToastNotificationManagerStatics>(ToastAbi::ToastNotificationManagerClass);
}

ToastAbi::IToastNotifierPtr ToastsTest::Notifier()
{
    ToastAbi::IToastNotifierPtr notifier;
    EXPECT_HRESULT_SUCCEEDED(Manager()->CreateToastNotifierWithId(RuntimeString(L"Orvik Notifications"), &notifier));
    return notifier;
}

ToastAbi::IXmlDocumentPtr ToastsTest::Document(ToastAbi::ToastTemplateType type)
{
    ToastAbi::IXmlDocumentPtr document;
    EXPECT_HRESULT_SUCCEEDED(Manager()->GetTemplateContent(type, &document));
    return document;
}

ToastAbi::IXmlNodePtr ToastsTest::Element(ToastAbi::IXmlDocument* document, std::wstring_view name, UINT32 index)
{
    ToastAbi::IXmlNodeListPtr list;
    EXPECT_HRESULT_SUCCEEDED(document->GetElementsByTagName(RuntimeString(name), &list));
    ToastAbi::IXmlNodePtr node;
    EXPECT_HRESULT_SUCCEEDED(list->Item(index, &node));
    return node;
}

void ToastsTest::AppendText(ToastAbi::IXmlDocument* document, ToastAbi::IXmlNode* node, std::wstring_view text)
{
    ToastAbi::IXmlTextPtr textNode;
    EXPECT_HRESULT_SUCCEEDED(document->CreateTextNode(RuntimeString(text), &textNode));
    ToastAbi::IXmlNodePtr appended;
    EXPECT_HRESULT_SUCCEEDED(node->AppendChild(ToastAbi::IXmlNodePtr(textNode), &appended));
}

std::wstring ToastsTest::Xml(IInspectable* node)
{
    Simulator::Abi::IXmlNodeSerializerPtr serializer(node);
    HSTRING xml = nullptr;
    EXPECT_HRESULT_SUCCEEDED(serializer->GetXml(&xml));
    return TakeText(xml);
}

ToastAbi::IToastNotificationPtr ToastsTest::Toast(std::wstring_view title, std::wstring_view text,
                                                  std::wstring_view image)
{
    const ToastAbi::IXmlDocumentPtr document = Document(ToastAbi::ToastTemplateType::ToastImageAndText04);
    AppendText(document, Element(document, L"text", 0), title);
    AppendText(document, Element(document, L"text", 1), text);
    ToastAbi::IXmlNamedNodeMapPtr attributes;
    EXPECT_HRESULT_SUCCEEDED(Element(document, L"image")->get_Attributes(&attributes));
    ToastAbi::IXmlNodePtr source;
    EXPECT_HRESULT_SUCCEEDED(attributes->GetNamedItem(RuntimeString(L"src"), &source));
    AppendText(document, source, image);

    ToastAbi::IToastNotificationPtr toast;
    const auto factory = Factory<ToastAbi::IToastNotificationFactory>(ToastAbi::ToastNotificationClass);
    EXPECT_HRESULT_SUCCEEDED(factory->CreateToastNotification(document, &toast));
    return toast;
}

void ToastsTest::Show(ToastAbi::IToastNotification* toast)
{
    EXPECT_HRESULT_SUCCEEDED(Notifier()->Show(toast));
}

nlohmann::json ToastsTest::LastToastDetails()
{
    nlohmann::json details;
    for (const Simulator::JournalEntry& entry : Journal::Instance().Entries())
    {
        if (entry.m_strKind == "toast")
            details = entry.m_details;
    }
    return details;
}
