#include "simulator/toasts/XmlNodeBase.h"

#include "simulator/toasts/XmlAttributeObject.h"
#include "simulator/toasts/XmlDocumentObject.h"
#include "simulator/toasts/XmlElementObject.h"
#include "simulator/toasts/XmlNodeLists.h"
#include "simulator/toasts/XmlTextObject.h"

#include <algorithm>

namespace Simulator
{
HRESULT WrapNode(const XmlHandle& handle, Abi::IXmlNode** object)
{
    *object = nullptr;
    if (handle.m_pNode == nullptr)
        return S_OK;
    switch (handle.m_pNode->m_type)
    {
    case Abi::XmlNodeType_Element:
        return MakeObject<XmlElementObject>(object, handle);
    case Abi::XmlNodeType_Attribute:
        return MakeObject<XmlAttributeObject>(object, handle);
    case Abi::XmlNodeType_Text:
        return MakeObject<XmlTextObject>(object, handle);
    default:
        return MakeObject<XmlDocumentObject>(object, handle);
    }
}

HRESULT XmlNodeBase::FindOwn(Abi::IXmlNode* object, XmlNode** node) const
{
    *node = nullptr;
    if (object == nullptr)
        return S_OK;
    XmlHandle handle;
    if (FAILED(GetHandle(object, handle)) || handle.m_spTree != m_handle.m_spTree)
        return E_INVALIDARG;
    *node = handle.m_pNode;
    return S_OK;
}

XmlNode* XmlNodeBase::Sibling(int step) const
{
    // An attribute hangs on its element and has no siblings.
    if (Node().m_pParent == nullptr || Node().m_type == Abi::XmlNodeType_Attribute)
        return nullptr;
    const auto& siblings = Node().m_pParent->m_lstChildren;
    const auto place = std::ranges::find(siblings, &Node()) - siblings.begin() + step;
    return place < 0 || place >= std::ssize(siblings) ? nullptr : siblings[static_cast<std::size_t>(place)];
}

HRESULT XmlNodeBase::get_NodeValue(IInspectable** value)
{
    const HRESULT hr = BeginCall("IXmlNode::get_NodeValue", value);
    return FAILED(hr) ? hr : E_NOTIMPL;
}

HRESULT XmlNodeBase::put_NodeValue(IInspectable* /*value*/)
{
    const HRESULT hr = BeginCall("IXmlNode::put_NodeValue");
    return FAILED(hr) ? hr : E_NOTIMPL;
}

HRESULT XmlNodeBase::get_NodeType(Abi::XmlNodeType* value)
{
    const HRESULT hr = BeginCall("IXmlNode::get_NodeType", value);
    if (SUCCEEDED(hr))
        *value = Node().m_type;
    return hr;
}

HRESULT XmlNodeBase::get_NodeName(HSTRING* value)
{
    const HRESULT hr = BeginCall("IXmlNode::get_NodeName", value);
    return FAILED(hr) ? hr : RuntimeText::Create(Node().m_strName, value);
}

HRESULT XmlNodeBase::get_ParentNode(Abi::IXmlNode** value)
{
    const HRESULT hr = BeginCall("IXmlNode::get_ParentNode", value);
    if (FAILED(hr))
        return hr;
    const std::lock_guard lock(Tree().Lock());
    return WrapNode(Other(Node().m_type == Abi::XmlNodeType_Attribute ? nullptr : Node().m_pParent), value);
}

HRESULT XmlNodeBase::get_ChildNodes(Abi::IXmlNodeList** value)
{
    const HRESULT hr = BeginCall("IXmlNode::get_ChildNodes", value);
    return FAILED(hr)
               ? hr
               : MakeObject<XmlNodeListObject>(value, m_handle, [](const XmlNode& node) { return node.m_lstChildren; });
}

HRESULT XmlNodeBase::get_FirstChild(Abi::IXmlNode** value)
{
    const HRESULT hr = BeginCall("IXmlNode::get_FirstChild", value);
    if (FAILED(hr))
        return hr;
    const std::lock_guard lock(Tree().Lock());
    return WrapNode(Other(Node().m_lstChildren.empty() ? nullptr : Node().m_lstChildren.front()), value);
}

HRESULT XmlNodeBase::get_LastChild(Abi::IXmlNode** value)
{
    const HRESULT hr = BeginCall("IXmlNode::get_LastChild", value);
    if (FAILED(hr))
        return hr;
    const std::lock_guard lock(Tree().Lock());
    return WrapNode(Other(Node().m_lstChildren.empty() ? nullptr : Node().m_lstChildren.back()), value);
}

HRESULT XmlNodeBase::get_PreviousSibling(Abi::IXmlNode** value)
{
    const HRESULT hr = BeginCall("IXmlNode::get_PreviousSibling", value);
    if (FAILED(hr))
        return hr;
    const std::lock_guard lock(Tree().Lock());
    return WrapNode(Other(Sibling(-1)), value);
}

HRESULT XmlNodeBase::get_NextSibling(Abi::IXmlNode** value)
{
    const HRESULT hr = BeginCall("IXmlNode::get_NextSibling", value);
    if (FAILED(hr))
        return hr;
    const std::lock_guard lock(Tree().Lock());
    return WrapNode(Other(Sibling(1)), value);
}

HRESULT XmlNodeBase::get_Attributes(Abi::IXmlNamedNodeMap** value)
{
    const HRESULT hr = BeginCall("IXmlNode::get_Attributes", value);
    if (FAILED(hr) || Node().m_type != Abi::XmlNodeType_Element)
        return hr;
    return MakeObject<XmlAttributeMapObject>(value, m_handle);
}

HRESULT XmlNodeBase::HasChildNodes(boolean* value)
{
    const HRESULT hr = BeginCall("IXmlNode::HasChildNodes", value);
    if (FAILED(hr))
        return hr;
    const std::lock_guard lock(Tree().Lock());
    *value = Node().m_lstChildren.empty() ? FALSE : TRUE;
    return S_OK;
}

HRESULT XmlNodeBase::get_OwnerDocument(Abi::IXmlDocument** value)
{
    const HRESULT hr = BeginCall("IXmlNode::get_OwnerDocument", value);
    // A document has no owner.
    if (FAILED(hr) || Node().m_type == Abi::XmlNodeType_Document)
        return hr;
    return MakeObject<XmlDocumentObject>(value, Other(&Tree().Document()));
}
} // namespace Simulator
