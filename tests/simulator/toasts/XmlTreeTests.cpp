#include "simulator/toasts/XmlTree.h"
#include "simulator/toasts/XmlWriter.h"

#include <gmock/gmock.h>

using Simulator::WriteXml;
using Simulator::XmlNode;
using Simulator::XmlTree;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
// <a><b/><c>text</c></a>
class XmlTreeTest : public testing::Test
{
protected:
    XmlTreeTest()
    {
        EXPECT_EQ(m_tree.Insert(m_tree.Document(), m_a), S_OK);
        EXPECT_EQ(m_tree.Insert(m_a, m_b), S_OK);
        EXPECT_EQ(m_tree.Insert(m_a, m_c), S_OK);
        EXPECT_EQ(m_tree.Insert(m_c, m_text), S_OK);
    }

    std::wstring Xml() { return WriteXml(m_tree.Document()); }

    XmlTree m_tree;
    XmlNode& m_a = m_tree.CreateElement(L"a");
    XmlNode& m_b = m_tree.CreateElement(L"b");
    XmlNode& m_c = m_tree.CreateElement(L"c");
    XmlNode& m_text = m_tree.CreateText(L"text");
};
} // namespace

TEST_F(XmlTreeTest, Insert_WithoutReference_Appends)
{
    EXPECT_EQ(Xml(), L"<a><b/><c>text</c></a>");
    EXPECT_EQ(m_b.m_pParent, &m_a);
}

TEST_F(XmlTreeTest, Insert_BeforeReference_KeepsOrder)
{
    EXPECT_EQ(m_tree.Insert(m_a, m_tree.CreateElement(L"n"), &m_c), S_OK);
    EXPECT_EQ(Xml(), L"<a><b/><n/><c>text</c></a>");
}

TEST_F(XmlTreeTest, Insert_NodeWithParent_MovesIt)
{
    EXPECT_EQ(m_tree.Insert(m_b, m_text), S_OK);
    EXPECT_EQ(Xml(), L"<a><b>text</b><c/></a>");
    EXPECT_EQ(m_tree.Insert(m_a, m_b), S_OK);
    EXPECT_EQ(Xml(), L"<a><c/><b>text</b></a>");
}

TEST_F(XmlTreeTest, Insert_BeforeItself_ChangesNothing)
{
    EXPECT_EQ(m_tree.Insert(m_a, m_b, &m_b), S_OK);
    EXPECT_EQ(Xml(), L"<a><b/><c>text</c></a>");
}

TEST_F(XmlTreeTest, Insert_ReferenceElsewhere_IsRefused)
{
    EXPECT_EQ(m_tree.Insert(m_a, m_tree.CreateElement(L"n"), &m_text), E_INVALIDARG);
    EXPECT_EQ(Xml(), L"<a><b/><c>text</c></a>");
}

TEST_F(XmlTreeTest, Insert_AncestorOrItself_IsRefused)
{
    EXPECT_EQ(m_tree.Insert(m_b, m_a), E_INVALIDARG);
    EXPECT_EQ(m_tree.Insert(m_b, m_b), E_INVALIDARG);
    EXPECT_EQ(Xml(), L"<a><b/><c>text</c></a>");
}

TEST_F(XmlTreeTest, Insert_WhatTheParentCannotHold_IsRefused)
{
    XmlNode& attribute = m_tree.CreateAttribute(L"x", L"");
    EXPECT_EQ(m_tree.Insert(m_text, m_tree.CreateText(L"t")), E_INVALIDARG);
    EXPECT_EQ(m_tree.Insert(m_a, attribute), E_INVALIDARG);
    EXPECT_EQ(m_tree.Insert(attribute, m_tree.CreateElement(L"n")), E_INVALIDARG);
    EXPECT_EQ(m_tree.Insert(m_tree.Document(), m_tree.CreateElement(L"second")), E_INVALIDARG);
    EXPECT_EQ(m_tree.Insert(m_tree.Document(), m_tree.CreateText(L"t")), E_INVALIDARG);
    EXPECT_EQ(m_tree.Insert(m_a, m_tree.Document()), E_INVALIDARG);
    EXPECT_EQ(Xml(), L"<a><b/><c>text</c></a>");
}

TEST_F(XmlTreeTest, Detach_LeavesTheNodeUsable)
{
    XmlTree::Detach(m_c);
    EXPECT_EQ(Xml(), L"<a><b/></a>");
    EXPECT_EQ(WriteXml(m_c), L"<c>text</c>");
    XmlTree::Detach(m_c);
    EXPECT_EQ(m_c.m_pParent, nullptr);
}

