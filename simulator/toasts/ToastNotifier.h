#pragma once

#include "simulator/toasts/RuntimeObject.h"
#include "simulator/toasts/ToastInterfaces.h"

namespace Simulator
{
// Shows toasts of one application on the toast desktop. Nothing can be scheduled: E_NOTIMPL.
class ToastNotifier : public Abi::IToastNotifier
{
public:
    static constexpr char ObjectName[] = "ToastNotifier";
    static constexpr wchar_t RuntimeClassName[] = L"Windows.UI.Notifications.ToastNotifier";
    using PublicInterfaces = InterfaceList<Abi::IToastNotifier>;
    using PrivateInterfaces = InterfaceList<>;

    explicit ToastNotifier(std::wstring_view applicationId) : m_strApplicationId(applicationId) {}

    HRESULT WINAPI Show(Abi::IToastNotification* notification) override;
    // A toast that is not on the screen is no error.
    HRESULT WINAPI Hide(Abi::IToastNotification* notification) override;
    // The fact /toasts/setting, else 0 (enabled).
    HRESULT WINAPI get_Setting(INT32* value) override;
    HRESULT WINAPI AddToSchedule(IInspectable* scheduledToast) override;
    HRESULT WINAPI RemoveFromSchedule(IInspectable* scheduledToast) override;
    HRESULT WINAPI GetScheduledToastNotifications(IInspectable** result) override;

private:
    const std::wstring m_strApplicationId;
};
} // namespace Simulator
