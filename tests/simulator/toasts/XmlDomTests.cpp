#include "simulator/toasts/ToastInterfaces.h"
#include "tests/simulator/toasts/ToastsTest.h"

namespace Abi = Simulator::Abi;

using ToastAbi::IXmlNodePtr;
using ToastAbi::ToastTemplateType;

namespace
{
// The document of the type with one image and three texts.
class XmlDomTest : public ToastsTest
{
protected:
    [[nodiscard]] ToastAbi::IXmlTextPtr NewText(std::wstring_view text) const
    {
        ToastAbi::IXmlTextPtr node;
        EXPECT_EQ(m_document->CreateTextNode(RuntimeString(text), &node), S_OK);
        return node;
    }
    [[nodiscard]] static std::wstring Name(ToastAbi::IXmlNode* node)
    {
        HSTRING name = nullptr;
        EXPECT_EQ(node->get_NodeName(&name), S_OK);
        return TakeText(name);
    }
    [[nodiscard]] static ToastAbi::NodeType Type(ToastAbi::IXmlNode* node)
    {
        ToastAbi::NodeType type{};
        EXPECT_EQ(node->get_NodeType(&type), S_OK);
        return type;
    }
    [[nodiscard]] static UINT32 Length(ToastAbi::IXmlNodeList* list)
    {
        UINT32 length = 99;
        EXPECT_EQ(list->get_Length(&length), S_OK);
        return length;
    }
    [[nodiscard]] static ToastAbi::IXmlNamedNodeMapPtr Attributes(ToastAbi::IXmlNode* node)
    {
        ToastAbi::IXmlNamedNodeMapPtr map;
        EXPECT_EQ(node->get_Attributes(&map), S_OK);
        return map;
    }

    const ToastAbi::IXmlDocumentPtr m_document = Document(ToastTemplateType::ToastImageAndText04);
    const IXmlNodePtr m_binding = Element(m_document, L"binding");
    const IXmlNodePtr m_image = Element(m_document, L"image");
    const IXmlNodePtr m_first = Element(m_document, L"text", 0);
};
} // namespace

TEST_F(XmlDomTest, Kinds_AnswerTypeAndName)
{
    const IXmlNodePtr document(m_document);
    EXPECT_EQ(Type(document), ToastAbi::NodeType::Document);
    EXPECT_EQ(Name(document), L"#document");
    EXPECT_EQ(Type(m_image), ToastAbi::NodeType::Element);
    EXPECT_EQ(Name(m_image), L"image");
    const IXmlNodePtr text(NewText(L"t"));
    EXPECT_EQ(Type(text), ToastAbi::NodeType::Text);
    EXPECT_EQ(Name(text), L"#text");
    IXmlNodePtr attribute;
    EXPECT_EQ(Attributes(m_image)->GetNamedItem(RuntimeString(L"src"), &attribute), S_OK);
    EXPECT_EQ(Type(attribute), ToastAbi::NodeType::Attribute);
    EXPECT_EQ(Name(attribute), L"src");
}

TEST_F(XmlDomTest, GetElementsByTagName_UnknownName_IsAnEmptyList)
{
    ToastAbi::IXmlNodeListPtr list;
    EXPECT_EQ(m_document->GetElementsByTagName(RuntimeString(L"audio"), &list), S_OK);
    EXPECT_EQ(Length(list), 0u);
}

TEST_F(XmlDomTest, NodeList_BeyondTheEnd_IsNull)
{
    ToastAbi::IXmlNodeListPtr list;
    EXPECT_EQ(m_document->GetElementsByTagName(RuntimeString(L"text"), &list), S_OK);
    EXPECT_EQ(Length(list), 3u);
    IXmlNodePtr node;
    EXPECT_EQ(list->Item(3, &node), S_OK);
    EXPECT_EQ(node, nullptr);
}

TEST_F(XmlDomTest, NodeList_IsLive)
{
    ToastAbi::IXmlNodeListPtr list;
    EXPECT_EQ(m_document->GetElementsByTagName(RuntimeString(L"text"), &list), S_OK);
    IXmlNodePtr removed;
    EXPECT_EQ(m_binding->RemoveChild(m_first, &removed), S_OK);
    EXPECT_EQ(Length(list), 2u);
}

