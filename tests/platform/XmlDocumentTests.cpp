#include "platform/XmlDocument.h"

#include "platform/ComApartment.h"
#include "tests/support/BstrLedger.h"
#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iterator>
#include <string>
#include <type_traits>

namespace
{
class XmlDocumentTest : public testing::Test
{
protected:
    HRESULT Load(const wchar_t* text) { return m_document.Load(_bstr_t(text)); }

    std::wstring NodeText(const wchar_t* path)
    {
        IXMLDOMNode* node = nullptr;
        EXPECT_EQ(m_document.GetDocument()->selectSingleNode(_bstr_t(path), &node), S_OK);
        _bstr_t text;
        if (node == nullptr)
            return L"(no node)";
        EXPECT_HRESULT_SUCCEEDED(node->get_text(text.GetAddress()));
        node->Release();
        return std::wstring(text.length() != 0 ? static_cast<const wchar_t*>(text) : L"");
    }

    ComApartment m_apartment{COINIT_APARTMENTTHREADED};
    XmlDocument m_document;
};

IXMLDOMElement* RootOf(XmlDocument& document)
{
    IXMLDOMElement* root = nullptr;
    EXPECT_HRESULT_SUCCEEDED(document.GetDocument()->get_documentElement(&root));
    return root;
}

// References on the object once this function has given its own back.
ULONG References(IUnknown* object)
{
    object->AddRef();
    return object->Release();
}
} // namespace

TEST_F(XmlDocumentTest, New_HoldsNothing)
{
    EXPECT_EQ(m_document.GetDocument(), nullptr);
    EXPECT_FALSE(m_document.IsReady());
    EXPECT_EQ(m_document.Text(), nullptr);
}

TEST_F(XmlDocumentTest, Copies_OfAHolder_DoNotExist)
{
    EXPECT_FALSE(std::is_copy_constructible_v<XmlDocument>);
    EXPECT_FALSE(std::is_copy_assignable_v<XmlDocument>);
}

TEST_F(XmlDocumentTest, Load_WellFormedText_GivesItsNodes)
{
    ASSERT_EQ(Load(L"<GetUsbCMessagesOutput><Output><Data><Port1><Message1>7</Message1></Port1></Data></Output>"
                   L"</GetUsbCMessagesOutput>"),
              S_OK);
    EXPECT_EQ(NodeText(L"/GetUsbCMessagesOutput/Output/Data/Port1/Message1"), L"7");
}

TEST_F(XmlDocumentTest, Load_WellFormedText_KeepsTextAsWrittenBack)
{
    ASSERT_EQ(Load(L"<a   b='1'>x</a>"), S_OK);
    EXPECT_THAT(std::wstring(m_document.Text()), testing::HasSubstr(L"<a b=\"1\">x</a>"));
}

TEST_F(XmlDocumentTest, Load_EmptyText_FailsAndHoldsDocumentWithoutRoot)
{
    EXPECT_EQ(Load(L""), E_FAIL);
    EXPECT_TRUE(m_document.IsReady());
    ASSERT_NE(m_document.GetDocument(), nullptr);
    EXPECT_EQ(RootOf(m_document), nullptr);
}

TEST_F(XmlDocumentTest, Load_NullText_FailsAndHoldsDocumentWithoutRoot)
{
    EXPECT_TRUE(FAILED(m_document.Load(nullptr)));
    ASSERT_NE(m_document.GetDocument(), nullptr);
    EXPECT_EQ(RootOf(m_document), nullptr);
}

TEST_F(XmlDocumentTest, Load_TextThatDoesNotParse_FailsAndHoldsDocumentWithoutRoot)
{
    for (const wchar_t* text : {L"<a><b></a>", L"no markup", L"<a>", L"<a/><b/>", L"\x0001\x0002", L"<a b='1' b='2'/>"})
    {
        EXPECT_EQ(Load(text), E_FAIL) << text;
        ASSERT_NE(m_document.GetDocument(), nullptr) << text;
        EXPECT_EQ(RootOf(m_document), nullptr) << text;
    }
}

TEST_F(XmlDocumentTest, Load_DocumentType_IsATextThatDoesNotParseAndIsLogged)
{
    for (const wchar_t* text :
         {L"<!DOCTYPE a><a/>", L"<?xml version=\"1.0\"?>\n<!DOCTYPE a [<!ENTITY e \"1\">]><a>&e;</a>",
          L"<!-- c --><!DOCTYPE a SYSTEM 'a.dtd'><a/>", L"<!-- > --><?p ?> <!DOCTYPE a><a/>", L" \r\n<!DOCTYPE a><a/>"})
    {
        ASSERT_EQ(Load(L"<first/>"), S_OK);
        TestSupport::ClearLog();
        EXPECT_EQ(Load(text), E_FAIL) << text;
        EXPECT_TRUE(m_document.IsReady()) << text;
        ASSERT_NE(m_document.GetDocument(), nullptr) << text;
        EXPECT_EQ(RootOf(m_document), nullptr) << text;
        EXPECT_EQ(SysStringLen(m_document.Text()), 0u) << text;
        EXPECT_THAT(TestSupport::LogLines(),
                    testing::ElementsAre(
                        L"Information|XmlDocument::Parse|The text declares a document type, it is not parsed."));
    }
    ASSERT_EQ(Load(L"<a>whole</a>"), S_OK);
    EXPECT_EQ(NodeText(L"/a"), L"whole");
}

