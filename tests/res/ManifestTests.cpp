#include "tests/res/AgentModule.h"

#include <gtest/gtest.h>

#include <objbase.h>

#include <comdef.h>
#include <msxml.h>

#include <set>

namespace ResourceTests
{

namespace
{

_COM_SMARTPTR_TYPEDEF(IXMLDOMDocument, IID_IXMLDOMDocument);
_COM_SMARTPTR_TYPEDEF(IXMLDOMElement, IID_IXMLDOMElement);
_COM_SMARTPTR_TYPEDEF(IXMLDOMNode, IID_IXMLDOMNode);
_COM_SMARTPTR_TYPEDEF(IXMLDOMNodeList, IID_IXMLDOMNodeList);

class Manifest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_GE(CoInitialize(nullptr), 0);
        const Bytes manifest = m_agent.Resource(TypeNumber(RT_MANIFEST), 1, English);
        ASSERT_FALSE(manifest.empty());
        m_text.assign(reinterpret_cast<const char*>(manifest.data()), manifest.size());

        ASSERT_GE(m_document.CreateInstance(L"Msxml2.DOMDocument.3.0"), 0);
        VARIANT_BOOL parsed = VARIANT_FALSE;
        // A BSTR is parsed as UTF-16, whatever the declaration says; the manifest is plain ASCII.
        const std::wstring wide(m_text.begin(), m_text.end());
        ASSERT_EQ(m_document->loadXML(_bstr_t(wide.substr(wide.find(L"?>") + 2).c_str()), &parsed), S_OK);
        ASSERT_EQ(parsed, VARIANT_TRUE);
    }

    void TearDown() override
    {
        m_document = nullptr;
        CoUninitialize();
    }

    std::vector<IXMLDOMElementPtr> Elements(const wchar_t* name) const
    {
        std::vector<IXMLDOMElementPtr> elements;
        IXMLDOMNodeListPtr list;
        m_document->getElementsByTagName(_bstr_t(name), &list);
        IXMLDOMNodePtr node;
        while (list && list->nextNode(&node) == S_OK && node)
        {
            elements.emplace_back(node);
            node = nullptr;
        }
        return elements;
    }

    static std::wstring Attribute(const IXMLDOMElementPtr& element, const wchar_t* name)
    {
        _variant_t value;
        element->getAttribute(_bstr_t(name), value.GetAddress());
        return value.vt == VT_BSTR && value.bstrVal ? value.bstrVal : L"";
    }

    static std::wstring Namespace(const IXMLDOMElementPtr& element)
    {
        BSTR uri = nullptr;
        element->get_namespaceURI(&uri);
        return static_cast<const wchar_t*>(_bstr_t(uri, false));
    }

    static std::wstring Content(const IXMLDOMElementPtr& element)
    {
        BSTR text = nullptr;
        element->get_text(&text);
        return static_cast<const wchar_t*>(_bstr_t(text, false));
    }

    CAgentModule m_agent;
    std::string m_text;
    IXMLDOMDocumentPtr m_document;
};

TEST_F(Manifest, Module_HoldsOneManifest)
{
    EXPECT_EQ(m_agent.Names(TypeNumber(RT_MANIFEST)), std::vector<WORD>{1});
    EXPECT_EQ(m_agent.Languages(TypeNumber(RT_MANIFEST), 1).size(), 1u);
}

TEST_F(Manifest, ExecutionLevel_IsThatOfTheCaller)
{
    const auto levels = Elements(L"requestedExecutionLevel");
    ASSERT_EQ(levels.size(), 1u);
    EXPECT_EQ(Namespace(levels[0]), L"urn:schemas-microsoft-com:asm.v3");
    EXPECT_EQ(Attribute(levels[0], L"level"), L"asInvoker");
    EXPECT_EQ(Attribute(levels[0], L"uiAccess"), L"false");
}

TEST_F(Manifest, CommonControls_AreVersion6)
{
    const auto identities = Elements(L"assemblyIdentity");
    ASSERT_EQ(identities.size(), 2u);
    EXPECT_EQ(Attribute(identities[0], L"name"), L"Orvik.OrvikNotifications");
    EXPECT_EQ(Attribute(identities[0], L"version"), WindowsPath(ORVIK_VERSION_TEXT));
    EXPECT_EQ(Attribute(identities[1], L"name"), L"Microsoft.Windows.Common-Controls");
    EXPECT_EQ(Attribute(identities[1], L"version"), L"6.0.0.0");
    EXPECT_EQ(Attribute(identities[1], L"publicKeyToken"), L"6595b64144ccf1df");
}

TEST_F(Manifest, SupportedSystems_AreWindows7To11)
{
    std::set<std::wstring> systems;
    for (const auto& element : Elements(L"supportedOS"))
    {
        EXPECT_EQ(Namespace(element), L"urn:schemas-microsoft-com:compatibility.v1");
        systems.insert(Attribute(element, L"Id"));
    }
    const std::set<std::wstring> expected = {
        L"{35138b9a-5d96-4fbd-8e2d-a2440225f93a}", // Windows 7
        L"{4a2f28e3-53b9-4441-ba9c-d69d4a4a6e38}", // Windows 8
        L"{1f676c76-80e1-4239-95bb-83d0f6d0da78}", // Windows 8.1
        L"{8e0f7a12-bfb3-4fe8-b9a5-48fd50a15a9a}", // Windows 10 and 11
    };
    EXPECT_EQ(systems, expected);
}

TEST_F(Manifest, DpiAwareness_IsThatOfTheSystem)
{
    const auto settings = Elements(L"dpiAware");
    ASSERT_EQ(settings.size(), 1u);
    EXPECT_EQ(Namespace(settings[0]), L"http://schemas.microsoft.com/SMI/2005/WindowsSettings");
    EXPECT_EQ(Content(settings[0]), L"true");
    EXPECT_TRUE(Elements(L"dpiAwareness").empty());
}

TEST_F(Manifest, ActiveCodePage_IsLeftToTheMachine)
{
    EXPECT_TRUE(Elements(L"activeCodePage").empty());
}

TEST_F(Manifest, ActivationContext_IsMadeFromIt)
{
    const std::wstring path = AgentPath();
    ACTCTXW request = {};
    request.cbSize = sizeof(request);
    request.dwFlags = ACTCTX_FLAG_RESOURCE_NAME_VALID;
    request.lpSource = path.c_str();
    request.lpResourceName = MAKEINTRESOURCEW(1);
    const HANDLE context = CreateActCtxW(&request);
    ASSERT_NE(context, INVALID_HANDLE_VALUE) << "error " << GetLastError();
    ReleaseActCtx(context);
}

} // namespace

} // namespace ResourceTests
