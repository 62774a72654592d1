#pragma once

#include "simulator/toasts/RuntimeObject.h"
#include "simulator/toasts/ToastInterfaces.h"

#include <activation.h>

namespace Simulator
{
// The activation factory of the manager, a class without instances.
class ToastNotificationManager : public IActivationFactory, public Abi::IToastNotificationManagerStatics
{
public:
    static constexpr char ObjectName[] = "ToastNotificationManager";
    static constexpr wchar_t RuntimeClassName[] = L"Windows.UI.Notifications.ToastNotificationManager";
    using PublicInterfaces = InterfaceList<IActivationFactory, Abi::IToastNotificationManagerStatics>;
    using PrivateInterfaces = InterfaceList<>;

    HRESULT WINAPI ActivateInstance(IInspectable** instance) override;

    // Fails with 0x80070490 (element not found): a desktop program has no identity of its own.
    HRESULT WINAPI CreateToastNotifier(Abi::IToastNotifier** notifier) override;
    HRESULT WINAPI CreateToastNotifierWithId(HSTRING applicationId, Abi::IToastNotifier** notifier) override;
    HRESULT WINAPI GetTemplateContent(INT32 templateType, Abi::IXmlDocument** content) override;
};

// The activation factory of toasts; a toast needs a document.
class ToastNotificationFactory : public IActivationFactory, public Abi::IToastNotificationFactory
{
public:
    static constexpr char ObjectName[] = "ToastNotificationFactory";
    static constexpr wchar_t RuntimeClassName[] = L"Windows.UI.Notifications.ToastNotification";
    using PublicInterfaces = InterfaceList<IActivationFactory, Abi::IToastNotificationFactory>;
    using PrivateInterfaces = InterfaceList<>;

    HRESULT WINAPI ActivateInstance(IInspectable** instance) override;
    HRESULT WINAPI CreateToastNotification(Abi::IXmlDocument* content, Abi::IToastNotification** value) override;
};
} // namespace Simulator
