#include "platform/ComApartment.h"
#include "platform/XmlDocument.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/platform/MethodRedirection.h"
#include "tests/support/BstrLedger.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace
{
constexpr HRESULT g_hrPlanned = static_cast<HRESULT>(0x80041234);

struct Creation
{
    CLSID m_classId;
    IUnknown* m_pOuter;
    DWORD m_dwContext;
    IID m_iid;
};

struct Observed
{
    decltype(CoCreateInstance)* m_pfnCreate = nullptr;
    HRESULT m_hrCreate = S_OK;
    bool m_bGivesNothing = false;
    std::vector<Creation> m_lstCreations;
    IUnknown* m_pWatched = nullptr; // a document whose references are noted at each creation
    ULONG m_nReferencesAtCreation = 0;
    std::vector<std::string> m_lstCalls;
    std::string m_strFailing;
};

Observed g_observed;

HRESULT WINAPI ObservedCreate(REFCLSID classId, LPUNKNOWN outer, DWORD context, REFIID iid, LPVOID* object)
{
    g_observed.m_lstCreations.push_back({classId, outer, context, iid});
    if (g_observed.m_pWatched != nullptr)
    {
        g_observed.m_pWatched->AddRef();
        g_observed.m_nReferencesAtCreation = g_observed.m_pWatched->Release();
    }
    if (FAILED(g_observed.m_hrCreate))
        return g_observed.m_hrCreate;
    if (g_observed.m_bGivesNothing)
    {
        *object = nullptr;
        return S_OK;
    }
    return g_observed.m_pfnCreate(classId, outer, context, iid, object);
}

HRESULT Enter(const char* call)
{
    g_observed.m_lstCalls.push_back(call);
    return g_observed.m_strFailing == call ? g_hrPlanned : S_OK;
}

std::string WithValue(const char* call, VARIANT_BOOL value)
{
    return std::string(call) + (value != VARIANT_FALSE ? " true" : " false");
}

HRESULT STDMETHODCALLTYPE PutAsync(IXMLDOMDocument*, VARIANT_BOOL value)
{
    return Enter(WithValue("put_async", value).c_str());
}
HRESULT STDMETHODCALLTYPE PutValidate(IXMLDOMDocument*, VARIANT_BOOL value)
{
    return Enter(WithValue("put_validateOnParse", value).c_str());
}
HRESULT STDMETHODCALLTYPE PutResolve(IXMLDOMDocument*, VARIANT_BOOL value)
{
    return Enter(WithValue("put_resolveExternals", value).c_str());
}
HRESULT STDMETHODCALLTYPE PutPreserve(IXMLDOMDocument*, VARIANT_BOOL value)
{
    return Enter(WithValue("put_preserveWhiteSpace", value).c_str());
}
HRESULT STDMETHODCALLTYPE LoadXml(IXMLDOMDocument*, BSTR, VARIANT_BOOL* loaded)
{
    *loaded = VARIANT_TRUE;
    return Enter("loadXML");
}
HRESULT STDMETHODCALLTYPE GetXml(IXMLDOMDocument*, BSTR* xml)
{
    const HRESULT hr = Enter("get_xml");
    *xml = SUCCEEDED(hr) ? SysAllocString(L"<written-back/>") : nullptr;
    return hr;
}

class XmlDocumentFailureTest : public testing::Test
{
protected:
    void SetUp() override
    {
        g_observed = Observed();
        XmlDocument sample;
        ASSERT_EQ(sample.Load(_bstr_t(L"<a/>")), S_OK);
        IXMLDOMDocument* document = sample.GetDocument();
        Replace(document, &IXMLDOMDocument::put_async, &PutAsync);
        Replace(document, &IXMLDOMDocument::put_validateOnParse, &PutValidate);
        Replace(document, &IXMLDOMDocument::put_resolveExternals, &PutResolve);
        Replace(document, &IXMLDOMDocument::put_preserveWhiteSpace, &PutPreserve);
        Replace(document, &IXMLDOMDocument::loadXML, &LoadXml);
        Replace(document, &IXMLDOMDocument::get_xml, &GetXml);
        m_create =
            std::make_unique<Simulator::Redirection<decltype(CoCreateInstance)>>("CoCreateInstance", &ObservedCreate);
        g_observed.m_pfnCreate = m_create->Original();
    }

    template <class Method, class Function>
    void Replace(IXMLDOMDocument* sample, Method method, Function* replacement)
    {
        m_lstMethods.push_back(std::make_unique<MethodRedirection>(sample, method, replacement));
    }

    ComApartment m_apartment{COINIT_APARTMENTTHREADED};
    std::vector<std::unique_ptr<MethodRedirection>> m_lstMethods;
    std::unique_ptr<Simulator::Redirection<decltype(CoCreateInstance)>> m_create;
    XmlDocument m_document;
};
} // namespace