TEST_F(XmlDocumentTest, Load_NameOfADocumentTypeInsideTheRoot_IsText)
{
    for (const wchar_t* text : {L"<a><!-- <!DOCTYPE a> -->x</a>", L"<a><![CDATA[x<!DOCTYPE]]></a>",
                                L"<!-- <!DOCTYPE a> --><a>x</a>", L"<?p <!DOCTYPE a> ?><a>x</a>"})
    {
        EXPECT_EQ(Load(text), S_OK) << text;
        EXPECT_TRUE(NodeText(L"/a").starts_with(L"x")) << text;
    }
    EXPECT_EQ(Load(L"<!-- <!DOCTYPE a>"), E_FAIL);
    EXPECT_EQ(Load(L"<?p <!DOCTYPE a>"), E_FAIL);
    EXPECT_THAT(TestSupport::LogLines(), testing::IsEmpty());
}

// Behind a zero too, where a parser that reads a length would find it.
TEST_F(XmlDocumentTest, Load_DocumentTypeBehindAZero_IsFound)
{
    constexpr wchar_t text[] = L"<?p ?>\0<!DOCTYPE a><a/>";
    EXPECT_EQ(m_document.Load(_bstr_t(SysAllocStringLen(text, std::size(text) - 1), false)), E_FAIL);
    EXPECT_EQ(TestSupport::LogLines().size(), 1u);
}

TEST_F(XmlDocumentTest, Load_TextThatDoesNotParse_ForgetsEarlierText)
{
    ASSERT_EQ(Load(L"<first/>"), S_OK);
    EXPECT_EQ(Load(L"<second>"), E_FAIL);
    EXPECT_EQ(SysStringLen(m_document.Text()), 0u);
}

TEST_F(XmlDocumentTest, Load_AfterFailure_Works)
{
    EXPECT_EQ(Load(L"<broken"), E_FAIL);
    ASSERT_EQ(Load(L"<a>whole</a>"), S_OK);
    EXPECT_EQ(NodeText(L"/a"), L"whole");
}

TEST_F(XmlDocumentTest, Load_BlanksBetweenElements_AreChildNodes)
{
    ASSERT_EQ(Load(L"<a> <b/>\n<c/>\t</a>"), S_OK);
    IXMLDOMElement* root = RootOf(m_document);
    ASSERT_NE(root, nullptr);
    IXMLDOMNodeList* children = nullptr;
    ASSERT_EQ(root->get_childNodes(&children), S_OK);
    long count = 0;
    EXPECT_EQ(children->get_length(&count), S_OK);
    EXPECT_EQ(count, 5);
    children->Release();
    root->Release();
}

TEST_F(XmlDocumentTest, Load_Document_IsSynchronousUnvalidatedAndClosedToOutside)
{
    ASSERT_EQ(Load(L"<a/>"), S_OK);
    IXMLDOMDocument* document = m_document.GetDocument();
    VARIANT_BOOL isAsync = VARIANT_TRUE;
    VARIANT_BOOL validates = VARIANT_TRUE;
    VARIANT_BOOL resolves = VARIANT_TRUE;
    VARIANT_BOOL keepsBlanks = VARIANT_FALSE;
    EXPECT_EQ(document->get_async(&isAsync), S_OK);
    EXPECT_EQ(document->get_validateOnParse(&validates), S_OK);
    EXPECT_EQ(document->get_resolveExternals(&resolves), S_OK);
    EXPECT_EQ(document->get_preserveWhiteSpace(&keepsBlanks), S_OK);
    EXPECT_EQ(isAsync, VARIANT_FALSE);
    EXPECT_EQ(validates, VARIANT_FALSE);
    EXPECT_EQ(resolves, VARIANT_FALSE);
    EXPECT_EQ(keepsBlanks, VARIANT_TRUE);
}

TEST_F(XmlDocumentTest, Load_Twice_GivesFirstDocumentBack)
{
    ASSERT_EQ(Load(L"<first/>"), S_OK);
    const IXMLDOMDocumentPtr spFirst = m_document.GetDocument();
    const ULONG held = References(spFirst);
    ASSERT_EQ(Load(L"<second/>"), S_OK);
    EXPECT_EQ(References(spFirst), held - 1);
    EXPECT_NE(m_document.GetDocument(), spFirst.GetInterfacePtr());
}

TEST_F(XmlDocumentTest, GetDocument_DoesNotCountAReference)
{
    ASSERT_EQ(Load(L"<a/>"), S_OK);
    const ULONG before = References(m_document.GetDocument());
    EXPECT_EQ(References(m_document.GetDocument()), before);
}

TEST_F(XmlDocumentTest, Destruction_GivesDocumentBack)
{
    IXMLDOMDocumentPtr spKept;
    ULONG held = 0;
    {
        XmlDocument document;
        ASSERT_EQ(document.Load(_bstr_t(L"<a/>")), S_OK);
        spKept = document.GetDocument();
        held = References(spKept);
    }
    EXPECT_EQ(References(spKept), held - 1);
}

TEST_F(XmlDocumentTest, TextsOfMsxml_AfterTwoLoadsAndTheEnd_AreAllFreed)
{
    const TestSupport::BstrLedger ledger({L"msxml3.dll"});
    {
        XmlDocument document;
        EXPECT_EQ(document.Load(_bstr_t(L"<first/>")), S_OK);
        EXPECT_EQ(document.Load(_bstr_t(L"<second/>")), S_OK);
        EXPECT_THAT(ledger.LiveTexts(), testing::Contains(std::wstring(document.Text())));
    }
    EXPECT_THAT(ledger.LiveTexts(), testing::IsEmpty());
}