TEST_F(XmlTreeTest, SetAttribute_NewName_Adds)
{
    XmlNode* previous = &m_a;
    EXPECT_EQ(m_tree.SetAttribute(m_b, m_tree.CreateAttribute(L"x", L"1"), &previous), S_OK);
    EXPECT_EQ(previous, nullptr);
    EXPECT_EQ(WriteXml(m_b), L"<b x=\"1\"/>");
}

TEST_F(XmlTreeTest, SetAttribute_SameName_ReplacesInPlace)
{
    XmlNode* previous = nullptr;
    XmlNode& first = m_tree.CreateAttribute(L"x", L"1");
    EXPECT_EQ(m_tree.SetAttribute(m_b, first, &previous), S_OK);
    EXPECT_EQ(m_tree.SetAttribute(m_b, m_tree.CreateAttribute(L"y", L"2"), &previous), S_OK);
    EXPECT_EQ(m_tree.SetAttribute(m_b, m_tree.CreateAttribute(L"x", L"3"), &previous), S_OK);
    EXPECT_EQ(previous, &first);
    EXPECT_EQ(first.m_pParent, nullptr);
    EXPECT_EQ(WriteXml(m_b), L"<b x=\"3\" y=\"2\"/>");
}

TEST_F(XmlTreeTest, SetAttribute_OfAnotherElementOrNoAttribute_IsRefused)
{
    XmlNode* previous = nullptr;
    XmlNode& attribute = m_tree.CreateAttribute(L"x", L"1");
    EXPECT_EQ(m_tree.SetAttribute(m_b, attribute, &previous), S_OK);
    EXPECT_EQ(m_tree.SetAttribute(m_b, attribute, &previous), S_OK);
    EXPECT_EQ(m_tree.SetAttribute(m_c, attribute, &previous), E_INVALIDARG);
    EXPECT_EQ(m_tree.SetAttribute(m_c, m_tree.CreateText(L"t"), &previous), E_INVALIDARG);
    EXPECT_EQ(m_tree.SetAttribute(m_text, m_tree.CreateAttribute(L"y", L""), &previous), E_INVALIDARG);
}

TEST_F(XmlTreeTest, Elements_FindsAllDepthsInDocumentOrder)
{
    XmlNode& inner = m_tree.CreateElement(L"c");
    EXPECT_EQ(m_tree.Insert(m_b, inner), S_OK);
    EXPECT_THAT(m_tree.Document().Elements(L"c"), ElementsAre(&inner, &m_c));
    EXPECT_THAT(m_tree.Document().Elements(L"*"), ElementsAre(&m_a, &m_b, &inner, &m_c));
    EXPECT_THAT(m_c.Elements(L"c"), IsEmpty());
}

TEST_F(XmlTreeTest, Text_JoinsEverythingBelow)
{
    EXPECT_EQ(m_tree.Insert(m_b, m_tree.CreateText(L"before ")), S_OK);
    EXPECT_EQ(m_a.Text(), L"before text");
}

TEST_F(XmlTreeTest, SetText_ReplacesChildrenOrValue)
{
    m_tree.SetText(m_c, L"new");
    EXPECT_EQ(WriteXml(m_c), L"<c>new</c>");
    EXPECT_EQ(m_text.m_pParent, nullptr);
    m_tree.SetText(m_c, L"");
    EXPECT_EQ(WriteXml(m_c), L"<c/>");
    m_tree.SetText(m_text, L"value");
    EXPECT_EQ(m_text.m_strValue, L"value");
}

TEST_F(XmlTreeTest, Copy_Deep_IsIndependent)
{
    XmlNode* previous = nullptr;
    EXPECT_EQ(m_tree.SetAttribute(m_c, m_tree.CreateAttribute(L"x", L"1"), &previous), S_OK);
    const XmlNode& copy = m_tree.Copy(m_c, true);
    m_tree.SetText(m_c, L"changed");
    EXPECT_EQ(WriteXml(copy), L"<c x=\"1\">text</c>");
    EXPECT_EQ(copy.m_pParent, nullptr);
}

TEST_F(XmlTreeTest, Copy_Shallow_KeepsAttributesOnly)
{
    XmlNode* previous = nullptr;
    EXPECT_EQ(m_tree.SetAttribute(m_c, m_tree.CreateAttribute(L"x", L"1"), &previous), S_OK);
    EXPECT_EQ(WriteXml(m_tree.Copy(m_c, false)), L"<c x=\"1\"/>");
    EXPECT_EQ(WriteXml(m_tree.Copy(*m_c.Attribute(L"x"), false)), L"x=\"1\"");
}

TEST_F(XmlTreeTest, Copy_IntoAnotherTree_BelongsThere)
{
    XmlTree other;
    XmlNode& copy = other.Copy(m_a, true);
    EXPECT_EQ(other.Insert(other.Document(), copy), S_OK);
    EXPECT_EQ(WriteXml(other.Document()), L"<a><b/><c>text</c></a>");
}
