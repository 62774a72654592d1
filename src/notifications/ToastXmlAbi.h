#pragma once

#include <windows.h>

#include <comdef.h>
#include <hstring.h>
#include <inspectable.h>

// The Windows Runtime XML DOM of toast documents. The headers of the cross-compiler lack it, so the interfaces are
// declared here. The order of the members is the binary contract: each interface follows the six slots of IInspectable
// and inherits from no other one; what a class implements besides is reached by QueryInterface. Members that the agent
// never calls hold their slot, with pointers to classes it does not know written as IInspectable*.
namespace ToastAbi
{
struct IXmlDocument;
struct IXmlElement;
struct IXmlNamedNodeMap;
struct IXmlNodeList;
struct IXmlText;

enum class NodeType : INT32
{
    Invalid = 0,
    Element = 1,
    Attribute = 2,
    Text = 3,
    Document = 9
};

// Any node of a document; elements, attributes, texts and the document itself answer it.
struct IXmlNode : public IInspectable
{
    [[nodiscard]] STDMETHOD(get_NodeValue)(IInspectable** value) PURE;
    [[nodiscard]] STDMETHOD(put_NodeValue)(IInspectable* value) PURE;
    [[nodiscard]] STDMETHOD(get_NodeType)(NodeType* value) PURE;
    [[nodiscard]] STDMETHOD(get_NodeName)(HSTRING* value) PURE;
    [[nodiscard]] STDMETHOD(get_ParentNode)(IXmlNode** value) PURE;
    [[nodiscard]] STDMETHOD(get_ChildNodes)(IXmlNodeList** value) PURE;
    [[nodiscard]] STDMETHOD(get_FirstChild)(IXmlNode** value) PURE;
    [[nodiscard]] STDMETHOD(get_LastChild)(IXmlNode** value) PURE;
    [[nodiscard]] STDMETHOD(get_PreviousSibling)(IXmlNode** value) PURE;
    [[nodiscard]] STDMETHOD(get_NextSibling)(IXmlNode** value) PURE;
    // S_OK and null for a node that is no element.
    [[nodiscard]] STDMETHOD(get_Attributes)(IXmlNamedNodeMap** value) PURE;
    [[nodiscard]] STDMETHOD(HasChildNodes)(boolean* value) PURE;
    [[nodiscard]] STDMETHOD(get_OwnerDocument)(IXmlDocument** value) PURE;
    [[nodiscard]] STDMETHOD(InsertBefore)(IXmlNode* newChild, IXmlNode* referenceChild, IXmlNode** insertedChild) PURE;
    [[nodiscard]] STDMETHOD(ReplaceChild)(IXmlNode* newChild, IXmlNode* referenceChild, IXmlNode** previousChild) PURE;
    [[nodiscard]] STDMETHOD(RemoveChild)(IXmlNode* childNode, IXmlNode** removedChild) PURE;
    [[nodiscard]] STDMETHOD(AppendChild)(IXmlNode* newChild, IXmlNode** appendedChild) PURE;
    [[nodiscard]] STDMETHOD(CloneNode)(boolean deep, IXmlNode** newNode) PURE;
    [[nodiscard]] STDMETHOD(get_NamespaceUri)(IInspectable** value) PURE;
    [[nodiscard]] STDMETHOD(get_LocalName)(IInspectable** value) PURE;
    [[nodiscard]] STDMETHOD(get_Prefix)(IInspectable** value) PURE;
    [[nodiscard]] STDMETHOD(Normalize)() PURE;
    [[nodiscard]] STDMETHOD(put_Prefix)(IInspectable* value) PURE;
};

struct IXmlNodeList : public IInspectable
{
    [[nodiscard]] STDMETHOD(get_Length)(UINT32* value) PURE;
    // S_OK and null beyond the end.
    [[nodiscard]] STDMETHOD(Item)(UINT32 index, IXmlNode** node) PURE;
};

struct IXmlNamedNodeMap : public IInspectable
{
    [[nodiscard]] STDMETHOD(get_Length)(UINT32* value) PURE;
    [[nodiscard]] STDMETHOD(Item)(UINT32 index, IXmlNode** node) PURE;
    // S_OK and null for a name that is not there.
    [[nodiscard]] STDMETHOD(GetNamedItem)(HSTRING name, IXmlNode** node) PURE;
    [[nodiscard]] STDMETHOD(SetNamedItem)(IXmlNode* node, IXmlNode** previousNode) PURE;
    [[nodiscard]] STDMETHOD(RemoveNamedItem)(HSTRING name, IXmlNode** previousNode) PURE;
    [[nodiscard]] STDMETHOD(GetNamedItemNS)(IInspectable* namespaceUri, HSTRING name, IXmlNode** node) PURE;
    [[nodiscard]] STDMETHOD(RemoveNamedItemNS)(IInspectable* namespaceUri, HSTRING name, IXmlNode** previousNode) PURE;
    [[nodiscard]] STDMETHOD(SetNamedItemNS)(IXmlNode* node, IXmlNode** previousNode) PURE;
};

// The default interface of a text node.
struct IXmlText : public IInspectable
{
    [[nodiscard]] STDMETHOD(SplitText)(UINT32 offset, IXmlText** secondPart) PURE;
};

// The default interface of a document.
struct IXmlDocument : public IInspectable
{
    [[nodiscard]] STDMETHOD(get_Doctype)(IInspectable** value) PURE;
    [[nodiscard]] STDMETHOD(get_Implementation)(IInspectable** value) PURE;
    [[nodiscard]] STDMETHOD(get_DocumentElement)(IXmlElement** value) PURE;
    [[nodiscard]] STDMETHOD(CreateElement)(HSTRING tagName, IXmlElement** newElement) PURE;
    [[nodiscard]] STDMETHOD(CreateDocumentFragment)(IInspectable** newDocumentFragment) PURE;
    // The new node belongs to the document and has no parent yet.
    [[nodiscard]] STDMETHOD(CreateTextNode)(HSTRING data, IXmlText** newTextNode) PURE;
    [[nodiscard]] STDMETHOD(CreateComment)(HSTRING data, IInspectable** newComment) PURE;
    [[nodiscard]] STDMETHOD(CreateProcessingInstruction)(HSTRING target, HSTRING data, IInspectable** newNode) PURE;
    [[nodiscard]] STDMETHOD(CreateAttribute)(HSTRING name, IInspectable** newAttribute) PURE;
    [[nodiscard]] STDMETHOD(CreateEntityReference)(HSTRING name, IInspectable** newEntityReference) PURE;
    // Document order; an empty list when there is none.
    [[nodiscard]] STDMETHOD(GetElementsByTagName)(HSTRING tagName, IXmlNodeList** elements) PURE;
    [[nodiscard]] STDMETHOD(CreateCDataSection)(HSTRING data, IInspectable** newCDataSection) PURE;
    [[nodiscard]] STDMETHOD(get_DocumentUri)(HSTRING* value) PURE;
    [[nodiscard]] STDMETHOD(CreateAttributeNS)(IInspectable* uri, HSTRING qualifiedName, IInspectable** attribute) PURE;
    [[nodiscard]] STDMETHOD(CreateElementNS)(IInspectable* uri, HSTRING qualifiedName, IXmlElement** newElement) PURE;
    [[nodiscard]] STDMETHOD(GetElementById)(HSTRING elementId, IXmlElement** element) PURE;
    [[nodiscard]] STDMETHOD(ImportNode)(IXmlNode* node, boolean deep, IXmlNode** newNode) PURE;
};
} // namespace ToastAbi

