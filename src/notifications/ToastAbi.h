#pragma once

#include "notifications/ToastXmlAbi.h"

#include <eventtoken.h>

// The Windows Runtime interfaces of toast notifications, declared here for the reason and by the rules that
// ToastXmlAbi.h gives. A delegate is a plain COM interface: its Invoke follows the three slots of IUnknown.
namespace ToastAbi
{
inline constexpr wchar_t ToastNotificationManagerClass[] = L"Windows.UI.Notifications.ToastNotificationManager";
inline constexpr wchar_t ToastNotificationClass[] = L"Windows.UI.Notifications.ToastNotification";

enum class ToastTemplateType : INT32
{
    ToastImageAndText01 = 0,
    ToastImageAndText02 = 1,
    ToastImageAndText03 = 2,
    ToastImageAndText04 = 3, // one image, three lines of text
    ToastText01 = 4,
    ToastText02 = 5,
    ToastText03 = 6,
    ToastText04 = 7
};

enum class ToastDismissalReason : INT32
{
    UserCanceled = 0,
    ApplicationHidden = 1,
    TimedOut = 2
};

enum class NotificationSetting : INT32
{
    Enabled = 0,
    DisabledForApplication = 1,
    DisabledForUser = 2,
    DisabledByGroupPolicy = 3,
    DisabledByManifest = 4
};

struct IToastNotification;

struct IToastDismissedEventArgs : public IInspectable
{
    [[nodiscard]] STDMETHOD(get_Reason)(ToastDismissalReason* value) PURE;
};

struct IToastFailedEventArgs : public IInspectable
{
    [[nodiscard]] STDMETHOD(get_ErrorCode)(HRESULT* value) PURE;
};

// Typed event handler of toast and IInspectable: the toast was clicked.
struct IToastActivatedHandler : public IUnknown
{
    [[nodiscard]] STDMETHOD(Invoke)(IToastNotification* sender, IInspectable* args) PURE;
};

// Typed event handler of toast and ToastDismissedEventArgs: the toast left the screen without a click.
struct IToastDismissedHandler : public IUnknown
{
    [[nodiscard]] STDMETHOD(Invoke)(IToastNotification* sender, IToastDismissedEventArgs* args) PURE;
};

// Typed event handler of toast and ToastFailedEventArgs: Windows could not show the toast.
struct IToastFailedHandler : public IUnknown
{
    [[nodiscard]] STDMETHOD(Invoke)(IToastNotification* sender, IToastFailedEventArgs* args) PURE;
};

// The default interface of a toast. Handlers are called on threads of the Windows Runtime.
struct IToastNotification : public IInspectable
{
    [[nodiscard]] STDMETHOD(get_Content)(IXmlDocument** value) PURE;
    // The writer comes before the reader here, unlike elsewhere. A reference to a date; null for none.
    [[nodiscard]] STDMETHOD(put_ExpirationTime)(IInspectable* value) PURE;
    [[nodiscard]] STDMETHOD(get_ExpirationTime)(IInspectable** value) PURE;
    [[nodiscard]] STDMETHOD(add_Dismissed)(IToastDismissedHandler* handler, EventRegistrationToken* token) PURE;
    [[nodiscard]] STDMETHOD(remove_Dismissed)(EventRegistrationToken token) PURE;
    [[nodiscard]] STDMETHOD(add_Activated)(IToastActivatedHandler* handler, EventRegistrationToken* token) PURE;
    [[nodiscard]] STDMETHOD(remove_Activated)(EventRegistrationToken token) PURE;
    [[nodiscard]] STDMETHOD(add_Failed)(IToastFailedHandler* handler, EventRegistrationToken* token) PURE;
    [[nodiscard]] STDMETHOD(remove_Failed)(EventRegistrationToken token) PURE;
};

// Asked of the activation factory of ToastNotificationClass.
struct IToastNotificationFactory : public IInspectable
{
    [[nodiscard]] STDMETHOD(CreateToastNotification)(IXmlDocument* content, IToastNotification** value) PURE;
};

// The default interface of a notifier.
struct IToastNotifier : public IInspectable
{
    // S_OK does not mean that a person sees the toast.
    [[nodiscard]] STDMETHOD(Show)(IToastNotification* notification) PURE;
    [[nodiscard]] STDMETHOD(Hide)(IToastNotification* notification) PURE;
    [[nodiscard]] STDMETHOD(get_Setting)(NotificationSetting* value) PURE;
    [[nodiscard]] STDMETHOD(AddToSchedule)(IInspectable* scheduledToast) PURE;
    [[nodiscard]] STDMETHOD(RemoveFromSchedule)(IInspectable* scheduledToast) PURE;
    [[nodiscard]] STDMETHOD(GetScheduledToastNotifications)(IInspectable** result) PURE;
};

// Asked of the activation factory of ToastNotificationManagerClass.
struct IToastNotificationManagerStatics : public IInspectable
{
    [[nodiscard]] STDMETHOD(CreateToastNotifier)(IToastNotifier** result) PURE;
    // applicationId: the application user model id of the program's Start-menu shortcut.
    [[nodiscard]] STDMETHOD(CreateToastNotifierWithId)(HSTRING applicationId, IToastNotifier** result) PURE;
    [[nodiscard]] STDMETHOD(GetTemplateContent)(ToastTemplateType type, IXmlDocument** result) PURE;
};
} // namespace ToastAbi

