#include "platform/XmlDocument.h"

#include "platform/RequireObject.h"
#include "shared/FunctionName.h"
#include "shared/Log.h"
#include "shared/OwnerTypes.h"

#include <string_view>

using Orvik::Shared::ReceiveInto;

namespace
{
constexpr CLSID g_domDocument30 = {0xF5078F32, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}};

// Whether the text has a document type before its first element, the only place for one. Comments and instructions may
// stand before it.
bool HasDocumentType(std::wstring_view text)
{
    std::size_t position = text.find(L'<');
    while (position != std::wstring_view::npos)
    {
        text.remove_prefix(position);
        if (text.starts_with(L"<!--"))
            position = text.find(L"-->", 4);
        else if (text.starts_with(L"<?"))
            position = text.find(L"?>", 2);
        else
            return text.starts_with(L"<!DOCTYPE");
        if (position != std::wstring_view::npos)
            position = text.find(L'<', position);
    }
    return false;
}
} // namespace

HRESULT XmlDocument::Load(BSTR text)
{
    m_spDocument = nullptr;
    HRESULT hr = CreateDocument();
    if (SUCCEEDED(hr))
        hr = Parse(text);
    RefreshText();
    return hr;
}

HRESULT XmlDocument::CreateDocument()
{
    m_dwReady = 0;
    HRESULT hr = RequireObject(CoCreateInstance(g_domDocument30, nullptr, CLSCTX_INPROC_SERVER, g_xmlDomDocument,
                                                reinterpret_cast<void**>(&m_spDocument)),
                               m_spDocument);
    if (SUCCEEDED(hr))
        hr = Configure();
    if (FAILED(hr))
        return hr;
    m_dwReady = 1;
    return S_OK;
}

HRESULT XmlDocument::Configure()
{
    HRESULT hr = m_spDocument->put_async(VARIANT_FALSE);
    if (SUCCEEDED(hr))
        hr = m_spDocument->put_validateOnParse(VARIANT_FALSE);
    if (SUCCEEDED(hr))
        hr = m_spDocument->put_resolveExternals(VARIANT_FALSE);
    if (SUCCEEDED(hr))
        hr = m_spDocument->put_preserveWhiteSpace(VARIANT_TRUE);
    return hr;
}

HRESULT XmlDocument::Parse(BSTR text)
{
    if (HasDocumentType({text, SysStringLen(text)}))
    {
        // A parser that allows declarations expands their entities without bound.
        Orvik::Shared::Log(Orvik::Shared::Level::Information, ORVIK_FUNCTION,
                           L"The text declares a document type, it is not parsed.");
        return E_FAIL;
    }
    VARIANT_BOOL parsed = VARIANT_FALSE;
    const HRESULT hr = m_spDocument->loadXML(text, &parsed);
    if (FAILED(hr))
        return hr;
    return parsed != VARIANT_FALSE ? S_OK : E_FAIL;
}

void XmlDocument::RefreshText()
{
    m_strText.reset();
    // A text that cannot be read back is the same as none.
    if (m_spDocument)
        (void)m_spDocument->get_xml(ReceiveInto(m_strText));
}
