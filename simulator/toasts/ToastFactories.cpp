#include "simulator/toasts/ToastFactories.h"

#include "simulator/model/Text.h"
#include "simulator/toasts/ToastContent.h"
#include "simulator/toasts/ToastNotification.h"
#include "simulator/toasts/ToastNotifier.h"
#include "simulator/toasts/XmlDocumentObject.h"

namespace Simulator
{
HRESULT ToastNotificationManager::ActivateInstance(IInspectable** instance)
{
    const HRESULT hr = BeginCall("IActivationFactory::ActivateInstance", instance);
    return FAILED(hr) ? hr : E_NOTIMPL;
}

HRESULT ToastNotificationManager::CreateToastNotifier(Abi::IToastNotifier** notifier)
{
    const HRESULT hr = BeginCall("IToastNotificationManagerStatics::CreateToastNotifier", notifier);
    return FAILED(hr) ? hr : HRESULT_FROM_WIN32(ERROR_NOT_FOUND);
}

HRESULT ToastNotificationManager::CreateToastNotifierWithId(HSTRING applicationId, Abi::IToastNotifier** notifier)
{
    const std::wstring_view id = RuntimeText::View(applicationId);
    const HRESULT hr = BeginCall("IToastNotificationManagerStatics::CreateToastNotifierWithId", notifier,
                                 {{"application-id", Narrow(id)}});
    if (FAILED(hr))
        return hr;
    return id.empty() ? E_INVALIDARG : MakeObject<ToastNotifier>(notifier, id);
}

HRESULT ToastNotificationManager::GetTemplateContent(INT32 templateType, Abi::IXmlDocument** content)
{
    const HRESULT hr =
        BeginCall("IToastNotificationManagerStatics::GetTemplateContent", content, {{"template-type", templateType}});
    if (FAILED(hr))
        return hr;
    const std::shared_ptr<XmlTree> tree = MakeTemplate(templateType);
    if (tree == nullptr)
        return E_INVALIDARG;
    return MakeObject<XmlDocumentObject>(content, XmlHandle{tree, &tree->Document()});
}

HRESULT ToastNotificationFactory::ActivateInstance(IInspectable** instance)
{
    const HRESULT hr = BeginCall("IActivationFactory::ActivateInstance", instance);
    return FAILED(hr) ? hr : E_NOTIMPL;
}

HRESULT ToastNotificationFactory::CreateToastNotification(Abi::IXmlDocument* content, Abi::IToastNotification** value)
{
    HRESULT hr = BeginCall("IToastNotificationFactory::CreateToastNotification", value);
    if (FAILED(hr))
        return hr;
    XmlHandle handle;
    hr = GetHandle(content, handle);
    return FAILED(hr) ? hr : MakeObject<ToastNotification>(value, content, handle);
}
} // namespace Simulator
