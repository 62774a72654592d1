#include "notifications/DesktopToast.h"

#include "notifications/ApplicationId.h"
#include "notifications/ToastEventHandler.h"
#include "notifications/WindowsRuntime.h"
#include "platform/ComApartment.h"
#include "platform/RequireObject.h"
#include "shared/TraceScope.h"

#include <new>

using namespace ToastAbi;
using Orvik::Shared::TraceScope;

namespace
{
HRESULT CreateNotification(IXmlDocument* document, IToastNotificationPtr& spToast)
{
    IToastNotificationFactoryPtr spFactory;
    const HRESULT hr = WindowsRuntime::GetActivationFactory(ToastNotificationClass, __uuidof(IToastNotificationFactory),
                                                            reinterpret_cast<void**>(&spFactory));
    return FAILED(hr) ? hr : RequireObject(spFactory->CreateToastNotification(document, &spToast), spToast);
}

HRESULT RegisterHandler(const TraceScope& trace, IToastNotification* toast, ToastEventHandler* handler)
{
    EventRegistrationToken token{};
    if (const HRESULT hr = toast->add_Activated(handler, &token); FAILED(hr))
        return hr;
    trace.Verbose(L"Toast Notifier/Event Handler Activated");
    if (const HRESULT hr = toast->add_Dismissed(handler, &token); FAILED(hr))
        return hr;
    trace.Verbose(L"Toast Notifier/Event Handler Dismissed");
    if (const HRESULT hr = toast->add_Failed(handler, &token); FAILED(hr))
        return hr;
    trace.Verbose(L"Toast Notifier/Event Handler Failed");
    return S_OK;
}
} // namespace

HRESULT DesktopToast::DisplayToast(const std::wstring& title, const std::wstring& text)
{
    TraceScope trace(ORVIK_FUNCTION);
    const ComApartment apartment(COINIT_MULTITHREADED);
    // A thread in the other kind of apartment, the main thread, stays there.
    if (FAILED(apartment.Result()) && apartment.Result() != RPC_E_CHANGED_MODE)
        return trace.Exit(apartment.Result());

    IToastNotificationManagerStaticsPtr spManager;
    HRESULT hr =
        WindowsRuntime::GetActivationFactory(ToastNotificationManagerClass, __uuidof(IToastNotificationManagerStatics),
                                             reinterpret_cast<void**>(&spManager));
    IXmlDocumentPtr spDocument;
    if (SUCCEEDED(hr))
        hr = CreateToastXml(spManager, spDocument, title, text);
    if (SUCCEEDED(hr))
        hr = CreateToast(spManager, spDocument);
    return trace.Exit(hr);
}

HRESULT DesktopToast::CreateToast(IToastNotificationManagerStatics* manager, IXmlDocument* document)
{
    TraceScope trace(ORVIK_FUNCTION);
    WindowsRuntime::RuntimeString applicationId;
    IToastNotifierPtr spNotifier;
    HRESULT hr = applicationId.Create(ApplicationUserModelId);
    if (SUCCEEDED(hr))
        hr = RequireObject(manager->CreateToastNotifierWithId(applicationId.Get(), &spNotifier), spNotifier);
    IToastNotificationPtr spToast;
    if (SUCCEEDED(hr))
        hr = CreateNotification(document, spToast);
    if (FAILED(hr))
        return trace.Exit(hr);

    auto* const handler = new (std::nothrow) ToastEventHandler(m_hwndToast, m_hwndMain);
    if (handler == nullptr)
        return trace.Exit(E_OUTOFMEMORY);
    // The handler starts with a count of one, which this pointer takes over; the toast holds references of its own.
    const IToastActivatedHandlerPtr spReference(handler, false);
    hr = RegisterHandler(trace, spToast, handler);
    if (SUCCEEDED(hr))
        hr = spNotifier->Show(spToast);
    if (SUCCEEDED(hr))
        trace.Verbose(L"Toast Notifier Shown");
    return trace.Exit(hr);
}
