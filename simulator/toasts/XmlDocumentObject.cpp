#include "simulator/toasts/XmlDocumentObject.h"

#include "simulator/toasts/XmlAttributeObject.h"
#include "simulator/toasts/XmlElementObject.h"
#include "simulator/toasts/XmlNodeLists.h"
#include "simulator/toasts/XmlTextObject.h"

namespace Simulator
{
HRESULT XmlDocumentObject::get_Doctype(IInspectable** value)
{
    // Null: no document has one.
    return BeginCall("IXmlDocument::get_Doctype", value);
}

HRESULT XmlDocumentObject::get_Implementation(IInspectable** value)
{
    const HRESULT hr = BeginCall("IXmlDocument::get_Implementation", value);
    return FAILED(hr) ? hr : E_NOTIMPL;
}

HRESULT XmlDocumentObject::get_DocumentElement(Abi::IXmlElement** value)
{
    const HRESULT hr = BeginCall("IXmlDocument::get_DocumentElement", value);
    if (FAILED(hr))
        return hr;
    const std::lock_guard lock(Tree().Lock());
    XmlNode* element = Tree().DocumentElement();
    return element == nullptr ? S_OK : MakeObject<XmlElementObject>(value, Other(element));
}

HRESULT XmlDocumentObject::CreateElement(HSTRING name, Abi::IXmlElement** element)
{
    const HRESULT hr = BeginCall("IXmlDocument::CreateElement", element);
    if (FAILED(hr))
        return hr;
    if (RuntimeText::View(name).empty())
        return E_INVALIDARG;
    const std::lock_guard lock(Tree().Lock());
    return MakeObject<XmlElementObject>(element, Other(&Tree().CreateElement(RuntimeText::View(name))));
}

HRESULT XmlDocumentObject::CreateDocumentFragment(IInspectable** fragment)
{
    const HRESULT hr = BeginCall("IXmlDocument::CreateDocumentFragment", fragment);
    return FAILED(hr) ? hr : E_NOTIMPL;
}

HRESULT XmlDocumentObject::CreateTextNode(HSTRING data, Abi::IXmlText** text)
{
    const HRESULT hr = BeginCall("IXmlDocument::CreateTextNode", text);
    if (FAILED(hr))
        return hr;
    const std::lock_guard lock(Tree().Lock());
    return MakeObject<XmlTextObject>(text, Other(&Tree().CreateText(RuntimeText::View(data))));
}

HRESULT XmlDocumentObject::CreateComment(HSTRING /*data*/, IInspectable** comment)
{
    const HRESULT hr = BeginCall("IXmlDocument::CreateComment", comment);
    return FAILED(hr) ? hr : E_NOTIMPL;
}

HRESULT XmlDocumentObject::CreateProcessingInstruction(HSTRING /*target*/, HSTRING /*data*/, IInspectable** instruction)
{
    const HRESULT hr = BeginCall("IXmlDocument::CreateProcessingInstruction", instruction);
    return FAILED(hr) ? hr : E_NOTIMPL;
}

HRESULT XmlDocumentObject::CreateAttribute(HSTRING name, Abi::IXmlAttribute** attribute)
{
    const HRESULT hr = BeginCall("IXmlDocument::CreateAttribute", attribute);
    if (FAILED(hr))
        return hr;
    if (RuntimeText::View(name).empty())
        return E_INVALIDARG;
    const std::lock_guard lock(Tree().Lock());
    return MakeObject<XmlAttributeObject>(attribute, Other(&Tree().CreateAttribute(RuntimeText::View(name), {})));
}

HRESULT XmlDocumentObject::CreateEntityReference(HSTRING /*name*/, IInspectable** reference)
{
    const HRESULT hr = BeginCall("IXmlDocument::CreateEntityReference", reference);
    return FAILED(hr) ? hr : E_NOTIMPL;
}

HRESULT XmlDocumentObject::GetElementsByTagName(HSTRING name, Abi::IXmlNodeList** elements)
{
    const HRESULT hr = BeginCall("IXmlDocument::GetElementsByTagName", elements);
    if (FAILED(hr))
        return hr;
    return MakeObject<XmlNodeListObject>(elements, Handle(),
                                         [tag = std::wstring(RuntimeText::View(name))](const XmlNode& origin)
                                         { return origin.Elements(tag); });
}

HRESULT XmlDocumentObject::CreateCDataSection(HSTRING /*data*/, IInspectable** section)
{
    const HRESULT hr = BeginCall("IXmlDocument::CreateCDataSection", section);
    return FAILED(hr) ? hr : E_NOTIMPL;
}

HRESULT XmlDocumentObject::get_DocumentUri(HSTRING* value)
{
    // Empty: the document was not loaded from anywhere.
    return BeginCall("IXmlDocument::get_DocumentUri", value);
}

HRESULT XmlDocumentObject::CreateAttributeNS(IInspectable* /*uri*/, HSTRING /*name*/, Abi::IXmlAttribute** attribute)
{
    const HRESULT hr = BeginCall("IXmlDocument::CreateAttributeNS", attribute);
    return FAILED(hr) ? hr : E_NOTIMPL;
}

HRESULT XmlDocumentObject::CreateElementNS(IInspectable* /*uri*/, HSTRING /*name*/, Abi::IXmlElement** element)
{
    const HRESULT hr = BeginCall("IXmlDocument::CreateElementNS", element);
    return FAILED(hr) ? hr : E_NOTIMPL;
}

HRESULT XmlDocumentObject::GetElementById(HSTRING /*id*/, Abi::IXmlElement** element)
{
    // Null: without a document type no attribute is an identifier, whatever its name.
    return BeginCall("IXmlDocument::GetElementById", element);
}

HRESULT XmlDocumentObject::ImportNode(Abi::IXmlNode* node, boolean deep, Abi::IXmlNode** imported)
{
    const HRESULT hr = BeginCall("IXmlDocument::ImportNode", imported);
    if (FAILED(hr))
        return hr;
    XmlHandle source;
    if (FAILED(GetHandle(node, source)) || source.m_pNode->m_type == Abi::XmlNodeType_Document)
        return E_INVALIDARG;
    if (source.m_spTree == Handle().m_spTree)
    {
        const std::lock_guard lock(Tree().Lock());
        return WrapNode(Other(&Tree().Copy(*source.m_pNode, deep != FALSE)), imported);
    }
    const std::scoped_lock locks(source.m_spTree->Lock(), Tree().Lock());
    return WrapNode(Other(&Tree().Copy(*source.m_pNode, deep != FALSE)), imported);
}
} // namespace Simulator
