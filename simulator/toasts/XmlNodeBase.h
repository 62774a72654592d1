#pragma once

#include "simulator/toasts/RuntimeObject.h"
#include "simulator/toasts/TreeNode.h"

namespace Simulator
{
// What every kind of node has in common: IXmlNode and IXmlNodeSerializer over one node of a tree. Values boxed as
// objects (NodeValue, LocalName, NamespaceUri, Prefix) are not offered: E_NOTIMPL.
class XmlNodeBase : public Abi::IXmlNode, public Abi::IXmlNodeSerializer, public ITreeNode
{
public:
    using PrivateInterfaces = InterfaceList<ITreeNode>;

    explicit XmlNodeBase(XmlHandle handle) : m_handle(std::move(handle)) {}

    const XmlHandle& Handle() const override { return m_handle; }

    HRESULT WINAPI get_NodeValue(IInspectable** value) override;
    HRESULT WINAPI put_NodeValue(IInspectable* value) override;
    HRESULT WINAPI get_NodeType(Abi::XmlNodeType* value) override;
    HRESULT WINAPI get_NodeName(HSTRING* value) override;
    HRESULT WINAPI get_ParentNode(Abi::IXmlNode** value) override;
    HRESULT WINAPI get_ChildNodes(Abi::IXmlNodeList** value) override;
    HRESULT WINAPI get_FirstChild(Abi::IXmlNode** value) override;
    HRESULT WINAPI get_LastChild(Abi::IXmlNode** value) override;
    HRESULT WINAPI get_PreviousSibling(Abi::IXmlNode** value) override;
    HRESULT WINAPI get_NextSibling(Abi::IXmlNode** value) override;
    HRESULT WINAPI get_Attributes(Abi::IXmlNamedNodeMap** value) override;
    HRESULT WINAPI HasChildNodes(boolean* value) override;
    HRESULT WINAPI get_OwnerDocument(Abi::IXmlDocument** value) override;
    HRESULT WINAPI InsertBefore(Abi::IXmlNode* child, Abi::IXmlNode* reference, Abi::IXmlNode** inserted) override;
    HRESULT WINAPI ReplaceChild(Abi::IXmlNode* child, Abi::IXmlNode* reference, Abi::IXmlNode** previous) override;
    HRESULT WINAPI RemoveChild(Abi::IXmlNode* child, Abi::IXmlNode** removed) override;
    HRESULT WINAPI AppendChild(Abi::IXmlNode* child, Abi::IXmlNode** appended) override;
    HRESULT WINAPI CloneNode(boolean deep, Abi::IXmlNode** clone) override;
    HRESULT WINAPI get_NamespaceUri(IInspectable** value) override;
    HRESULT WINAPI get_LocalName(IInspectable** value) override;
    HRESULT WINAPI get_Prefix(IInspectable** value) override;
    HRESULT WINAPI Normalize() override;
    HRESULT WINAPI put_Prefix(IInspectable* value) override;

    HRESULT WINAPI GetXml(HSTRING* outerXml) override;
    HRESULT WINAPI get_InnerText(HSTRING* value) override;
    HRESULT WINAPI put_InnerText(HSTRING value) override;

protected:
    ~XmlNodeBase() = default;

    [[nodiscard]] XmlTree& Tree() const { return *m_handle.m_spTree; }
    [[nodiscard]] XmlNode& Node() const { return *m_handle.m_pNode; }
    [[nodiscard]] XmlHandle Other(XmlNode* node) const { return {m_handle.m_spTree, node}; }
    // E_INVALIDARG unless the object is a node of the same document; null gives a null node.
    [[nodiscard]] HRESULT FindOwn(Abi::IXmlNode* object, XmlNode** node) const;

private:
    [[nodiscard]] XmlNode* Sibling(int step) const;

    const XmlHandle m_handle;
};

// A COM object for the node, by its kind; S_OK and null for a null node.
[[nodiscard]] HRESULT WrapNode(const XmlHandle& handle, Abi::IXmlNode** object);
} // namespace Simulator