TEST_F(XmlDomTest, Navigation_FollowsTheDocument)
{
    IXmlNodePtr node;
    EXPECT_EQ(m_binding->get_FirstChild(&node), S_OK);
    EXPECT_EQ(Name(node), L"image");
    EXPECT_EQ(m_image->get_PreviousSibling(&node), S_OK);
    EXPECT_EQ(node, nullptr);
    EXPECT_EQ(m_image->get_NextSibling(&node), S_OK);
    EXPECT_EQ(Xml(node), L"<text id=\"1\"></text>");
    EXPECT_EQ(m_binding->get_LastChild(&node), S_OK);
    EXPECT_EQ(Xml(node), L"<text id=\"3\"></text>");
    IXmlNodePtr behind = m_image;
    EXPECT_EQ(node->get_NextSibling(&behind), S_OK);
    EXPECT_EQ(behind, nullptr);
    EXPECT_EQ(m_binding->get_ParentNode(&node), S_OK);
    EXPECT_EQ(Name(node), L"visual");
    ToastAbi::IXmlNodeListPtr children;
    EXPECT_EQ(m_binding->get_ChildNodes(&children), S_OK);
    EXPECT_EQ(Length(children), 4u);
}

TEST_F(XmlDomTest, Attribute_HasNeitherParentNorSiblings)
{
    IXmlNodePtr attribute;
    EXPECT_EQ(Attributes(m_image)->Item(0, &attribute), S_OK);
    IXmlNodePtr node = m_image;
    EXPECT_EQ(attribute->get_ParentNode(&node), S_OK);
    EXPECT_EQ(node, nullptr);
    EXPECT_EQ(attribute->get_NextSibling(&node), S_OK);
    EXPECT_EQ(node, nullptr);
    ToastAbi::IXmlNamedNodeMapPtr none;
    EXPECT_EQ(attribute->get_Attributes(&none), S_OK);
    EXPECT_EQ(none, nullptr);
}

TEST_F(XmlDomTest, HasChildNodes_TellsEmptyFromFull)
{
    boolean has = TRUE;
    EXPECT_EQ(m_first->HasChildNodes(&has), S_OK);
    EXPECT_FALSE(has);
    EXPECT_EQ(m_binding->HasChildNodes(&has), S_OK);
    EXPECT_TRUE(has);
}

TEST_F(XmlDomTest, AppendChild_TextIntoAttribute_IsItsValue)
{
    IXmlNodePtr source;
    EXPECT_EQ(Attributes(m_image)->GetNamedItem(RuntimeString(L"src"), &source), S_OK);
    AppendText(m_document, source, L"file:///C:\\A & B\\\"c\".png");
    EXPECT_EQ(Xml(m_image), L"<image id=\"1\" src=\"file:///C:\\A &amp; B\\&quot;c&quot;.png\"/>");
}

TEST_F(XmlDomTest, AppendChild_Twice_MovesTheNode)
{
    const IXmlNodePtr text(NewText(L"x"));
    const IXmlNodePtr second = Element(m_document, L"text", 1);
    IXmlNodePtr appended;
    EXPECT_EQ(m_first->AppendChild(text, &appended), S_OK);
    EXPECT_EQ(second->AppendChild(text, &appended), S_OK);
    EXPECT_EQ(Xml(m_first), L"<text id=\"1\"></text>");
    EXPECT_EQ(Xml(second), L"<text id=\"2\">x</text>");
}

TEST_F(XmlDomTest, AppendChild_NothingOrNodeOfAnotherDocument_IsRefused)
{
    const ToastAbi::IXmlDocumentPtr other = Document(ToastTemplateType::ToastText01);
    IXmlNodePtr appended = m_first;
    EXPECT_EQ(m_first->AppendChild(Element(other, L"text"), &appended), E_INVALIDARG);
    EXPECT_EQ(appended, nullptr);
    EXPECT_EQ(m_first->AppendChild(nullptr, &appended), E_INVALIDARG);
    EXPECT_EQ(m_first->AppendChild(m_binding, &appended), E_INVALIDARG);
}

TEST_F(XmlDomTest, InsertAndReplace_KeepTheOrder)
{
    IXmlNodePtr moved;
    EXPECT_EQ(m_binding->InsertBefore(Element(m_document, L"text", 2), m_image, &moved), S_OK);
    EXPECT_EQ(m_binding->ReplaceChild(Element(m_document, L"text", 2), m_image, &moved), S_OK);
    EXPECT_EQ(Name(moved), L"image");
    EXPECT_EQ(m_binding->ReplaceChild(m_first, m_image, &moved), E_INVALIDARG);
    EXPECT_EQ(Xml(m_binding), L"<binding template=\"ToastImageAndText04\"><text id=\"3\"></text>"
                              L"<text id=\"2\"></text><text id=\"1\"></text></binding>");
}