// clang-format off
__CRT_UUID_DECL(ToastAbi::IToastDismissedEventArgs, 0x3F89D935, 0xD9CB, 0x4538, 0xA0, 0xF0, 0xFF, 0xE7, 0x65, 0x99, 0x38, 0xF8)
__CRT_UUID_DECL(ToastAbi::IToastFailedEventArgs, 0x35176862, 0xCFD4, 0x44F8, 0xAD, 0x64, 0xF5, 0x00, 0xFD, 0x89, 0x6C, 0x3B)
__CRT_UUID_DECL(ToastAbi::IToastActivatedHandler, 0xAB54DE2D, 0x97D9, 0x5528, 0xB6, 0xAD, 0x10, 0x5A, 0xFE, 0x15, 0x65, 0x30)
__CRT_UUID_DECL(ToastAbi::IToastDismissedHandler, 0x61C2402F, 0x0ED0, 0x5A18, 0xAB, 0x69, 0x59, 0xF4, 0xAA, 0x99, 0xA3, 0x68)
__CRT_UUID_DECL(ToastAbi::IToastFailedHandler, 0x95E3E803, 0xC969, 0x5E3A, 0x97, 0x53, 0xEA, 0x2A, 0xD2, 0x2A, 0x9A, 0x33)
__CRT_UUID_DECL(ToastAbi::IToastNotification, 0x997E2675, 0x059E, 0x4E60, 0x8B, 0x06, 0x17, 0x60, 0x91, 0x7C, 0x8B, 0x80)
__CRT_UUID_DECL(ToastAbi::IToastNotificationFactory, 0x04124B20, 0x82C6, 0x4229, 0xB1, 0x09, 0xFD, 0x9E, 0xD4, 0x66, 0x2B, 0x53)
__CRT_UUID_DECL(ToastAbi::IToastNotifier, 0x75927B93, 0x03F3, 0x41EC, 0x91, 0xD3, 0x6E, 0x5B, 0xAC, 0x1B, 0x38, 0xE7)
__CRT_UUID_DECL(ToastAbi::IToastNotificationManagerStatics, 0x50AC103F, 0xD235, 0x4598, 0xBB, 0xEF, 0x98, 0xFE, 0x4D, 0x1A, 0x3A, 0xD4)
// clang-format on

namespace ToastAbi
{
_COM_SMARTPTR_TYPEDEF(IToastDismissedEventArgs, __uuidof(IToastDismissedEventArgs));
_COM_SMARTPTR_TYPEDEF(IToastFailedEventArgs, __uuidof(IToastFailedEventArgs));
_COM_SMARTPTR_TYPEDEF(IToastActivatedHandler, __uuidof(IToastActivatedHandler));
_COM_SMARTPTR_TYPEDEF(IToastDismissedHandler, __uuidof(IToastDismissedHandler));
_COM_SMARTPTR_TYPEDEF(IToastFailedHandler, __uuidof(IToastFailedHandler));
_COM_SMARTPTR_TYPEDEF(IToastNotification, __uuidof(IToastNotification));
_COM_SMARTPTR_TYPEDEF(IToastNotificationFactory, __uuidof(IToastNotificationFactory));
_COM_SMARTPTR_TYPEDEF(IToastNotifier, __uuidof(IToastNotifier));
_COM_SMARTPTR_TYPEDEF(IToastNotificationManagerStatics, __uuidof(IToastNotificationManagerStatics));
} // namespace ToastAbi
