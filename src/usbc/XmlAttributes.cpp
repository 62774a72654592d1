#include "usbc/XmlAttributes.h"

#include "shared/OwnerTypes.h"

#include <cwchar>

using Orvik::Shared::ReceiveInto;

namespace
{
IXMLDOMNodePtr AttributeNode(IXMLDOMNode* node, const wchar_t* name)
{
    const UniqueBstr attributeName = MakeBstr(name);
    IXMLDOMNamedNodeMapPtr spAttributes;
    if (FAILED(node->get_attributes(&spAttributes)) || !spAttributes)
        return {};
    IXMLDOMNodePtr spAttribute;
    if (FAILED(spAttributes->getNamedItem(attributeName.get(), &spAttribute)))
        return {};
    return spAttribute;
}
} // namespace

IXMLDOMNodePtr SelectNode(IXMLDOMDocument* document, const wchar_t* path)
{
    const UniqueBstr query = MakeBstr(path);
    IXMLDOMNodePtr spNode;
    if (FAILED(document->selectSingleNode(query.get(), &spNode)))
        return {};
    return spNode;
}

UniqueBstr ReadAttribute(IXMLDOMNode* node, const wchar_t* name)
{
    const IXMLDOMNodePtr spAttribute = AttributeNode(node, name);
    UniqueBstr text;
    if (!spAttribute || FAILED(spAttribute->get_text(ReceiveInto(text))))
        return nullptr;
    return text;
}

bool ReadAttribute(IXMLDOMNode* node, const wchar_t* name, std::int32_t& value)
{
    const UniqueBstr text = ReadAttribute(node, name);
    if (!text)
        return false;
    value = std::wcstol(text.get(), nullptr, 10);
    return true;
}