TEST_F(XmlDomTest, RemoveChild_NotAChild_IsRefused)
{
    IXmlNodePtr removed;
    EXPECT_EQ(m_first->RemoveChild(m_image, &removed), E_INVALIDARG);
    EXPECT_EQ(m_first->RemoveChild(nullptr, &removed), E_INVALIDARG);
}

TEST_F(XmlDomTest, CloneNode_DeepAndShallow)
{
    AppendText(m_document, m_first, L"x");
    IXmlNodePtr clone;
    EXPECT_EQ(m_first->CloneNode(TRUE, &clone), S_OK);
    EXPECT_EQ(Xml(clone), L"<text id=\"1\">x</text>");
    EXPECT_EQ(m_first->CloneNode(FALSE, &clone), S_OK);
    EXPECT_EQ(Xml(clone), L"<text id=\"1\"></text>");
}

TEST_F(XmlDomTest, OwnerDocument_KeepsTheTreeAlive)
{
    IXmlNodePtr text(NewText(L"x"));
    ToastAbi::IXmlDocumentPtr owner;
    EXPECT_EQ(text->get_OwnerDocument(&owner), S_OK);
    EXPECT_EQ(Xml(owner), Xml(m_document));
    ToastAbi::IXmlDocumentPtr none;
    EXPECT_EQ(IXmlNodePtr(m_document)->get_OwnerDocument(&none), S_OK);
    EXPECT_EQ(none, nullptr);
}

TEST_F(XmlDomTest, Node_OutlivesItsDocument)
{
    ToastAbi::IXmlDocumentPtr document = Document(ToastTemplateType::ToastText01);
    const IXmlNodePtr text = Element(document, L"text");
    document = nullptr;
    IXmlNodePtr parent;
    EXPECT_EQ(text->get_ParentNode(&parent), S_OK);
    EXPECT_EQ(Name(parent), L"binding");
}

TEST_F(XmlDomTest, AttributeMap_FindsAddsAndRemoves)
{
    const ToastAbi::IXmlNamedNodeMapPtr map = Attributes(m_image);
    UINT32 length = 0;
    EXPECT_EQ(map->get_Length(&length), S_OK);
    EXPECT_EQ(length, 2u);
    IXmlNodePtr node = m_image;
    EXPECT_EQ(map->GetNamedItem(RuntimeString(L"alt"), &node), S_OK);
    EXPECT_EQ(node, nullptr);
    EXPECT_EQ(map->RemoveNamedItem(RuntimeString(L"id"), &node), S_OK);
    EXPECT_EQ(Xml(m_image), L"<image src=\"\"/>");
    IXmlNodePtr previous = m_image;
    EXPECT_EQ(map->SetNamedItem(node, &previous), S_OK);
    EXPECT_EQ(previous, nullptr);
    EXPECT_EQ(Xml(m_image), L"<image src=\"\" id=\"1\"/>");
    EXPECT_EQ(map->SetNamedItem(m_first, &previous), E_INVALIDARG);
    EXPECT_EQ(map->Item(2, &node), S_OK);
    EXPECT_EQ(node, nullptr);
}

TEST_F(XmlDomTest, Element_AttributesByName)
{
    const Abi::IXmlElementPtr element(m_image);
    EXPECT_EQ(element->SetAttribute(RuntimeString(L"alt"), RuntimeString(L"a<b")), S_OK);
    EXPECT_EQ(element->SetAttribute(RuntimeString(L"id"), RuntimeString(L"2")), S_OK);
    HSTRING value = nullptr;
    EXPECT_EQ(element->GetAttribute(RuntimeString(L"alt"), &value), S_OK);
    EXPECT_EQ(TakeText(value), L"a<b");
    EXPECT_EQ(element->GetAttribute(RuntimeString(L"none"), &value), S_OK);
    EXPECT_EQ(value, nullptr);
    EXPECT_EQ(element->RemoveAttribute(RuntimeString(L"src")), S_OK);
    EXPECT_EQ(Xml(m_image), L"<image id=\"2\" alt=\"a&lt;b\"/>");
}

