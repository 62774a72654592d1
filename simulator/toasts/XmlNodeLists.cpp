#include "simulator/toasts/XmlNodeLists.h"

namespace Simulator
{
HRESULT XmlNodeListObject::get_Length(UINT32* value)
{
    const HRESULT hr = BeginCall("IXmlNodeList::get_Length", value);
    if (FAILED(hr))
        return hr;
    const std::lock_guard lock(m_origin.m_spTree->Lock());
    *value = static_cast<UINT32>(m_selection(*m_origin.m_pNode).size());
    return S_OK;
}

HRESULT XmlNodeListObject::Item(UINT32 index, Abi::IXmlNode** node)
{
    const HRESULT hr = BeginCall("IXmlNodeList::Item", node);
    if (FAILED(hr))
        return hr;
    const std::lock_guard lock(m_origin.m_spTree->Lock());
    const std::vector<XmlNode*> nodes = m_selection(*m_origin.m_pNode);
    return WrapNode({m_origin.m_spTree, index < nodes.size() ? nodes[index] : nullptr}, node);
}

HRESULT XmlAttributeMapObject::Wrap(XmlNode* node, Abi::IXmlNode** object) const
{
    return WrapNode({m_element.m_spTree, node}, object);
}

HRESULT XmlAttributeMapObject::get_Length(UINT32* value)
{
    const HRESULT hr = BeginCall("IXmlNamedNodeMap::get_Length", value);
    if (FAILED(hr))
        return hr;
    const std::lock_guard lock(m_element.m_spTree->Lock());
    *value = static_cast<UINT32>(Element().m_lstAttributes.size());
    return S_OK;
}

HRESULT XmlAttributeMapObject::Item(UINT32 index, Abi::IXmlNode** node)
{
    const HRESULT hr = BeginCall("IXmlNamedNodeMap::Item", node);
    if (FAILED(hr))
        return hr;
    const std::lock_guard lock(m_element.m_spTree->Lock());
    const auto& attributes = Element().m_lstAttributes;
    return Wrap(index < attributes.size() ? attributes[index] : nullptr, node);
}

HRESULT XmlAttributeMapObject::GetNamedItem(HSTRING name, Abi::IXmlNode** node)
{
    const HRESULT hr = BeginCall("IXmlNamedNodeMap::GetNamedItem", node);
    if (FAILED(hr))
        return hr;
    const std::lock_guard lock(m_element.m_spTree->Lock());
    return Wrap(Element().Attribute(RuntimeText::View(name)), node);
}

HRESULT XmlAttributeMapObject::SetNamedItem(Abi::IXmlNode* node, Abi::IXmlNode** previous)
{
    HRESULT hr = BeginCall("IXmlNamedNodeMap::SetNamedItem", previous);
    if (FAILED(hr))
        return hr;
    XmlHandle attribute;
    if (FAILED(GetHandle(node, attribute)) || attribute.m_spTree != m_element.m_spTree)
        return E_INVALIDARG;
    const std::lock_guard lock(m_element.m_spTree->Lock());
    XmlNode* replaced = nullptr;
    hr = m_element.m_spTree->SetAttribute(Element(), *attribute.m_pNode, &replaced);
    return FAILED(hr) ? hr : Wrap(replaced, previous);
}

HRESULT XmlAttributeMapObject::RemoveNamedItem(HSTRING name, Abi::IXmlNode** previous)
{
    const HRESULT hr = BeginCall("IXmlNamedNodeMap::RemoveNamedItem", previous);
    if (FAILED(hr))
        return hr;
    const std::lock_guard lock(m_element.m_spTree->Lock());
    XmlNode* attribute = Element().Attribute(RuntimeText::View(name));
    if (attribute != nullptr)
        XmlTree::Detach(*attribute);
    return Wrap(attribute, previous);
}

HRESULT XmlAttributeMapObject::GetNamedItemNS(IInspectable* /*uri*/, HSTRING /*name*/, Abi::IXmlNode** node)
{
    const HRESULT hr = BeginCall("IXmlNamedNodeMap::GetNamedItemNS", node);
    return FAILED(hr) ? hr : E_NOTIMPL;
}

HRESULT XmlAttributeMapObject::RemoveNamedItemNS(IInspectable* /*uri*/, HSTRING /*name*/, Abi::IXmlNode** previous)
{
    const HRESULT hr = BeginCall("IXmlNamedNodeMap::RemoveNamedItemNS", previous);
    return FAILED(hr) ? hr : E_NOTIMPL;
}

HRESULT XmlAttributeMapObject::SetNamedItemNS(Abi::IXmlNode* /*node*/, Abi::IXmlNode** previous)
{
    const HRESULT hr = BeginCall("IXmlNamedNodeMap::SetNamedItemNS", previous);
    return FAILED(hr) ? hr : E_NOTIMPL;
}
} // namespace Simulator
