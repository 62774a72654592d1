#include "tests/simulator/toasts/ToastsTest.h"

#include <functional>

// Each member called through the agent's declaration arrives in the machine's member of the same name.
namespace
{
using ToastAbi::IXmlNodePtr;

class AbiSlotTest : public ToastsTest
{
protected:
    // The call must be journalled under that name, whatever it answers.
    static void Arrives(const char* name, const std::function<HRESULT()>& call)
    {
        Simulator::Journal::Instance().Clear();
        static_cast<void>(call());
        EXPECT_THAT(Calls(), testing::ElementsAre(name));
    }

    const ToastAbi::IXmlDocumentPtr m_document = Document(ToastAbi::ToastTemplateType::ToastImageAndText04);
    const IXmlNodePtr m_node = Element(m_document, L"image");
    IXmlNodePtr m_result;
    IInspectable* m_pOther = nullptr;
    HSTRING m_hString = nullptr;
};
} // namespace

TEST_F(AbiSlotTest, XmlNode_Properties)
{
    ToastAbi::NodeType type{};
    boolean has = FALSE;
    ToastAbi::IXmlNodeListPtr list;
    ToastAbi::IXmlNamedNodeMapPtr map;
    ToastAbi::IXmlDocumentPtr owner;
    Arrives("IXmlNode::get_NodeValue", [&] { return m_node->get_NodeValue(&m_pOther); });
    Arrives("IXmlNode::put_NodeValue", [&] { return m_node->put_NodeValue(nullptr); });
    Arrives("IXmlNode::get_NodeType", [&] { return m_node->get_NodeType(&type); });
    Arrives("IXmlNode::get_NodeName", [&] { return m_node->get_NodeName(&m_hString); });
    Simulator::RuntimeText::Free(m_hString);
    Arrives("IXmlNode::get_ParentNode", [&] { return m_node->get_ParentNode(&m_result); });
    Arrives("IXmlNode::get_ChildNodes", [&] { return m_node->get_ChildNodes(&list); });
    Arrives("IXmlNode::get_FirstChild", [&] { return m_node->get_FirstChild(&m_result); });
    Arrives("IXmlNode::get_LastChild", [&] { return m_node->get_LastChild(&m_result); });
    Arrives("IXmlNode::get_PreviousSibling", [&] { return m_node->get_PreviousSibling(&m_result); });
    Arrives("IXmlNode::get_NextSibling", [&] { return m_node->get_NextSibling(&m_result); });
    Arrives("IXmlNode::get_Attributes", [&] { return m_node->get_Attributes(&map); });
    Arrives("IXmlNode::HasChildNodes", [&] { return m_node->HasChildNodes(&has); });
    Arrives("IXmlNode::get_OwnerDocument", [&] { return m_node->get_OwnerDocument(&owner); });
    Arrives("IXmlNode::get_NamespaceUri", [&] { return m_node->get_NamespaceUri(&m_pOther); });
    Arrives("IXmlNode::get_LocalName", [&] { return m_node->get_LocalName(&m_pOther); });
    Arrives("IXmlNode::get_Prefix", [&] { return m_node->get_Prefix(&m_pOther); });
    Arrives("IXmlNode::put_Prefix", [&] { return m_node->put_Prefix(nullptr); });
}

TEST_F(AbiSlotTest, XmlNode_Operations)
{
    Arrives("IXmlNode::InsertBefore", [&] { return m_node->InsertBefore(nullptr, nullptr, &m_result); });
    Arrives("IXmlNode::ReplaceChild", [&] { return m_node->ReplaceChild(nullptr, nullptr, &m_result); });
    Arrives("IXmlNode::RemoveChild", [&] { return m_node->RemoveChild(nullptr, &m_result); });
    Arrives("IXmlNode::AppendChild", [&] { return m_node->AppendChild(nullptr, &m_result); });
    Arrives("IXmlNode::CloneNode", [&] { return m_node->CloneNode(FALSE, &m_result); });
    Arrives("IXmlNode::Normalize", [&] { return m_node->Normalize(); });
}

TEST_F(AbiSlotTest, XmlLists_Members)
{
    UINT32 length = 0;
    ToastAbi::IXmlNodeListPtr list;
    ASSERT_EQ(m_node->get_ChildNodes(&list), S_OK);
    Arrives("IXmlNodeList::get_Length", [&] { return list->get_Length(&length); });
    Arrives("IXmlNodeList::Item", [&] { return list->Item(0, &m_result); });

    ToastAbi::IXmlNamedNodeMapPtr map;
    ASSERT_EQ(m_node->get_Attributes(&map), S_OK);
    Arrives("IXmlNamedNodeMap::get_Length", [&] { return map->get_Length(&length); });
    Arrives("IXmlNamedNodeMap::Item", [&] { return map->Item(0, &m_result); });
    Arrives("IXmlNamedNodeMap::GetNamedItem", [&] { return map->GetNamedItem(nullptr, &m_result); });
    Arrives("IXmlNamedNodeMap::SetNamedItem", [&] { return map->SetNamedItem(nullptr, &m_result); });
    Arrives("IXmlNamedNodeMap::RemoveNamedItem", [&] { return map->RemoveNamedItem(nullptr, &m_result); });
    Arrives("IXmlNamedNodeMap::GetNamedItemNS", [&] { return map->GetNamedItemNS(nullptr, nullptr, &m_result); });
    Arrives("IXmlNamedNodeMap::RemoveNamedItemNS", [&] { return map->RemoveNamedItemNS(nullptr, nullptr, &m_result); });
    Arrives("IXmlNamedNodeMap::SetNamedItemNS", [&] { return map->SetNamedItemNS(nullptr, &m_result); });
}

