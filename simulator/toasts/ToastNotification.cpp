#include "simulator/toasts/ToastNotification.h"

namespace Simulator
{
namespace
{
template <class Handler>
HRESULT AddHandler(const char* call, HandlerList<Handler>& handlers, Handler* handler, EventRegistrationToken* token)
{
    const HRESULT hr = BeginCall(call, token);
    if (FAILED(hr))
        return hr;
    if (handler == nullptr)
        return E_POINTER;
    token->value = handlers.Add(handler);
    return S_OK;
}

template <class Handler>
HRESULT RemoveHandler(const char* call, HandlerList<Handler>& handlers, EventRegistrationToken token)
{
    const HRESULT hr = BeginCall(call);
    if (SUCCEEDED(hr))
        handlers.Remove(token.value);
    return hr;
}
} // namespace

std::shared_ptr<ToastParts> FindToastParts(Abi::IToastNotification* toast)
{
    IToastParts* access = nullptr;
    if (toast == nullptr || FAILED(toast->QueryInterface(__uuidof(IToastParts), reinterpret_cast<void**>(&access))))
        return nullptr;
    std::shared_ptr<ToastParts> parts = access->Parts();
    access->Release();
    return parts;
}

ToastNotification::ToastNotification(Abi::IXmlDocument* document, XmlHandle content)
    : m_spParts(std::make_shared<ToastParts>())
{
    m_spParts->m_spDocument = document;
    m_spParts->m_content = std::move(content);
}

HRESULT ToastNotification::get_Content(Abi::IXmlDocument** value)
{
    const HRESULT hr = BeginCall("IToastNotification::get_Content", value);
    if (SUCCEEDED(hr))
        *value = Abi::IXmlDocumentPtr(m_spParts->m_spDocument).Detach();
    return hr;
}

HRESULT ToastNotification::put_ExpirationTime(IInspectable* /*value*/)
{
    const HRESULT hr = BeginCall("IToastNotification::put_ExpirationTime");
    return FAILED(hr) ? hr : E_NOTIMPL;
}

HRESULT ToastNotification::get_ExpirationTime(IInspectable** value)
{
    // Null: none was set.
    return BeginCall("IToastNotification::get_ExpirationTime", value);
}

HRESULT ToastNotification::add_Dismissed(Abi::IToastDismissedHandler* handler, EventRegistrationToken* token)
{
    return AddHandler("IToastNotification::add_Dismissed", m_spParts->m_events.m_lstDismissed, handler, token);
}

HRESULT ToastNotification::remove_Dismissed(EventRegistrationToken token)
{
    return RemoveHandler("IToastNotification::remove_Dismissed", m_spParts->m_events.m_lstDismissed, token);
}

HRESULT ToastNotification::add_Activated(Abi::IToastActivatedHandler* handler, EventRegistrationToken* token)
{
    return AddHandler("IToastNotification::add_Activated", m_spParts->m_events.m_lstActivated, handler, token);
}

HRESULT ToastNotification::remove_Activated(EventRegistrationToken token)
{
    return RemoveHandler("IToastNotification::remove_Activated", m_spParts->m_events.m_lstActivated, token);
}

HRESULT ToastNotification::add_Failed(Abi::IToastFailedHandler* handler, EventRegistrationToken* token)
{
    return AddHandler("IToastNotification::add_Failed", m_spParts->m_events.m_lstFailed, handler, token);
}

HRESULT ToastNotification::remove_Failed(EventRegistrationToken token)
{
    return RemoveHandler("IToastNotification::remove_Failed", m_spParts->m_events.m_lstFailed, token);
}
} // namespace Simulator
