#include "simulator/toasts/ToastNotifier.h"

#include "simulator/model/Facts.h"
#include "simulator/toasts/ToastDesktop.h"
#include "simulator/toasts/ToastNotification.h"

namespace Simulator
{
HRESULT ToastNotifier::Show(Abi::IToastNotification* notification)
{
    const HRESULT hr = BeginCall("IToastNotifier::Show");
    if (FAILED(hr))
        return hr;
    const std::shared_ptr<ToastParts> parts = FindToastParts(notification);
    if (parts == nullptr)
        return notification == nullptr ? E_POINTER : E_INVALIDARG;
    ToastDesktop::Instance().Show(notification, ReadToastContent(*parts->m_content.m_spTree, m_strApplicationId));
    return S_OK;
}

HRESULT ToastNotifier::Hide(Abi::IToastNotification* notification)
{
    const HRESULT hr = BeginCall("IToastNotifier::Hide");
    if (FAILED(hr))
        return hr;
    if (notification == nullptr)
        return E_POINTER;
    ToastDesktop::Instance().Hide(notification);
    return S_OK;
}

HRESULT ToastNotifier::get_Setting(INT32* value)
{
    const HRESULT hr = BeginCall("IToastNotifier::get_Setting", value);
    if (FAILED(hr))
        return hr;
    const nlohmann::json setting = Facts::Instance().Get("/toasts/setting");
    *value = setting.is_number_integer() ? setting.get<INT32>() : 0;
    return S_OK;
}

HRESULT ToastNotifier::AddToSchedule(IInspectable* /*scheduledToast*/)
{
    const HRESULT hr = BeginCall("IToastNotifier::AddToSchedule");
    return FAILED(hr) ? hr : E_NOTIMPL;
}

HRESULT ToastNotifier::RemoveFromSchedule(IInspectable* /*scheduledToast*/)
{
    const HRESULT hr = BeginCall("IToastNotifier::RemoveFromSchedule");
    return FAILED(hr) ? hr : E_NOTIMPL;
}

HRESULT ToastNotifier::GetScheduledToastNotifications(IInspectable** result)
{
    const HRESULT hr = BeginCall("IToastNotifier::GetScheduledToastNotifications", result);
    return FAILED(hr) ? hr : E_NOTIMPL;
}
} // namespace Simulator