// clang-format off
__CRT_UUID_DECL(ToastAbi::IXmlNode, 0x1C741D59, 0x2122, 0x47D5, 0xA8, 0x56, 0x83, 0xF3, 0xD4, 0x21, 0x48, 0x75)
__CRT_UUID_DECL(ToastAbi::IXmlNodeList, 0x8C60AD77, 0x83A4, 0x4EC1, 0x9C, 0x54, 0x7B, 0xA4, 0x29, 0xE1, 0x3D, 0xA6)
__CRT_UUID_DECL(ToastAbi::IXmlNamedNodeMap, 0xB3A69EB0, 0xAAB0, 0x4B82, 0xA6, 0xFA, 0xB1, 0x45, 0x3F, 0x7C, 0x02, 0x1B)
__CRT_UUID_DECL(ToastAbi::IXmlText, 0xF931A4CB, 0x308D, 0x4760, 0xA1, 0xD5, 0x43, 0xB6, 0x74, 0x50, 0xAC, 0x7E)
__CRT_UUID_DECL(ToastAbi::IXmlDocument, 0xF7F3A506, 0x1E87, 0x42D6, 0xBC, 0xFB, 0xB8, 0xC8, 0x09, 0xFA, 0x54, 0x94)
// clang-format on

namespace ToastAbi
{
_COM_SMARTPTR_TYPEDEF(IXmlNode, __uuidof(IXmlNode));
_COM_SMARTPTR_TYPEDEF(IXmlNodeList, __uuidof(IXmlNodeList));
_COM_SMARTPTR_TYPEDEF(IXmlNamedNodeMap, __uuidof(IXmlNamedNodeMap));
_COM_SMARTPTR_TYPEDEF(IXmlText, __uuidof(IXmlText));
_COM_SMARTPTR_TYPEDEF(IXmlDocument, __uuidof(IXmlDocument));
} // namespace ToastAbi
