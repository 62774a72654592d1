#pragma once

#include "simulator/toasts/XmlNodeBase.h"

#include <functional>

namespace Simulator
{
// A live list: it shows the nodes that its selection finds below its origin at the moment it is asked.
class XmlNodeListObject : public Abi::IXmlNodeList
{
public:
    static constexpr char ObjectName[] = "XmlNodeList";
    static constexpr wchar_t RuntimeClassName[] = L"Windows.Data.Xml.Dom.XmlNodeList";
    using PublicInterfaces = InterfaceList<Abi::IXmlNodeList>;
    using PrivateInterfaces = InterfaceList<>;
    using Selection = std::function<std::vector<XmlNode*>(const XmlNode& origin)>;

    XmlNodeListObject(XmlHandle origin, Selection selection)
        : m_origin(std::move(origin)), m_selection(std::move(selection))
    {
    }

    HRESULT WINAPI get_Length(UINT32* value) override;
    HRESULT WINAPI Item(UINT32 index, Abi::IXmlNode** node) override;

private:
    const XmlHandle m_origin;
    const Selection m_selection;
};

// The attributes of one element. There are no namespaces: the members that ask for one are E_NOTIMPL.
class XmlAttributeMapObject : public Abi::IXmlNamedNodeMap
{
public:
    static constexpr char ObjectName[] = "XmlNamedNodeMap";
    static constexpr wchar_t RuntimeClassName[] = L"Windows.Data.Xml.Dom.XmlNamedNodeMap";
    using PublicInterfaces = InterfaceList<Abi::IXmlNamedNodeMap>;
    using PrivateInterfaces = InterfaceList<>;

    explicit XmlAttributeMapObject(XmlHandle element) : m_element(std::move(element)) {}

    HRESULT WINAPI get_Length(UINT32* value) override;
    HRESULT WINAPI Item(UINT32 index, Abi::IXmlNode** node) override;
    HRESULT WINAPI GetNamedItem(HSTRING name, Abi::IXmlNode** node) override;
    HRESULT WINAPI SetNamedItem(Abi::IXmlNode* node, Abi::IXmlNode** previous) override;
    HRESULT WINAPI RemoveNamedItem(HSTRING name, Abi::IXmlNode** previous) override;
    HRESULT WINAPI GetNamedItemNS(IInspectable* uri, HSTRING name, Abi::IXmlNode** node) override;
    HRESULT WINAPI RemoveNamedItemNS(IInspectable* uri, HSTRING name, Abi::IXmlNode** previous) override;
    HRESULT WINAPI SetNamedItemNS(Abi::IXmlNode* node, Abi::IXmlNode** previous) override;

private:
    [[nodiscard]] XmlNode& Element() const { return *m_element.m_pNode; }
    [[nodiscard]] HRESULT Wrap(XmlNode* node, Abi::IXmlNode** object) const;

    const XmlHandle m_element;
};
} // namespace Simulator
