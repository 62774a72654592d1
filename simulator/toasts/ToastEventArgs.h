#pragma once

#include "simulator/toasts/RuntimeObject.h"
#include "simulator/toasts/ToastInterfaces.h"

namespace Simulator
{
class ToastActivatedEventArgs : public Abi::IToastActivatedEventArgs
{
public:
    static constexpr char ObjectName[] = "ToastActivatedEventArgs";
    static constexpr wchar_t RuntimeClassName[] = L"Windows.UI.Notifications.ToastActivatedEventArgs";
    using PublicInterfaces = InterfaceList<Abi::IToastActivatedEventArgs>;
    using PrivateInterfaces = InterfaceList<>;

    // Empty: the templates have no launch arguments.
    HRESULT WINAPI get_Arguments(HSTRING* value) override
    {
        return BeginCall("IToastActivatedEventArgs::get_Arguments", value);
    }
};

class ToastDismissedEventArgs : public Abi::IToastDismissedEventArgs
{
public:
    static constexpr char ObjectName[] = "ToastDismissedEventArgs";
    static constexpr wchar_t RuntimeClassName[] = L"Windows.UI.Notifications.ToastDismissedEventArgs";
    using PublicInterfaces = InterfaceList<Abi::IToastDismissedEventArgs>;
    using PrivateInterfaces = InterfaceList<>;

    explicit ToastDismissedEventArgs(INT32 reason) : m_nReason(reason) {}

    HRESULT WINAPI get_Reason(Abi::ToastDismissalReason* value) override
    {
        const HRESULT hr = BeginCall("IToastDismissedEventArgs::get_Reason", value);
        if (SUCCEEDED(hr))
            *value = static_cast<Abi::ToastDismissalReason>(m_nReason);
        return hr;
    }

private:
    const INT32 m_nReason;
};

class ToastFailedEventArgs : public Abi::IToastFailedEventArgs
{
public:
    static constexpr char ObjectName[] = "ToastFailedEventArgs";
    static constexpr wchar_t RuntimeClassName[] = L"Windows.UI.Notifications.ToastFailedEventArgs";
    using PublicInterfaces = InterfaceList<Abi::IToastFailedEventArgs>;
    using PrivateInterfaces = InterfaceList<>;

    explicit ToastFailedEventArgs(HRESULT error) : m_error(error) {}

    HRESULT WINAPI get_ErrorCode(HRESULT* value) override
    {
        const HRESULT hr = BeginCall("IToastFailedEventArgs::get_ErrorCode", value);
        if (SUCCEEDED(hr))
            *value = m_error;
        return hr;
    }

private:
    const HRESULT m_error;
};
} // namespace Simulator
