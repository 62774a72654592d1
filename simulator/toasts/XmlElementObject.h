#pragma once

#include "simulator/toasts/XmlNodeBase.h"

namespace Simulator
{
// There are no namespaces: the members that ask for one are E_NOTIMPL.
class XmlElementObject : public Abi::IXmlElement, public XmlNodeBase
{
public:
    static constexpr char ObjectName[] = "XmlElement";
    static constexpr wchar_t RuntimeClassName[] = L"Windows.Data.Xml.Dom.XmlElement";
    using PublicInterfaces = InterfaceList<Abi::IXmlElement, Abi::IXmlNode, Abi::IXmlNodeSerializer>;

    using XmlNodeBase::XmlNodeBase;

    HRESULT WINAPI get_TagName(HSTRING* value) override;
    HRESULT WINAPI GetAttribute(HSTRING name, HSTRING* value) override;
    HRESULT WINAPI SetAttribute(HSTRING name, HSTRING value) override;
    HRESULT WINAPI RemoveAttribute(HSTRING name) override;
    HRESULT WINAPI GetAttributeNode(HSTRING name, Abi::IXmlAttribute** attribute) override;
    HRESULT WINAPI SetAttributeNode(Abi::IXmlAttribute* attribute, Abi::IXmlAttribute** previous) override;
    HRESULT WINAPI RemoveAttributeNode(Abi::IXmlAttribute* attribute, Abi::IXmlAttribute** removed) override;
    HRESULT WINAPI GetElementsByTagName(HSTRING name, Abi::IXmlNodeList** elements) override;
    HRESULT WINAPI SetAttributeNS(IInspectable* uri, HSTRING name, HSTRING value) override;
    HRESULT WINAPI GetAttributeNS(IInspectable* uri, HSTRING name, HSTRING* value) override;
    HRESULT WINAPI RemoveAttributeNS(IInspectable* uri, HSTRING name) override;
    HRESULT WINAPI SetAttributeNodeNS(Abi::IXmlAttribute* attribute, Abi::IXmlAttribute** previous) override;
    HRESULT WINAPI GetAttributeNodeNS(IInspectable* uri, HSTRING name, Abi::IXmlAttribute** attribute) override;
};
} // namespace Simulator
