#include "usbc/XmlAttributes.h"

#include "platform/ComApartment.h"
#include "platform/ComError.h"
#include "platform/XmlDocument.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/platform/MethodRedirection.h"
#include "tests/support/BstrLedger.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using Simulator::Redirection;

namespace
{
class XmlAttributesTest : public testing::Test
{
protected:
    XmlAttributesTest()
    {
        EXPECT_EQ(m_document.Load(MakeBstr(L"<a n='7' empty='' text='x'>words<b n='8'/></a>").get()), S_OK);
        m_spNode = SelectNode(m_document.GetDocument(), L"/a");
        EXPECT_TRUE(m_spNode);
        m_spNode->get_attributes(&m_spAttributes);
        m_spAttributes->getNamedItem(MakeBstr(L"n").get(), &m_spAttribute);
    }

    // The number cannot be read, which leaves what was there.
    void ExpectUnreadable()
    {
        std::int32_t value = 42;
        EXPECT_FALSE(ReadAttribute(m_spNode, L"n", value));
        EXPECT_EQ(value, 42);
        EXPECT_FALSE(ReadAttribute(m_spNode, L"n"));
    }

    std::int32_t Number(const wchar_t* name)
    {
        std::int32_t value = 42;
        ReadAttribute(m_spNode, name, value);
        return value;
    }

    ComApartment m_apartment{COINIT_APARTMENTTHREADED};
    XmlDocument m_document;
    IXMLDOMNodePtr m_spNode;
    IXMLDOMNamedNodeMapPtr m_spAttributes;
    IXMLDOMNodePtr m_spAttribute;
};

HRESULT STDMETHODCALLTYPE SelectFails(IXMLDOMDocument*, BSTR, IXMLDOMNode**)
{
    return E_FAIL;
}
HRESULT STDMETHODCALLTYPE SelectGivesNothing(IXMLDOMDocument*, BSTR, IXMLDOMNode** node)
{
    *node = nullptr;
    return S_OK;
}
HRESULT STDMETHODCALLTYPE AttributesFail(IXMLDOMNode*, IXMLDOMNamedNodeMap**)
{
    return E_FAIL;
}
HRESULT STDMETHODCALLTYPE AttributesGiveNothing(IXMLDOMNode*, IXMLDOMNamedNodeMap** attributes)
{
    *attributes = nullptr;
    return S_OK;
}
HRESULT STDMETHODCALLTYPE ItemFails(IXMLDOMNamedNodeMap*, BSTR, IXMLDOMNode**)
{
    return E_FAIL;
}
HRESULT STDMETHODCALLTYPE ItemGivesNothing(IXMLDOMNamedNodeMap*, BSTR, IXMLDOMNode** node)
{
    *node = nullptr;
    return S_OK;
}
HRESULT STDMETHODCALLTYPE TextFails(IXMLDOMNode*, BSTR*)
{
    return E_FAIL;
}
HRESULT STDMETHODCALLTYPE TextGivesNothing(IXMLDOMNode*, BSTR* text)
{
    *text = nullptr;
    return S_OK;
}

BSTR WINAPI NoBstr(const OLECHAR*)
{
    return nullptr;
}

template <class Step>
HRESULT CodeOf(Step step)
{
    try
    {
        step();
        return S_OK;
    }
    catch (const _com_error& error)
    {
        return error.Error();
    }
}
} // namespace

TEST_F(XmlAttributesTest, Select_NodeOfThatPath_OrNull)
{
    EXPECT_TRUE(SelectNode(m_document.GetDocument(), L"/a/b"));
    EXPECT_FALSE(SelectNode(m_document.GetDocument(), L"/a/c"));
    EXPECT_FALSE(SelectNode(m_document.GetDocument(), L"/not a path"));
}

TEST_F(XmlAttributesTest, Select_CallFailsOrGivesNothing_IsNull)
{
    {
        const MethodRedirection failing(m_document.GetDocument(), &IXMLDOMDocument::selectSingleNode, &SelectFails);
        EXPECT_FALSE(SelectNode(m_document.GetDocument(), L"/a"));
    }
    const MethodRedirection empty(m_document.GetDocument(), &IXMLDOMDocument::selectSingleNode, &SelectGivesNothing);
    EXPECT_FALSE(SelectNode(m_document.GetDocument(), L"/a"));
}