TEST_F(XmlDomTest, Document_MakesElementsAndAttributes)
{
    const Abi::IXmlDocumentPtr document(m_document);
    Abi::IXmlElementPtr audio;
    EXPECT_EQ(document->CreateElement(RuntimeString(L"audio"), &audio), S_OK);
    Abi::IXmlAttributePtr silent;
    EXPECT_EQ(document->CreateAttribute(RuntimeString(L"silent"), &silent), S_OK);
    EXPECT_EQ(silent->put_Value(RuntimeString(L"true")), S_OK);
    Abi::IXmlAttributePtr previous;
    EXPECT_EQ(audio->SetAttributeNode(silent, &previous), S_OK);
    Abi::IXmlElementPtr toast;
    EXPECT_EQ(document->get_DocumentElement(&toast), S_OK);
    Abi::IXmlNodePtr appended;
    EXPECT_EQ(Abi::IXmlNodePtr(toast)->AppendChild(Abi::IXmlNodePtr(audio), &appended), S_OK);
    EXPECT_TRUE(Xml(m_document).ends_with(L"</visual><audio silent=\"true\"/></toast>"));
    EXPECT_EQ(document->CreateElement(nullptr, &audio), E_INVALIDARG);
    EXPECT_EQ(document->CreateAttribute(nullptr, &silent), E_INVALIDARG);
}

TEST_F(XmlDomTest, ImportNode_CopiesFromAnotherDocument)
{
    const ToastAbi::IXmlDocumentPtr other = Document(ToastTemplateType::ToastText01);
    AppendText(other, Element(other, L"text"), L"from there");
    IXmlNodePtr imported;
    EXPECT_EQ(m_document->ImportNode(Element(other, L"text"), TRUE, &imported), S_OK);
    IXmlNodePtr appended;
    EXPECT_EQ(m_binding->AppendChild(imported, &appended), S_OK);
    EXPECT_EQ(Xml(appended), L"<text id=\"1\">from there</text>");
}

TEST_F(XmlDomTest, InnerText_ReadsAndReplaces)
{
    const Abi::IXmlNodeSerializerPtr serializer(m_first);
    EXPECT_EQ(serializer->put_InnerText(RuntimeString(L"1 < 2")), S_OK);
    HSTRING text = nullptr;
    EXPECT_EQ(serializer->get_InnerText(&text), S_OK);
    EXPECT_EQ(TakeText(text), L"1 < 2");
    EXPECT_EQ(Xml(m_first), L"<text id=\"1\">1 &lt; 2</text>");
}

TEST_F(XmlDomTest, CharacterData_EditsInPlace)
{
    const Abi::IXmlCharacterDataPtr data(NewText(L"abcdef"));
    EXPECT_EQ(data->InsertData(3, RuntimeString(L"-")), S_OK);
    EXPECT_EQ(data->DeleteData(0, 1), S_OK);
    EXPECT_EQ(data->ReplaceData(4, 99, RuntimeString(L"!")), S_OK);
    EXPECT_EQ(data->AppendData(RuntimeString(L"?")), S_OK);
    UINT32 length = 0;
    EXPECT_EQ(data->get_Length(&length), S_OK);
    EXPECT_EQ(length, 6u);
    HSTRING text = nullptr;
    EXPECT_EQ(data->get_Data(&text), S_OK);
    EXPECT_EQ(TakeText(text), L"bc-d!?");
    EXPECT_EQ(data->SubstringData(4, 99, &text), S_OK);
    EXPECT_EQ(TakeText(text), L"!?");
    EXPECT_EQ(data->SubstringData(7, 1, &text), E_INVALIDARG);
    EXPECT_EQ(data->DeleteData(7, 1), E_INVALIDARG);
}

TEST_F(XmlDomTest, SplitText_PutsTheRestBehind)
{
    const ToastAbi::IXmlTextPtr text = NewText(L"onetwo");
    IXmlNodePtr appended;
    EXPECT_EQ(m_first->AppendChild(IXmlNodePtr(text), &appended), S_OK);
    ToastAbi::IXmlTextPtr rest;
    EXPECT_EQ(text->SplitText(3, &rest), S_OK);
    EXPECT_EQ(Xml(text), L"one");
    EXPECT_EQ(Xml(rest), L"two");
    EXPECT_EQ(Xml(m_first), L"<text id=\"1\">onetwo</text>");
    EXPECT_EQ(text->SplitText(4, &rest), E_INVALIDARG);
}

TEST_F(XmlDomTest, NoPlaceForTheResult_IsRefused)
{
    EXPECT_EQ(m_first->get_FirstChild(nullptr), E_POINTER);
    EXPECT_EQ(m_document->GetElementsByTagName(nullptr, nullptr), E_POINTER);
    EXPECT_EQ(m_document->CreateTextNode(nullptr, nullptr), E_POINTER);
}
