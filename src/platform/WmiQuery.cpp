#include "platform/WmiQuery.h"

#include "platform/OutOfMemoryResult.h"
#include "platform/RequireObject.h"

#include <new>
#include <utility>

namespace
{
// The value is passed as it stands: it means a single-threaded apartment that trades memory for speed, and does not
// switch OLE 1 off, although that was the intent.
constexpr DWORD g_dwApartmentFlags = 10;

constexpr long g_nNextTimeoutMs = 20'000;

// Kept from the first query until the process ends.
const _bstr_t& QueryLanguage()
{
    static const _bstr_t language(L"WQL");
    return language;
}

HRESULT ConvertToText(VARIANT& value)
{
    const HRESULT hr = VariantChangeType(&value, &value, 0, VT_BSTR);
    return hr == DISP_E_TYPEMISMATCH ? static_cast<HRESULT>(WBEM_E_TYPE_MISMATCH) : hr;
}
} // namespace

WmiQuery::WmiQuery(const wchar_t* namespacePath) : m_apartment(g_dwApartmentFlags)
{
    if (SUCCEEDED(m_apartment.Result()))
    {
        // The process may have its security already; what it has serves as well.
        (void)CoInitializeSecurity(nullptr, -1, nullptr, nullptr, RPC_C_AUTHN_LEVEL_DEFAULT,
                                   RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE, nullptr);
    }
    try
    {
        (void)Connect(namespacePath);
    }
    catch (const _com_error&)
    {
        m_spServices = nullptr;
    }
}

HRESULT WmiQuery::Connect(const wchar_t* namespacePath)
{
    m_spServices = nullptr;
    IWbemLocatorPtr spLocator;
    HRESULT hr = RequireObject(CoCreateInstance(__uuidof(WbemLocator), nullptr, CLSCTX_INPROC_SERVER,
                                                __uuidof(IWbemLocator), reinterpret_cast<void**>(&spLocator)),
                               spLocator);
    try
    {
        if (SUCCEEDED(hr))
            hr = ConnectServices(*spLocator, namespacePath);
    }
    catch (const std::bad_alloc&)
    {
        throw _com_error(E_OUTOFMEMORY);
    }
    if (FAILED(hr))
        m_spServices = nullptr;
    return hr;
}

HRESULT WmiQuery::ConnectServices(IWbemLocator& locator, const wchar_t* namespacePath)
{
    // Both copies are made before there are services that a lack of memory would leave without their settings.
    std::wstring path = namespacePath;
    const _bstr_t resource(namespacePath);
    const HRESULT hr =
        RequireObject(locator.ConnectServer(resource, nullptr, nullptr, nullptr, WBEM_FLAG_CONNECT_USE_MAX_WAIT,
                                            nullptr, nullptr, &m_spServices),
                      m_spServices);
    if (FAILED(hr))
        return hr;
    m_strNamespace = std::move(path);
    return CoSetProxyBlanket(m_spServices, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr, RPC_C_AUTHN_LEVEL_DEFAULT,
                             RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE);
}

HRESULT WmiQuery::Query(const wchar_t* text, long flags)
{
    if (!m_spServices)
        return static_cast<HRESULT>(WBEM_E_INITIALIZATION_FAILURE);
    m_spEnumerator = nullptr;
    try
    {
        const HRESULT hr = m_spServices->ExecQuery(QueryLanguage(), _bstr_t(text), flags, nullptr, &m_spEnumerator);
        return SUCCEEDED(hr) ? Next() : hr;
    }
    catch (const _com_error& error)
    {
        return error.Error();
    }
    catch (const std::bad_alloc&)
    {
        return E_OUTOFMEMORY;
    }
}

HRESULT WmiQuery::Next()
{
    if (!m_spEnumerator)
        return static_cast<HRESULT>(WBEM_E_INVALID_CLASS);
    ULONG returned = 0;
    return m_spEnumerator->Next(g_nNextTimeoutMs, 1, &m_spObject, &returned);
}

HRESULT WmiQuery::GetPropertyText(const wchar_t* name, std::wstring& text) const
{
    if (!m_spObject)
        return static_cast<HRESULT>(WBEM_E_NOT_FOUND);
    _variant_t value;
    HRESULT hr = m_spObject->Get(name, 0, &value, nullptr, nullptr);
    if (SUCCEEDED(hr) && value.vt != VT_BSTR)
        hr = ConvertToText(value);
    if (FAILED(hr))
        return hr;
    return OutOfMemoryResult(
        [&]
        {
            text = value.bstrVal != nullptr ? value.bstrVal : L"";
            return hr;
        });
}
