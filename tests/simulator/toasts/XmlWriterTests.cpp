#include "simulator/toasts/XmlWriter.h"

#include <comdef.h>
#include <gtest/gtest.h>
#include <msxml2.h>

using Simulator::WriteXml;
using Simulator::XmlNode;
using Simulator::XmlTree;

_COM_SMARTPTR_TYPEDEF(IXMLDOMDocument, IID_IXMLDOMDocument);
_COM_SMARTPTR_TYPEDEF(IXMLDOMElement, IID_IXMLDOMElement);

namespace
{
std::wstring ElementWithText(std::wstring_view text)
{
    XmlTree tree;
    XmlNode& element = tree.CreateElement(L"e");
    tree.SetText(element, text);
    return WriteXml(element);
}

std::wstring AttributeWithValue(std::wstring_view value)
{
    XmlTree tree;
    return WriteXml(tree.CreateAttribute(L"a", value));
}

// Everything that XML treats specially, in one value.
constexpr wchar_t g_awkward[] = L"a&b<c>d\"e'f\tg\nh\ri]]>j \x00DC\x4F60\xD83D\xDE00";
} // namespace

TEST(XmlWriter, Text_MarkupIsEscaped)
{
    EXPECT_EQ(ElementWithText(L"a & b < c > d"), L"<e>a &amp; b &lt; c &gt; d</e>");
}

TEST(XmlWriter, Text_QuotesTabsAndLinesStand)
{
    EXPECT_EQ(ElementWithText(L"\"a'\tb\nc"), L"<e>\"a'\tb\nc</e>");
}

TEST(XmlWriter, Text_CarriageReturn_SurvivesAParser)
{
    EXPECT_EQ(ElementWithText(L"a\r\nb"), L"<e>a&#13;\nb</e>");
}

TEST(XmlWriter, Attribute_QuotesTabsAndLinesAreEscaped)
{
    EXPECT_EQ(AttributeWithValue(L"\"<&>'\t\r\n"), L"a=\"&quot;&lt;&amp;&gt;'&#9;&#13;&#10;\"");
}

TEST(XmlWriter, Attribute_Empty_StaysAnAttribute)
{
    EXPECT_EQ(AttributeWithValue(L""), L"a=\"\"");
}

TEST(XmlWriter, EmptyElement_HasEndTagOnlyWhenItAsksForOne)
{
    XmlTree tree;
    XmlNode& element = tree.CreateElement(L"e");
    EXPECT_EQ(WriteXml(element), L"<e/>");
    element.m_bEndTag = true;
    EXPECT_EQ(WriteXml(element), L"<e></e>");
}

// The platform's own parser reads the same values back.
TEST(XmlWriter, Document_ReadByAnotherParser_GivesTheSameValues)
{
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK);
    {
        XmlTree tree;
        XmlNode& root = tree.CreateElement(L"toast");
        ASSERT_EQ(tree.Insert(tree.Document(), root), S_OK);
        XmlNode* previous = nullptr;
        ASSERT_EQ(tree.SetAttribute(root, tree.CreateAttribute(L"src", g_awkward), &previous), S_OK);
        tree.SetText(root, g_awkward);

        IXMLDOMDocumentPtr parser;
        ASSERT_EQ(parser.CreateInstance(L"Msxml2.DOMDocument.3.0"), S_OK);
        parser->put_preserveWhiteSpace(VARIANT_TRUE);
        VARIANT_BOOL parsed = VARIANT_FALSE;
        ASSERT_EQ(parser->loadXML(_bstr_t(WriteXml(tree.Document()).c_str()), &parsed), S_OK);
        IXMLDOMElementPtr element;
        ASSERT_EQ(parser->get_documentElement(&element), S_OK);
        _variant_t value;
        EXPECT_EQ(element->getAttribute(_bstr_t(L"src"), &value), S_OK);
        EXPECT_STREQ(static_cast<const wchar_t*>(_bstr_t(value)), g_awkward);
        _bstr_t text;
        EXPECT_EQ(element->get_text(text.GetAddress()), S_OK);
        EXPECT_STREQ(static_cast<const wchar_t*>(text), g_awkward);
    }
    CoUninitialize();
}
