#pragma once

#include "simulator/toasts/RuntimeObject.h"
#include "simulator/toasts/ToastEvents.h"
#include "simulator/toasts/XmlTree.h"

namespace Simulator
{
// What a toast consists of.
struct ToastParts
{
    Abi::IXmlDocumentPtr m_spDocument;
    XmlHandle m_content;
    ToastEvents m_events;
};

// How the doubles reach the parts of a toast that comes back as an argument.
struct IToastParts : IUnknown
{
    virtual std::shared_ptr<ToastParts> Parts() const = 0;
};
} // namespace Simulator

__CRT_UUID_DECL(Simulator::IToastParts, 0x2b7c1a64, 0x0f3d, 0x4e1b, 0x8c, 0x55, 0xd1, 0x9a, 0x3e, 0x60, 0x72, 0xf8)

namespace Simulator
{
class ToastNotification : public Abi::IToastNotification, public IToastParts
{
public:
    static constexpr char ObjectName[] = "ToastNotification";
    static constexpr wchar_t RuntimeClassName[] = L"Windows.UI.Notifications.ToastNotification";
    using PublicInterfaces = InterfaceList<Abi::IToastNotification>;
    using PrivateInterfaces = InterfaceList<IToastParts>;

    ToastNotification(Abi::IXmlDocument* document, XmlHandle content);

    std::shared_ptr<ToastParts> Parts() const override { return m_spParts; }

    HRESULT WINAPI get_Content(Abi::IXmlDocument** value) override;
    // Dates boxed as objects are not offered: E_NOTIMPL. Without one a toast leaves the screen by its own time-out.
    HRESULT WINAPI put_ExpirationTime(IInspectable* value) override;
    HRESULT WINAPI get_ExpirationTime(IInspectable** value) override;
    HRESULT WINAPI add_Dismissed(Abi::IToastDismissedHandler* handler, EventRegistrationToken* token) override;
    HRESULT WINAPI remove_Dismissed(EventRegistrationToken token) override;
    HRESULT WINAPI add_Activated(Abi::IToastActivatedHandler* handler, EventRegistrationToken* token) override;
    HRESULT WINAPI remove_Activated(EventRegistrationToken token) override;
    HRESULT WINAPI add_Failed(Abi::IToastFailedHandler* handler, EventRegistrationToken* token) override;
    HRESULT WINAPI remove_Failed(EventRegistrationToken token) override;

private:
    const std::shared_ptr<ToastParts> m_spParts;
};

// Null for null and for a toast of somebody else.
[[nodiscard]] std::shared_ptr<ToastParts> FindToastParts(Abi::IToastNotification* toast);
} // namespace Simulator
