#include "simulator/toasts/XmlElementObject.h"

#include "simulator/toasts/XmlAttributeObject.h"
#include "simulator/toasts/XmlNodeLists.h"

namespace Simulator
{
HRESULT XmlElementObject::get_TagName(HSTRING* value)
{
    const HRESULT hr = BeginCall("IXmlElement::get_TagName", value);
    return FAILED(hr) ? hr : RuntimeText::Create(Node().m_strName, value);
}

HRESULT XmlElementObject::GetAttribute(HSTRING name, HSTRING* value)
{
    const HRESULT hr = BeginCall("IXmlElement::GetAttribute", value);
    if (FAILED(hr))
        return hr;
    const std::lock_guard lock(Tree().Lock());
    const XmlNode* attribute = Node().Attribute(RuntimeText::View(name));
    return RuntimeText::Create(attribute == nullptr ? std::wstring() : attribute->Text(), value);
}

HRESULT XmlElementObject::SetAttribute(HSTRING name, HSTRING value)
{
    const HRESULT hr = BeginCall("IXmlElement::SetAttribute");
    if (FAILED(hr))
        return hr;
    const std::lock_guard lock(Tree().Lock());
    if (XmlNode* attribute = Node().Attribute(RuntimeText::View(name)); attribute != nullptr)
    {
        Tree().SetText(*attribute, RuntimeText::View(value));
        return S_OK;
    }
    XmlNode* previous = nullptr;
    return Tree().SetAttribute(Node(), Tree().CreateAttribute(RuntimeText::View(name), RuntimeText::View(value)),
                               &previous);
}

HRESULT XmlElementObject::RemoveAttribute(HSTRING name)
{
    const HRESULT hr = BeginCall("IXmlElement::RemoveAttribute");
    if (FAILED(hr))
        return hr;
    const std::lock_guard lock(Tree().Lock());
    if (XmlNode* attribute = Node().Attribute(RuntimeText::View(name)); attribute != nullptr)
        XmlTree::Detach(*attribute);
    return S_OK;
}

HRESULT XmlElementObject::GetAttributeNode(HSTRING name, Abi::IXmlAttribute** attribute)
{
    const HRESULT hr = BeginCall("IXmlElement::GetAttributeNode", attribute);
    if (FAILED(hr))
        return hr;
    const std::lock_guard lock(Tree().Lock());
    XmlNode* found = Node().Attribute(RuntimeText::View(name));
    return found == nullptr ? S_OK : MakeObject<XmlAttributeObject>(attribute, Other(found));
}

HRESULT XmlElementObject::SetAttributeNode(Abi::IXmlAttribute* attribute, Abi::IXmlAttribute** previous)
{
    HRESULT hr = BeginCall("IXmlElement::SetAttributeNode", previous);
    if (FAILED(hr))
        return hr;
    XmlHandle handle;
    if (FAILED(GetHandle(attribute, handle)) || handle.m_spTree != Handle().m_spTree)
        return E_INVALIDARG;
    const std::lock_guard lock(Tree().Lock());
    XmlNode* replaced = nullptr;
    hr = Tree().SetAttribute(Node(), *handle.m_pNode, &replaced);
    return FAILED(hr) || replaced == nullptr ? hr : MakeObject<XmlAttributeObject>(previous, Other(replaced));
}

HRESULT XmlElementObject::RemoveAttributeNode(Abi::IXmlAttribute* attribute, Abi::IXmlAttribute** removed)
{
    const HRESULT hr = BeginCall("IXmlElement::RemoveAttributeNode", removed);
    if (FAILED(hr))
        return hr;
    XmlHandle handle;
    if (FAILED(GetHandle(attribute, handle)) || handle.m_pNode->m_pParent != &Node())
        return E_INVALIDARG;
    const std::lock_guard lock(Tree().Lock());
    XmlTree::Detach(*handle.m_pNode);
    return MakeObject<XmlAttributeObject>(removed, handle);
}

HRESULT XmlElementObject::GetElementsByTagName(HSTRING name, Abi::IXmlNodeList** elements)
{
    const HRESULT hr = BeginCall("IXmlElement::GetElementsByTagName", elements);
    if (FAILED(hr))
        return hr;
    return MakeObject<XmlNodeListObject>(elements, Handle(),
                                         [tag = std::wstring(RuntimeText::View(name))](const XmlNode& origin)
                                         { return origin.Elements(tag); });
}

HRESULT XmlElementObject::SetAttributeNS(IInspectable* /*uri*/, HSTRING /*name*/, HSTRING /*value*/)
{
    const HRESULT hr = BeginCall("IXmlElement::SetAttributeNS");
    return FAILED(hr) ? hr : E_NOTIMPL;
}

HRESULT XmlElementObject::GetAttributeNS(IInspectable* /*uri*/, HSTRING /*name*/, HSTRING* value)
{
    const HRESULT hr = BeginCall("IXmlElement::GetAttributeNS", value);
    return FAILED(hr) ? hr : E_NOTIMPL;
}

HRESULT XmlElementObject::RemoveAttributeNS(IInspectable* /*uri*/, HSTRING /*name*/)
{
    const HRESULT hr = BeginCall("IXmlElement::RemoveAttributeNS");
    return FAILED(hr) ? hr : E_NOTIMPL;
}

HRESULT XmlElementObject::SetAttributeNodeNS(Abi::IXmlAttribute* /*attribute*/, Abi::IXmlAttribute** previous)
{
    const HRESULT hr = BeginCall("IXmlElement::SetAttributeNodeNS", previous);
    return FAILED(hr) ? hr : E_NOTIMPL;
}

HRESULT XmlElementObject::GetAttributeNodeNS(IInspectable* /*uri*/, HSTRING /*name*/, Abi::IXmlAttribute** attribute)
{
    const HRESULT hr = BeginCall("IXmlElement::GetAttributeNodeNS", attribute);
    return FAILED(hr) ? hr : E_NOTIMPL;
}
} // namespace Simulator