TEST_F(XmlAttributesTest, Read_Attribute_IsItsTextOrNumber)
{
    EXPECT_STREQ(ReadAttribute(m_spNode, L"text").get(), L"x");
    EXPECT_EQ(Number(L"n"), 7);
    EXPECT_EQ(Number(L"text"), 0);
    EXPECT_EQ(Number(L"empty"), 0);
}

TEST_F(XmlAttributesTest, Read_NoSuchAttribute_LeavesTheValue)
{
    EXPECT_FALSE(ReadAttribute(m_spNode, L"absent"));
    EXPECT_EQ(Number(L"absent"), 42);
    EXPECT_EQ(Number(L"N"), 42);
}

TEST_F(XmlAttributesTest, Read_NodeWithoutAttributes_LeavesTheValue)
{
    m_spNode = SelectNode(m_document.GetDocument(), L"/a/text()");
    ASSERT_TRUE(m_spNode);
    ExpectUnreadable();
}

TEST_F(XmlAttributesTest, Read_AStepFailsOrGivesNothing_LeavesTheValue)
{
    {
        const MethodRedirection redirection(m_spNode.GetInterfacePtr(), &IXMLDOMNode::get_attributes, &AttributesFail);
        ExpectUnreadable();
    }
    {
        const MethodRedirection redirection(m_spNode.GetInterfacePtr(), &IXMLDOMNode::get_attributes,
                                            &AttributesGiveNothing);
        ExpectUnreadable();
    }
    {
        const MethodRedirection redirection(m_spAttributes.GetInterfacePtr(), &IXMLDOMNamedNodeMap::getNamedItem,
                                            &ItemFails);
        ExpectUnreadable();
    }
    {
        const MethodRedirection redirection(m_spAttributes.GetInterfacePtr(), &IXMLDOMNamedNodeMap::getNamedItem,
                                            &ItemGivesNothing);
        ExpectUnreadable();
    }
    {
        const MethodRedirection redirection(m_spAttribute.GetInterfacePtr(), &IXMLDOMNode::get_text, &TextFails);
        ExpectUnreadable();
    }
    {
        const MethodRedirection redirection(m_spAttribute.GetInterfacePtr(), &IXMLDOMNode::get_text, &TextGivesNothing);
        ExpectUnreadable();
    }
    EXPECT_EQ(Number(L"n"), 7);
}

TEST_F(XmlAttributesTest, Texts_CannotBeAllocated_RaisesOutOfMemory)
{
    const Redirection<decltype(SysAllocString)> noMemory("SysAllocString", &NoBstr);
    std::int32_t value = 42;
    EXPECT_EQ(CodeOf([] { static_cast<void>(MakeBstr(L"x")); }), E_OUTOFMEMORY);
    EXPECT_EQ(CodeOf([this] { static_cast<void>(SelectNode(m_document.GetDocument(), L"/a")); }), E_OUTOFMEMORY);
    EXPECT_EQ(CodeOf([this] { static_cast<void>(ReadAttribute(m_spNode, L"n")); }), E_OUTOFMEMORY);
    EXPECT_EQ(CodeOf([&] { ReadAttribute(m_spNode, L"n", value); }), E_OUTOFMEMORY);
    EXPECT_EQ(value, 42);
}

TEST_F(XmlAttributesTest, Reading_FreesItsTexts)
{
    const TestSupport::BstrLedger ledger({L"msxml3.dll"});
    EXPECT_EQ(Number(L"n"), 7);
    EXPECT_EQ(Number(L"absent"), 42);
    EXPECT_TRUE(SelectNode(m_document.GetDocument(), L"/a/b"));
    EXPECT_GE(ledger.Allocations(), 4u);
    EXPECT_THAT(ledger.LiveTexts(), testing::IsEmpty());
}
