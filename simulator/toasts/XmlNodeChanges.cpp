#include "simulator/toasts/XmlNodeBase.h"
#include "simulator/toasts/XmlWriter.h"

// The members of XmlNodeBase that change the tree or write it out.
namespace Simulator
{
HRESULT XmlNodeBase::InsertBefore(Abi::IXmlNode* child, Abi::IXmlNode* reference, Abi::IXmlNode** inserted)
{
    HRESULT hr = BeginCall("IXmlNode::InsertBefore", inserted);
    if (FAILED(hr))
        return hr;
    XmlNode* node = nullptr;
    XmlNode* before = nullptr;
    const std::lock_guard lock(Tree().Lock());
    if (FAILED(FindOwn(child, &node)) || FAILED(FindOwn(reference, &before)) || node == nullptr)
        return E_INVALIDARG;
    hr = Tree().Insert(Node(), *node, before);
    return FAILED(hr) ? hr : WrapNode(Other(node), inserted);
}

HRESULT XmlNodeBase::ReplaceChild(Abi::IXmlNode* child, Abi::IXmlNode* reference, Abi::IXmlNode** previous)
{
    HRESULT hr = BeginCall("IXmlNode::ReplaceChild", previous);
    if (FAILED(hr))
        return hr;
    XmlNode* node = nullptr;
    XmlNode* old = nullptr;
    const std::lock_guard lock(Tree().Lock());
    if (FAILED(FindOwn(child, &node)) || FAILED(FindOwn(reference, &old)) || node == nullptr || old == nullptr)
        return E_INVALIDARG;
    hr = Tree().Insert(Node(), *node, old);
    if (FAILED(hr))
        return hr;
    if (node != old)
        XmlTree::Detach(*old);
    return WrapNode(Other(old), previous);
}

HRESULT XmlNodeBase::RemoveChild(Abi::IXmlNode* child, Abi::IXmlNode** removed)
{
    const HRESULT hr = BeginCall("IXmlNode::RemoveChild", removed);
    if (FAILED(hr))
        return hr;
    XmlNode* node = nullptr;
    const std::lock_guard lock(Tree().Lock());
    if (FAILED(FindOwn(child, &node)) || node == nullptr || node->m_pParent != &Node() ||
        node->m_type == Abi::XmlNodeType_Attribute)
        return E_INVALIDARG;
    XmlTree::Detach(*node);
    return WrapNode(Other(node), removed);
}

HRESULT XmlNodeBase::AppendChild(Abi::IXmlNode* child, Abi::IXmlNode** appended)
{
    HRESULT hr = BeginCall("IXmlNode::AppendChild", appended);
    if (FAILED(hr))
        return hr;
    XmlNode* node = nullptr;
    const std::lock_guard lock(Tree().Lock());
    if (FAILED(FindOwn(child, &node)) || node == nullptr)
        return E_INVALIDARG;
    hr = Tree().Insert(Node(), *node);
    return FAILED(hr) ? hr : WrapNode(Other(node), appended);
}

HRESULT XmlNodeBase::CloneNode(boolean deep, Abi::IXmlNode** clone)
{
    const HRESULT hr = BeginCall("IXmlNode::CloneNode", clone);
    if (FAILED(hr))
        return hr;
    if (Node().m_type == Abi::XmlNodeType_Document)
        return E_NOTIMPL;
    const std::lock_guard lock(Tree().Lock());
    return WrapNode(Other(&Tree().Copy(Node(), deep != FALSE)), clone);
}

HRESULT XmlNodeBase::get_NamespaceUri(IInspectable** value)
{
    const HRESULT hr = BeginCall("IXmlNode::get_NamespaceUri", value);
    return FAILED(hr) ? hr : E_NOTIMPL;
}

HRESULT XmlNodeBase::get_LocalName(IInspectable** value)
{
    const HRESULT hr = BeginCall("IXmlNode::get_LocalName", value);
    return FAILED(hr) ? hr : E_NOTIMPL;
}

HRESULT XmlNodeBase::get_Prefix(IInspectable** value)
{
    const HRESULT hr = BeginCall("IXmlNode::get_Prefix", value);
    return FAILED(hr) ? hr : E_NOTIMPL;
}

HRESULT XmlNodeBase::Normalize()
{
    const HRESULT hr = BeginCall("IXmlNode::Normalize");
    return FAILED(hr) ? hr : E_NOTIMPL;
}

HRESULT XmlNodeBase::put_Prefix(IInspectable* /*value*/)
{
    const HRESULT hr = BeginCall("IXmlNode::put_Prefix");
    return FAILED(hr) ? hr : E_NOTIMPL;
}

HRESULT XmlNodeBase::GetXml(HSTRING* outerXml)
{
    const HRESULT hr = BeginCall("IXmlNodeSerializer::GetXml", outerXml);
    if (FAILED(hr))
        return hr;
    const std::lock_guard lock(Tree().Lock());
    return RuntimeText::Create(WriteXml(Node()), outerXml);
}

HRESULT XmlNodeBase::get_InnerText(HSTRING* value)
{
    const HRESULT hr = BeginCall("IXmlNodeSerializer::get_InnerText", value);
    if (FAILED(hr))
        return hr;
    const std::lock_guard lock(Tree().Lock());
    return RuntimeText::Create(Node().Text(), value);
}

HRESULT XmlNodeBase::put_InnerText(HSTRING value)
{
    const HRESULT hr = BeginCall("IXmlNodeSerializer::put_InnerText");
    if (FAILED(hr))
        return hr;
    if (Node().m_type == Abi::XmlNodeType_Document)
        return E_INVALIDARG;
    const std::lock_guard lock(Tree().Lock());
    Tree().SetText(Node(), RuntimeText::View(value));
    return S_OK;
}
} // namespace Simulator