TEST_F(AbiSlotTest, XmlDocument_Members)
{
    ToastAbi::IXmlTextPtr text;
    ToastAbi::IXmlTextPtr rest;
    ToastAbi::IXmlNodeListPtr list;
    ToastAbi::IXmlElement* element = nullptr;
    ToastAbi::IXmlDocument& document = *m_document;
    Arrives("IXmlDocument::get_Doctype", [&] { return document.get_Doctype(&m_pOther); });
    Arrives("IXmlDocument::get_Implementation", [&] { return document.get_Implementation(&m_pOther); });
    Arrives("IXmlDocument::CreateElement", [&] { return document.CreateElement(nullptr, &element); });
    Arrives("IXmlDocument::CreateDocumentFragment", [&] { return document.CreateDocumentFragment(&m_pOther); });
    Arrives("IXmlDocument::CreateTextNode", [&] { return document.CreateTextNode(nullptr, &text); });
    Arrives("IXmlText::SplitText", [&] { return text->SplitText(0, &rest); });
    Arrives("IXmlDocument::CreateComment", [&] { return document.CreateComment(nullptr, &m_pOther); });
    Arrives("IXmlDocument::CreateProcessingInstruction",
            [&] { return document.CreateProcessingInstruction(nullptr, nullptr, &m_pOther); });
    Arrives("IXmlDocument::CreateAttribute", [&] { return document.CreateAttribute(nullptr, &m_pOther); });
    Arrives("IXmlDocument::CreateEntityReference", [&] { return document.CreateEntityReference(nullptr, &m_pOther); });
    Arrives("IXmlDocument::GetElementsByTagName", [&] { return document.GetElementsByTagName(nullptr, &list); });
    Arrives("IXmlDocument::CreateCDataSection", [&] { return document.CreateCDataSection(nullptr, &m_pOther); });
    Arrives("IXmlDocument::get_DocumentUri", [&] { return document.get_DocumentUri(&m_hString); });
    Arrives("IXmlDocument::CreateAttributeNS", [&] { return document.CreateAttributeNS(nullptr, nullptr, &m_pOther); });
    Arrives("IXmlDocument::CreateElementNS", [&] { return document.CreateElementNS(nullptr, nullptr, &element); });
    Arrives("IXmlDocument::GetElementById", [&] { return document.GetElementById(nullptr, &element); });
    Arrives("IXmlDocument::ImportNode", [&] { return document.ImportNode(nullptr, FALSE, &m_result); });
}

TEST_F(AbiSlotTest, Toast_Members)
{
    const ToastAbi::IToastNotificationPtr toast = Toast(L"title", L"text");
    ToastAbi::IXmlDocumentPtr content;
    EventRegistrationToken token{};
    Arrives("IToastNotification::get_Content", [&] { return toast->get_Content(&content); });
    Arrives("IToastNotification::put_ExpirationTime", [&] { return toast->put_ExpirationTime(nullptr); });
    Arrives("IToastNotification::get_ExpirationTime", [&] { return toast->get_ExpirationTime(&m_pOther); });
    Arrives("IToastNotification::add_Dismissed", [&] { return toast->add_Dismissed(nullptr, &token); });
    Arrives("IToastNotification::remove_Dismissed", [&] { return toast->remove_Dismissed({7}); });
    Arrives("IToastNotification::add_Activated", [&] { return toast->add_Activated(nullptr, &token); });
    Arrives("IToastNotification::remove_Activated", [&] { return toast->remove_Activated({7}); });
    Arrives("IToastNotification::add_Failed", [&] { return toast->add_Failed(nullptr, &token); });
    Arrives("IToastNotification::remove_Failed", [&] { return toast->remove_Failed({7}); });
}

TEST_F(AbiSlotTest, Notifier_Members)
{
    const ToastAbi::IToastNotifierPtr notifier = Notifier();
    ToastAbi::NotificationSetting setting{};
    Arrives("IToastNotifier::Show", [&] { return notifier->Show(nullptr); });
    Arrives("IToastNotifier::Hide", [&] { return notifier->Hide(nullptr); });
    Arrives("IToastNotifier::get_Setting", [&] { return notifier->get_Setting(&setting); });
    Arrives("IToastNotifier::AddToSchedule", [&] { return notifier->AddToSchedule(nullptr); });
    Arrives("IToastNotifier::RemoveFromSchedule", [&] { return notifier->RemoveFromSchedule(nullptr); });
    Arrives("IToastNotifier::GetScheduledToastNotifications",
            [&] { return notifier->GetScheduledToastNotifications(&m_pOther); });
}

TEST_F(AbiSlotTest, Factories_Members)
{
    const ToastAbi::IToastNotificationManagerStaticsPtr manager = Manager();
    const auto factory = Factory<ToastAbi::IToastNotificationFactory>(ToastAbi::ToastNotificationClass);
    ToastAbi::IToastNotifierPtr notifier;
    ToastAbi::IXmlDocumentPtr content;
    ToastAbi::IToastNotificationPtr toast;
    Arrives("IToastNotificationManagerStatics::CreateToastNotifier",
            [&] { return manager->CreateToastNotifier(&notifier); });
    Arrives("IToastNotificationManagerStatics::CreateToastNotifierWithId",
            [&] { return manager->CreateToastNotifierWithId(nullptr, &notifier); });
    Arrives("IToastNotificationManagerStatics::GetTemplateContent",
            [&] { return manager->GetTemplateContent(ToastAbi::ToastTemplateType::ToastText01, &content); });
    Arrives("IToastNotificationFactory::CreateToastNotification",
            [&] { return factory->CreateToastNotification(nullptr, &toast); });
}
