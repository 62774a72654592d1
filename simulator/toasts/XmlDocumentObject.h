#pragma once

#include "simulator/toasts/XmlNodeBase.h"

namespace Simulator
{
// Documents consist of elements, attributes and texts: what makes or names other kinds of node, or a namespace, is
// E_NOTIMPL.
class XmlDocumentObject : public Abi::IXmlDocument, public XmlNodeBase
{
public:
    static constexpr char ObjectName[] = "XmlDocument";
    static constexpr wchar_t RuntimeClassName[] = L"Windows.Data.Xml.Dom.XmlDocument";
    using PublicInterfaces = InterfaceList<Abi::IXmlDocument, Abi::IXmlNode, Abi::IXmlNodeSerializer>;

    using XmlNodeBase::XmlNodeBase;

    HRESULT WINAPI get_Doctype(IInspectable** value) override;
    HRESULT WINAPI get_Implementation(IInspectable** value) override;
    HRESULT WINAPI get_DocumentElement(Abi::IXmlElement** value) override;
    HRESULT WINAPI CreateElement(HSTRING name, Abi::IXmlElement** element) override;
    HRESULT WINAPI CreateDocumentFragment(IInspectable** fragment) override;
    HRESULT WINAPI CreateTextNode(HSTRING data, Abi::IXmlText** text) override;
    HRESULT WINAPI CreateComment(HSTRING data, IInspectable** comment) override;
    HRESULT WINAPI CreateProcessingInstruction(HSTRING target, HSTRING data, IInspectable** instruction) override;
    HRESULT WINAPI CreateAttribute(HSTRING name, Abi::IXmlAttribute** attribute) override;
    HRESULT WINAPI CreateEntityReference(HSTRING name, IInspectable** reference) override;
    HRESULT WINAPI GetElementsByTagName(HSTRING name, Abi::IXmlNodeList** elements) override;
    HRESULT WINAPI CreateCDataSection(HSTRING data, IInspectable** section) override;
    HRESULT WINAPI get_DocumentUri(HSTRING* value) override;
    HRESULT WINAPI CreateAttributeNS(IInspectable* uri, HSTRING name, Abi::IXmlAttribute** attribute) override;
    HRESULT WINAPI CreateElementNS(IInspectable* uri, HSTRING name, Abi::IXmlElement** element) override;
    HRESULT WINAPI GetElementById(HSTRING id, Abi::IXmlElement** element) override;
    HRESULT WINAPI ImportNode(Abi::IXmlNode* node, boolean deep, Abi::IXmlNode** imported) override;
};
} // namespace Simulator
