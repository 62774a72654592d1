#include "wmievents/WmiSubscription.h"

#include "app/system/ImageState.h"

#include <objbase.h>

using Orvik::Shared::TraceScope;

namespace Notifications::OrvikWmiEvents
{
namespace
{
// What GetWindowsImageState returns for "IMAGE_STATE_COMPLETE".
constexpr int g_nImageStateComplete = 1;

HRESULT CreateLocator(const TraceScope& trace, IWbemLocatorPtr& spLocator)
{
    HRESULT hr = CoCreateInstance(CLSID_WbemLocator, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                                  reinterpret_cast<void**>(&spLocator));
    if (SUCCEEDED(hr) && !spLocator)
        hr = E_POINTER;
    if (FAILED(hr))
        trace.Information(L"CoCreateInstance(IID_IWbemLocator) failed: 0x%08X", hr);
    else
        trace.Verbose(L"CoCreateInstance(IID_IWbemLocator) succeeded");
    return hr;
}

HRESULT CreateApartment(const TraceScope& trace, UnsecuredStub& stub)
{
    const HRESULT hr = stub.CreateApartment();
    if (FAILED(hr))
        trace.Information(L"CoCreateInstance(IID_IUnsecuredApartment) failed: 0x%08X", hr);
    else
        trace.Verbose(L"CoCreateInstance(IID_IUnsecuredApartment) succeeded");
    return hr;
}

HRESULT CreateObjectStub(const TraceScope& trace, UnsecuredStub& stub, IWbemObjectSink* sink)
{
    const HRESULT hr = stub.CreateObjectStub(sink);
    if (FAILED(hr))
        trace.Information(L"CreateObjectStub failed: 0x%08X", hr);
    else
        trace.Verbose(L"CreateObjectStub succeeded");
    return hr;
}

HRESULT QuerySink(const TraceScope& trace, UnsecuredStub& stub, IWbemObjectSinkPtr& spSink)
{
    const HRESULT hr = stub.QuerySink(spSink);
    if (FAILED(hr))
        trace.Information(L"QueryInterface failed: 0x%08X", hr);
    return hr;
}
} // namespace

WmiSubscription::~WmiSubscription()
{
    static_cast<void>(m_pWbemSvcs.Detach());
    static_cast<void>(m_pWbemObjSink.Detach());
}

HRESULT WmiSubscription::Subscribe(const TraceScope& trace, const wchar_t* query)
{
    // Declared so that scope exit releases the sink, the stub, the unsecured apartment and the locator, in that order.
    IWbemLocatorPtr spLocator;
    UnsecuredStub stub;
    IWbemObjectSinkPtr spSink;

    HRESULT hr = CheckUnused(trace);
    if (SUCCEEDED(hr))
        hr = CreateLocator(trace, spLocator);
    if (SUCCEEDED(hr))
        hr = Connect(trace, spLocator);
    if (SUCCEEDED(hr))
        hr = Secure(trace);
    if (SUCCEEDED(hr))
        hr = CreateApartment(trace, stub);
    if (SUCCEEDED(hr))
    {
        // Adds a reference to the creation reference: a sink lives until the process ends, whatever WMI does with it.
        spSink = CreateSink();
        hr = CreateObjectStub(trace, stub, spSink);
    }
    if (SUCCEEDED(hr))
        hr = QuerySink(trace, stub, m_pWbemObjSink);
    if (SUCCEEDED(hr))
        hr = StartQuery(trace, query);
    return hr;
}

HRESULT WmiSubscription::CancelSubscription(const TraceScope& trace)
{
    HRESULT hr = S_OK;
    if (m_pWbemObjSink)
    {
        hr = m_pWbemSvcs->CancelAsyncCall(m_pWbemObjSink);
        trace.Verbose(L"CancelAsyncCall returned: 0x%08X", hr);
        m_pWbemObjSink = nullptr;
    }
    m_pWbemSvcs = nullptr;
    return hr;
}

HRESULT WmiSubscription::CheckUnused(const TraceScope& trace) const
{
    if (m_pWbemSvcs)
        trace.Information(L"IWbemServices object already created.");
    else if (m_pWbemObjSink)
        trace.Information(L"IWbemObjectSink object already created.");
    else if (!HasCallback())
        trace.Information(L"There is no callback function; register not done.");
    else
        return S_OK;
    return E_FAIL;
}

HRESULT WmiSubscription::Connect(const TraceScope& trace, IWbemLocator* locator)
{
    _bstr_t wmiNamespace(L"ROOT\\WMI");
    HRESULT hr =
        locator->ConnectServer(wmiNamespace.GetBSTR(), nullptr, nullptr, nullptr, 0, nullptr, nullptr, &m_pWbemSvcs);
    if (SUCCEEDED(hr) && !m_pWbemSvcs)
        hr = E_POINTER;
    if (FAILED(hr))
        trace.Information(L"ConnectServer failed: 0x%08X", hr);
    else
        trace.Verbose(L"ConnectServer succeeded");
    return hr;
}

HRESULT WmiSubscription::Secure(const TraceScope& trace)
{
    // CONNECT on purpose, not CALL as WMI's own examples have it: authentication happens once, on connecting.
    const HRESULT hr = CoSetProxyBlanket(m_pWbemSvcs, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr,
                                         RPC_C_AUTHN_LEVEL_CONNECT, RPC_C_IMP_LEVEL_IMPERSONATE, nullptr, EOAC_NONE);
    if (FAILED(hr))
        trace.Information(L"CoSetProxyBlanket failed: 0x%08X", hr);
    else
        trace.Verbose(L"CoSetProxyBlanket succeeded");
    return hr;
}

HRESULT WmiSubscription::StartQuery(const TraceScope& trace, const wchar_t* query)
{
    _bstr_t language(L"WQL");
    _bstr_t text(query);
    const HRESULT hr = m_pWbemSvcs->ExecNotificationQueryAsync(language.GetBSTR(), text.GetBSTR(),
                                                               WBEM_FLAG_SEND_STATUS, nullptr, m_pWbemObjSink);
    if (SUCCEEDED(hr))
    {
        trace.Verbose(L"ExecNotificationQueryAsync succeeded");
        return S_OK;
    }
    // An image that is still being set up lacks the firmware's provider: worth a quieter line, the result is the same.
    if (GetWindowsImageState() == g_nImageStateComplete)
        trace.Information(L"ExecNotificationQueryAsync failed: 0x%08X", hr);
    else
        trace.Verbose(L"ExecNotificationQueryAsync failed, Ignoring since still unbundling: 0x%08X", hr);
    return hr;
}
} // namespace Notifications::OrvikWmiEvents
