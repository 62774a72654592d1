#include "simulator/toasts/XmlTree.h"

#include <algorithm>

namespace Simulator
{
namespace
{
bool CanHold(const XmlNode& parent, const XmlNode& child)
{
    switch (parent.m_type)
    {
    case Abi::XmlNodeType_Element:
        return child.m_type == Abi::XmlNodeType_Element || child.m_type == Abi::XmlNodeType_Text;
    case Abi::XmlNodeType_Attribute:
        return child.m_type == Abi::XmlNodeType_Text;
    case Abi::XmlNodeType_Document:
        return child.m_type == Abi::XmlNodeType_Element &&
               std::ranges::all_of(parent.m_lstChildren, [&child](const XmlNode* other) { return other == &child; });
    default:
        return false;
    }
}

bool IsInside(const XmlNode* node, const XmlNode& ancestor)
{
    while (node != nullptr && node != &ancestor)
        node = node->m_pParent;
    return node != nullptr;
}

void CollectElements(const XmlNode& node, std::wstring_view name, std::vector<XmlNode*>& found)
{
    for (XmlNode* child : node.m_lstChildren)
    {
        if (child->m_type == Abi::XmlNodeType_Element && (name == L"*" || child->m_strName == name))
            found.push_back(child);
        CollectElements(*child, name, found);
    }
}
} // namespace

std::wstring XmlNode::Text() const
{
    std::wstring text = m_strValue;
    for (const XmlNode* child : m_lstChildren)
        text += child->Text();
    return text;
}

XmlNode* XmlNode::Attribute(std::wstring_view name) const
{
    const auto found = std::ranges::find_if(m_lstAttributes,
                                            [name](const XmlNode* attribute) { return attribute->m_strName == name; });
    return found == m_lstAttributes.end() ? nullptr : *found;
}

std::vector<XmlNode*> XmlNode::Elements(std::wstring_view name) const
{
    std::vector<XmlNode*> found;
    CollectElements(*this, name, found);
    return found;
}

XmlTree::XmlTree()
{
    Create(Abi::XmlNodeType_Document, L"#document");
}

XmlNode* XmlTree::DocumentElement()
{
    return Document().m_lstChildren.empty() ? nullptr : Document().m_lstChildren.front();
}

XmlNode& XmlTree::Create(Abi::XmlNodeType type, std::wstring_view name)
{
    m_lstNodes.push_back(std::make_unique<XmlNode>());
    m_lstNodes.back()->m_type = type;
    m_lstNodes.back()->m_strName = name;
    return *m_lstNodes.back();
}

XmlNode& XmlTree::CreateElement(std::wstring_view name)
{
    return Create(Abi::XmlNodeType_Element, name);
}

XmlNode& XmlTree::CreateText(std::wstring_view data)
{
    XmlNode& text = Create(Abi::XmlNodeType_Text, L"#text");
    text.m_strValue = data;
    return text;
}

XmlNode& XmlTree::CreateAttribute(std::wstring_view name, std::wstring_view value)
{
    XmlNode& attribute = Create(Abi::XmlNodeType_Attribute, name);
    SetText(attribute, value);
    return attribute;
}

XmlNode& XmlTree::Copy(const XmlNode& node, bool deep)
{
    XmlNode& copy = Create(node.m_type, node.m_strName);
    copy.m_strValue = node.m_strValue;
    copy.m_bEndTag = node.m_bEndTag;
    for (const XmlNode* attribute : node.m_lstAttributes)
    {
        XmlNode& own = Copy(*attribute, true);
        own.m_pParent = &copy;
        copy.m_lstAttributes.push_back(&own);
    }
    // The text of an attribute is part of it even in a shallow copy.
    if (deep || node.m_type == Abi::XmlNodeType_Attribute)
    {
        for (const XmlNode* child : node.m_lstChildren)
        {
            XmlNode& own = Copy(*child, true);
            own.m_pParent = &copy;
            copy.m_lstChildren.push_back(&own);
        }
    }
    return copy;
}

HRESULT XmlTree::Insert(XmlNode& parent, XmlNode& child, XmlNode* reference)
{
    if (!CanHold(parent, child) || IsInside(&parent, child) ||
        (reference != nullptr && (reference->m_pParent != &parent || reference->m_type == Abi::XmlNodeType_Attribute)))
        return E_INVALIDARG;
    if (reference == &child)
        return S_OK;
    Detach(child);
    auto& children = parent.m_lstChildren;
    children.insert(reference == nullptr ? children.end() : std::ranges::find(children, reference), &child);
    child.m_pParent = &parent;
    return S_OK;
}

void XmlTree::Detach(XmlNode& node)
{
    if (node.m_pParent == nullptr)
        return;
    std::erase(node.m_pParent->m_lstChildren, &node);
    std::erase(node.m_pParent->m_lstAttributes, &node);
    node.m_pParent = nullptr;
}

HRESULT XmlTree::SetAttribute(XmlNode& element, XmlNode& attribute, XmlNode** previous)
{
    *previous = nullptr;
    if (element.m_type != Abi::XmlNodeType_Element || attribute.m_type != Abi::XmlNodeType_Attribute ||
        (attribute.m_pParent != nullptr && attribute.m_pParent != &element))
        return E_INVALIDARG;
    XmlNode* current = element.Attribute(attribute.m_strName);
    if (current == &attribute)
        return S_OK;
    if (current != nullptr)
    {
        std::ranges::replace(element.m_lstAttributes, current, &attribute);
        current->m_pParent = nullptr;
        *previous = current;
    }
    else
        element.m_lstAttributes.push_back(&attribute);
    attribute.m_pParent = &element;
    return S_OK;
}

void XmlTree::SetText(XmlNode& node, std::wstring_view text)
{
    if (node.m_type == Abi::XmlNodeType_Text)
    {
        node.m_strValue = text;
        return;
    }
    while (!node.m_lstChildren.empty())
        Detach(*node.m_lstChildren.back());
    if (!text.empty())
    {
        XmlNode& child = CreateText(text);
        child.m_pParent = &node;
        node.m_lstChildren.push_back(&child);
    }
}
} // namespace Simulator
