#include "simulator/toasts/ToastEvents.h"

#include "simulator/toasts/EventPool.h"
#include "simulator/toasts/ToastEventArgs.h"
#include "simulator/toasts/ToastNotification.h"

namespace Simulator
{
namespace
{
template <class ArgsObject, class ArgsInterface, class Handlers, class... Values>
void Raise(const Abi::IToastNotificationPtr& sender, Handlers ToastEvents::* handlers, Values... values)
{
    EventPool::Instance().Post(
        [sender, handlers, values...]
        {
            ArgsInterface* args = nullptr;
            if (FAILED(MakeObject<ArgsObject>(&args, values...)))
                return;
            if (const std::shared_ptr<ToastParts> parts = FindToastParts(sender); parts != nullptr)
            {
                for (const auto& handler : (parts->m_events.*handlers).All())
                    handler->Invoke(sender, args);
            }
            args->Release();
        });
}
} // namespace

void RaiseActivated(const Abi::IToastNotificationPtr& sender)
{
    Raise<ToastActivatedEventArgs, Abi::IToastActivatedEventArgs>(sender, &ToastEvents::m_lstActivated);
}

void RaiseDismissed(const Abi::IToastNotificationPtr& sender, INT32 reason)
{
    Raise<ToastDismissedEventArgs, Abi::IToastDismissedEventArgs>(sender, &ToastEvents::m_lstDismissed, reason);
}

void RaiseFailed(const Abi::IToastNotificationPtr& sender, HRESULT error)
{
    Raise<ToastFailedEventArgs, Abi::IToastFailedEventArgs>(sender, &ToastEvents::m_lstFailed, error);
}
} // namespace Simulator
