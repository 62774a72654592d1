#pragma once

#include "simulator/toasts/XmlInterfaces.h"

#include <eventtoken.h>

// Toasts as the simulated machine offers them; see XmlInterfaces.h for why they are declared once more.
namespace Simulator::Abi
{
struct IToastNotification;

enum ToastDismissalReason : INT32
{
    ToastDismissalReason_UserCanceled = 0,
    ToastDismissalReason_ApplicationHidden = 1,
    ToastDismissalReason_TimedOut = 2
};

struct IToastActivatedEventArgs : IInspectable
{
    virtual HRESULT WINAPI get_Arguments(HSTRING* value) = 0;
};

struct IToastDismissedEventArgs : IInspectable
{
    virtual HRESULT WINAPI get_Reason(ToastDismissalReason* value) = 0;
};

struct IToastFailedEventArgs : IInspectable
{
    virtual HRESULT WINAPI get_ErrorCode(HRESULT* value) = 0;
};

// TypedEventHandler of a toast and Args: a delegate, without the slots of IInspectable.
template <class Args>
struct IToastEventHandler : IUnknown
{
    virtual HRESULT WINAPI Invoke(IToastNotification* sender, Args* args) = 0;
};
using IToastActivatedHandler = IToastEventHandler<IInspectable>;
using IToastDismissedHandler = IToastEventHandler<IToastDismissedEventArgs>;
using IToastFailedHandler = IToastEventHandler<IToastFailedEventArgs>;

struct IToastNotification : IInspectable
{
    virtual HRESULT WINAPI get_Content(IXmlDocument** value) = 0;
    virtual HRESULT WINAPI put_ExpirationTime(IInspectable* value) = 0;
    virtual HRESULT WINAPI get_ExpirationTime(IInspectable** value) = 0;
    virtual HRESULT WINAPI add_Dismissed(IToastDismissedHandler* handler, EventRegistrationToken* token) = 0;
    virtual HRESULT WINAPI remove_Dismissed(EventRegistrationToken token) = 0;
    virtual HRESULT WINAPI add_Activated(IToastActivatedHandler* handler, EventRegistrationToken* token) = 0;
    virtual HRESULT WINAPI remove_Activated(EventRegistrationToken token) = 0;
    virtual HRESULT WINAPI add_Failed(IToastFailedHandler* handler, EventRegistrationToken* token) = 0;
    virtual HRESULT WINAPI remove_Failed(EventRegistrationToken token) = 0;
};

struct IToastNotificationFactory : IInspectable
{
    virtual HRESULT WINAPI CreateToastNotification(IXmlDocument* content, IToastNotification** value) = 0;
};

struct IToastNotifier : IInspectable
{
    virtual HRESULT WINAPI Show(IToastNotification* notification) = 0;
    virtual HRESULT WINAPI Hide(IToastNotification* notification) = 0;
    virtual HRESULT WINAPI get_Setting(INT32* value) = 0;
    virtual HRESULT WINAPI AddToSchedule(IInspectable* scheduledToast) = 0;
    virtual HRESULT WINAPI RemoveFromSchedule(IInspectable* scheduledToast) = 0;
    virtual HRESULT WINAPI GetScheduledToastNotifications(IInspectable** result) = 0;
};

struct IToastNotificationManagerStatics : IInspectable
{
    virtual HRESULT WINAPI CreateToastNotifier(IToastNotifier** notifier) = 0;
    virtual HRESULT WINAPI CreateToastNotifierWithId(HSTRING applicationId, IToastNotifier** notifier) = 0;
    virtual HRESULT WINAPI GetTemplateContent(INT32 templateType, IXmlDocument** content) = 0;
};
} // namespace Simulator::Abi

// clang-format off
__CRT_UUID_DECL(Simulator::Abi::IToastActivatedEventArgs, 0xe3bf92f3, 0xc197, 0x436f, 0x82, 0x65, 0x06, 0x25, 0x82, 0x4f, 0x8d, 0xac)
__CRT_UUID_DECL(Simulator::Abi::IToastDismissedEventArgs, 0x3f89d935, 0xd9cb, 0x4538, 0xa0, 0xf0, 0xff, 0xe7, 0x65, 0x99, 0x38, 0xf8)
__CRT_UUID_DECL(Simulator::Abi::IToastFailedEventArgs, 0x35176862, 0xcfd4, 0x44f8, 0xad, 0x64, 0xf5, 0x00, 0xfd, 0x89, 0x6c, 0x3b)
__CRT_UUID_DECL(Simulator::Abi::IToastActivatedHandler, 0xab54de2d, 0x97d9, 0x5528, 0xb6, 0xad, 0x10, 0x5a, 0xfe, 0x15, 0x65, 0x30)
__CRT_UUID_DECL(Simulator::Abi::IToastDismissedHandler, 0x61c2402f, 0x0ed0, 0x5a18, 0xab, 0x69, 0x59, 0xf4, 0xaa, 0x99, 0xa3, 0x68)
__CRT_UUID_DECL(Simulator::Abi::IToastFailedHandler, 0x95e3e803, 0xc969, 0x5e3a, 0x97, 0x53, 0xea, 0x2a, 0xd2, 0x2a, 0x9a, 0x33)
__CRT_UUID_DECL(Simulator::Abi::IToastNotification, 0x997e2675, 0x059e, 0x4e60, 0x8b, 0x06, 0x17, 0x60, 0x91, 0x7c, 0x8b, 0x80)
__CRT_UUID_DECL(Simulator::Abi::IToastNotificationFactory, 0x04124b20, 0x82c6, 0x4229, 0xb1, 0x09, 0xfd, 0x9e, 0xd4, 0x66, 0x2b, 0x53)
__CRT_UUID_DECL(Simulator::Abi::IToastNotifier, 0x75927b93, 0x03f3, 0x41ec, 0x91, 0xd3, 0x6e, 0x5b, 0xac, 0x1b, 0x38, 0xe7)
__CRT_UUID_DECL(Simulator::Abi::IToastNotificationManagerStatics, 0x50ac103f, 0xd235, 0x4598, 0xbb, 0xef, 0x98, 0xfe, 0x4d, 0x1a, 0x3a, 0xd4)
// clang-format on

namespace Simulator::Abi
{
_COM_SMARTPTR_TYPEDEF(IToastActivatedEventArgs, __uuidof(IToastActivatedEventArgs));
_COM_SMARTPTR_TYPEDEF(IToastDismissedEventArgs, __uuidof(IToastDismissedEventArgs));
_COM_SMARTPTR_TYPEDEF(IToastFailedEventArgs, __uuidof(IToastFailedEventArgs));
_COM_SMARTPTR_TYPEDEF(IToastActivatedHandler, __uuidof(IToastActivatedHandler));
_COM_SMARTPTR_TYPEDEF(IToastDismissedHandler, __uuidof(IToastDismissedHandler));
_COM_SMARTPTR_TYPEDEF(IToastFailedHandler, __uuidof(IToastFailedHandler));
_COM_SMARTPTR_TYPEDEF(IToastNotification, __uuidof(IToastNotification));
_COM_SMARTPTR_TYPEDEF(IToastNotificationFactory, __uuidof(IToastNotificationFactory));
_COM_SMARTPTR_TYPEDEF(IToastNotifier, __uuidof(IToastNotifier));
_COM_SMARTPTR_TYPEDEF(IToastNotificationManagerStatics, __uuidof(IToastNotificationManagerStatics));
} // namespace Simulator::Abi