TEST_F(XmlDocumentFailureTest, Load_Always_CreatesMsxml3InProcess)
{
    EXPECT_EQ(m_document.Load(_bstr_t(L"<a/>")), S_OK);
    constexpr CLSID domDocument30 = {0xF5078F32, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}};
    constexpr IID document = {0x2933BF81, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};
    ASSERT_EQ(g_observed.m_lstCreations.size(), 1u);
    EXPECT_TRUE(IsEqualGUID(g_observed.m_lstCreations[0].m_classId, domDocument30));
    EXPECT_TRUE(IsEqualGUID(g_observed.m_lstCreations[0].m_iid, document));
    EXPECT_EQ(g_observed.m_lstCreations[0].m_dwContext, 1u);
    EXPECT_EQ(g_observed.m_lstCreations[0].m_pOuter, nullptr);
}

TEST_F(XmlDocumentFailureTest, Load_Always_ConfiguresThenParsesThenReadsBack)
{
    EXPECT_EQ(m_document.Load(_bstr_t(L"<a/>")), S_OK);
    EXPECT_THAT(g_observed.m_lstCalls,
                testing::ElementsAre("put_async false", "put_validateOnParse false", "put_resolveExternals false",
                                     "put_preserveWhiteSpace true", "loadXML", "get_xml"));
    EXPECT_STREQ(m_document.Text(), L"<written-back/>");
}

TEST_F(XmlDocumentFailureTest, Load_DocumentType_IsNeverGivenToTheParser)
{
    EXPECT_EQ(m_document.Load(_bstr_t(L"<!DOCTYPE a [<!ENTITY e \"1\">]><a>&e;</a>")), E_FAIL);
    EXPECT_THAT(g_observed.m_lstCalls,
                testing::ElementsAre("put_async false", "put_validateOnParse false", "put_resolveExternals false",
                                     "put_preserveWhiteSpace true", "get_xml"));
    EXPECT_TRUE(m_document.IsReady());
}

TEST_F(XmlDocumentFailureTest, Load_SettingRefused_StopsThereAndDoesNotParse)
{
    const std::vector<std::string> settings = {"put_async false", "put_validateOnParse false",
                                               "put_resolveExternals false", "put_preserveWhiteSpace true"};
    for (std::size_t i = 0; i < settings.size(); ++i)
    {
        g_observed.m_lstCalls.clear();
        g_observed.m_strFailing = settings[i];
        EXPECT_EQ(m_document.Load(_bstr_t(L"<a/>")), g_hrPlanned) << settings[i];
        EXPECT_FALSE(m_document.IsReady()) << settings[i];
        std::vector<std::string> expected(settings.begin(), settings.begin() + static_cast<std::ptrdiff_t>(i) + 1);
        expected.push_back("get_xml");
        EXPECT_EQ(g_observed.m_lstCalls, expected);
    }
}

TEST_F(XmlDocumentFailureTest, Load_AfterRefusedSetting_Works)
{
    g_observed.m_strFailing = "put_async false";
    EXPECT_EQ(m_document.Load(_bstr_t(L"<a/>")), g_hrPlanned);
    g_observed.m_strFailing.clear();
    EXPECT_EQ(m_document.Load(_bstr_t(L"<a/>")), S_OK);
    EXPECT_TRUE(m_document.IsReady());
}

