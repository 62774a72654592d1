#pragma once

#include "simulator/toasts/XmlInterfaces.h"

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace Simulator
{
// One node of a document. Belongs to its tree and lives as long as that.
struct XmlNode
{
    Abi::XmlNodeType m_type;
    std::wstring m_strName;       // tag or attribute name, "#text", "#document"
    std::wstring m_strValue;      // of a text only
    bool m_bEndTag = false;       // an element without content is written <a></a> instead of <a/>
    XmlNode* m_pParent = nullptr; // the element, for an attribute
    std::vector<XmlNode*> m_lstChildren;
    std::vector<XmlNode*> m_lstAttributes;

    // All text below the node; the value of an attribute.
    [[nodiscard]] std::wstring Text() const;
    [[nodiscard]] XmlNode* Attribute(std::wstring_view name) const;
    // Elements below the node in document order; "*" means every name.
    [[nodiscard]] std::vector<XmlNode*> Elements(std::wstring_view name) const;
};

// A document in memory. Nodes that were taken out stay valid. The caller holds the lock around every use of the tree
// and of its nodes.
class XmlTree
{
public:
    XmlTree();

    [[nodiscard]] std::mutex& Lock() { return m_lock; }
    [[nodiscard]] XmlNode& Document() { return *m_lstNodes.front(); }
    [[nodiscard]] XmlNode* DocumentElement();

    // New nodes have no parent yet.
    XmlNode& CreateElement(std::wstring_view name);
    XmlNode& CreateText(std::wstring_view data);
    XmlNode& CreateAttribute(std::wstring_view name, std::wstring_view value);
    // Of a node of this or, with both locks held, of another tree.
    XmlNode& Copy(const XmlNode& node, bool deep);

    // Puts the child, out of wherever it was, before the reference or at the end. E_INVALIDARG when the parent cannot
    // hold it or the reference is not the parent's.
    [[nodiscard]] HRESULT Insert(XmlNode& parent, XmlNode& child, XmlNode* reference = nullptr);
    static void Detach(XmlNode& node);
    // Returns the attribute of that name that it replaced, or null. E_INVALIDARG when it belongs to another element.
    [[nodiscard]] HRESULT SetAttribute(XmlNode& element, XmlNode& attribute, XmlNode** previous);
    // Replaces the children by one text; none for an empty one.
    void SetText(XmlNode& node, std::wstring_view text);

private:
    XmlNode& Create(Abi::XmlNodeType type, std::wstring_view name);

    std::mutex m_lock;
    std::vector<std::unique_ptr<XmlNode>> m_lstNodes; // the document is the first
};

// A node together with what keeps it alive.
struct XmlHandle
{
    std::shared_ptr<XmlTree> m_spTree;
    XmlNode* m_pNode = nullptr;
};
} // namespace Simulator