TEST_F(XmlDocumentFailureTest, Load_AfterRefusedSetting_ReleasesTheRefusedDocumentFirst)
{
    g_observed.m_strFailing = "put_preserveWhiteSpace true";
    EXPECT_EQ(m_document.Load(_bstr_t(L"<a/>")), g_hrPlanned);
    const IXMLDOMDocumentPtr spRefused = m_document.GetDocument();
    ASSERT_TRUE(spRefused);
    EXPECT_FALSE(m_document.IsReady());
    g_observed.m_strFailing.clear();
    g_observed.m_pWatched = spRefused;
    EXPECT_EQ(m_document.Load(_bstr_t(L"<a/>")), S_OK);
    EXPECT_EQ(g_observed.m_nReferencesAtCreation, 1u);
}

TEST_F(XmlDocumentFailureTest, Load_ParserFails_GivesItsCodeAndReadsBack)
{
    g_observed.m_strFailing = "loadXML";
    EXPECT_EQ(m_document.Load(_bstr_t(L"<a/>")), g_hrPlanned);
    EXPECT_EQ(g_observed.m_lstCalls.back(), "get_xml");
    EXPECT_NE(m_document.GetDocument(), nullptr);
    EXPECT_TRUE(m_document.IsReady());
}

TEST_F(XmlDocumentFailureTest, Load_TextCannotBeReadBack_SucceedsWithoutText)
{
    EXPECT_EQ(m_document.Load(_bstr_t(L"<a/>")), S_OK);
    g_observed.m_strFailing = "get_xml";
    EXPECT_EQ(m_document.Load(_bstr_t(L"<a/>")), S_OK);
    EXPECT_EQ(m_document.Text(), nullptr);
}

TEST_F(XmlDocumentFailureTest, Load_CreationFails_GivesThatCodeAndHoldsNothing)
{
    for (const HRESULT hr : {REGDB_E_CLASSNOTREG, CO_E_NOTINITIALIZED, E_OUTOFMEMORY})
    {
        g_observed.m_hrCreate = S_OK;
        EXPECT_EQ(m_document.Load(_bstr_t(L"<a/>")), S_OK);
        EXPECT_TRUE(m_document.IsReady());
        g_observed.m_hrCreate = hr;
        EXPECT_EQ(m_document.Load(_bstr_t(L"<a/>")), hr);
        EXPECT_EQ(m_document.GetDocument(), nullptr);
        EXPECT_FALSE(m_document.IsReady());
        EXPECT_EQ(m_document.Text(), nullptr);
    }
}

TEST_F(XmlDocumentFailureTest, Load_CreationGivesNoDocument_FailsAndHoldsNothing)
{
    const TestSupport::BstrLedger ledger;
    EXPECT_EQ(m_document.Load(_bstr_t(L"<a/>")), S_OK);
    EXPECT_THAT(ledger.LiveTexts(), testing::ElementsAre(L"<written-back/>"));
    g_observed.m_bGivesNothing = true;
    EXPECT_EQ(m_document.Load(_bstr_t(L"<a/>")), E_POINTER);
    EXPECT_EQ(m_document.GetDocument(), nullptr);
    EXPECT_FALSE(m_document.IsReady());
    EXPECT_EQ(m_document.Text(), nullptr);
    EXPECT_THAT(ledger.LiveTexts(), testing::IsEmpty());
}

TEST_F(XmlDocumentFailureTest, Load_Twice_ReleasesFirstBeforeCreatingSecond)
{
    EXPECT_EQ(m_document.Load(_bstr_t(L"<first/>")), S_OK);
    const IXMLDOMDocumentPtr spFirst = m_document.GetDocument();
    g_observed.m_pWatched = spFirst;
    EXPECT_EQ(m_document.Load(_bstr_t(L"<second/>")), S_OK);
    EXPECT_EQ(g_observed.m_nReferencesAtCreation, 1u);
}
