#pragma once

#include <windows.h>

#include <comdef.h>
#include <hstring.h>
#include <inspectable.h>

// The XML DOM as the simulated machine offers it. Declared independently of the agent's own declarations, from another
// source, so that a slot that is wrong on either side shows as soon as the two meet. Pointers to classes that the
// machine does not have are IInspectable*.
namespace Simulator::Abi
{
struct IXmlAttribute;
struct IXmlDocument;
struct IXmlElement;
struct IXmlNamedNodeMap;
struct IXmlNodeList;
struct IXmlText;

enum XmlNodeType : INT32
{
    XmlNodeType_Element = 1,
    XmlNodeType_Attribute = 2,
    XmlNodeType_Text = 3,
    XmlNodeType_Document = 9
};

struct IXmlNode : IInspectable
{
    virtual HRESULT WINAPI get_NodeValue(IInspectable** value) = 0;
    virtual HRESULT WINAPI put_NodeValue(IInspectable* value) = 0;
    virtual HRESULT WINAPI get_NodeType(XmlNodeType* value) = 0;
    virtual HRESULT WINAPI get_NodeName(HSTRING* value) = 0;
    virtual HRESULT WINAPI get_ParentNode(IXmlNode** value) = 0;
    virtual HRESULT WINAPI get_ChildNodes(IXmlNodeList** value) = 0;
    virtual HRESULT WINAPI get_FirstChild(IXmlNode** value) = 0;
    virtual HRESULT WINAPI get_LastChild(IXmlNode** value) = 0;
    virtual HRESULT WINAPI get_PreviousSibling(IXmlNode** value) = 0;
    virtual HRESULT WINAPI get_NextSibling(IXmlNode** value) = 0;
    virtual HRESULT WINAPI get_Attributes(IXmlNamedNodeMap** value) = 0;
    virtual HRESULT WINAPI HasChildNodes(boolean* value) = 0;
    virtual HRESULT WINAPI get_OwnerDocument(IXmlDocument** value) = 0;
    virtual HRESULT WINAPI InsertBefore(IXmlNode* child, IXmlNode* reference, IXmlNode** inserted) = 0;
    virtual HRESULT WINAPI ReplaceChild(IXmlNode* child, IXmlNode* reference, IXmlNode** previous) = 0;
    virtual HRESULT WINAPI RemoveChild(IXmlNode* child, IXmlNode** removed) = 0;
    virtual HRESULT WINAPI AppendChild(IXmlNode* child, IXmlNode** appended) = 0;
    virtual HRESULT WINAPI CloneNode(boolean deep, IXmlNode** clone) = 0;
    virtual HRESULT WINAPI get_NamespaceUri(IInspectable** value) = 0;
    virtual HRESULT WINAPI get_LocalName(IInspectable** value) = 0;
    virtual HRESULT WINAPI get_Prefix(IInspectable** value) = 0;
    virtual HRESULT WINAPI Normalize() = 0;
    virtual HRESULT WINAPI put_Prefix(IInspectable* value) = 0;
};

struct IXmlNodeSerializer : IInspectable
{
    virtual HRESULT WINAPI GetXml(HSTRING* outerXml) = 0;
    virtual HRESULT WINAPI get_InnerText(HSTRING* value) = 0;
    virtual HRESULT WINAPI put_InnerText(HSTRING value) = 0;
};

struct IXmlNodeList : IInspectable
{
    virtual HRESULT WINAPI get_Length(UINT32* value) = 0;
    virtual HRESULT WINAPI Item(UINT32 index, IXmlNode** node) = 0;
};

struct IXmlNamedNodeMap : IInspectable
{
    virtual HRESULT WINAPI get_Length(UINT32* value) = 0;
    virtual HRESULT WINAPI Item(UINT32 index, IXmlNode** node) = 0;
    virtual HRESULT WINAPI GetNamedItem(HSTRING name, IXmlNode** node) = 0;
    virtual HRESULT WINAPI SetNamedItem(IXmlNode* node, IXmlNode** previous) = 0;
    virtual HRESULT WINAPI RemoveNamedItem(HSTRING name, IXmlNode** previous) = 0;
    virtual HRESULT WINAPI GetNamedItemNS(IInspectable* uri, HSTRING name, IXmlNode** node) = 0;
    virtual HRESULT WINAPI RemoveNamedItemNS(IInspectable* uri, HSTRING name, IXmlNode** previous) = 0;
    virtual HRESULT WINAPI SetNamedItemNS(IXmlNode* node, IXmlNode** previous) = 0;
};

struct IXmlAttribute : IInspectable
{
    virtual HRESULT WINAPI get_Name(HSTRING* value) = 0;
    virtual HRESULT WINAPI get_Specified(boolean* value) = 0;
    virtual HRESULT WINAPI get_Value(HSTRING* value) = 0;
    virtual HRESULT WINAPI put_Value(HSTRING value) = 0;
};

struct IXmlCharacterData : IInspectable
{
    virtual HRESULT WINAPI get_Data(HSTRING* value) = 0;
    virtual HRESULT WINAPI put_Data(HSTRING value) = 0;
    virtual HRESULT WINAPI get_Length(UINT32* value) = 0;
    virtual HRESULT WINAPI SubstringData(UINT32 offset, UINT32 count, HSTRING* data) = 0;
    virtual HRESULT WINAPI AppendData(HSTRING data) = 0;
    virtual HRESULT WINAPI InsertData(UINT32 offset, HSTRING data) = 0;
    virtual HRESULT WINAPI DeleteData(UINT32 offset, UINT32 count) = 0;
    virtual HRESULT WINAPI ReplaceData(UINT32 offset, UINT32 count, HSTRING data) = 0;
};

struct IXmlText : IInspectable
{
    virtual HRESULT WINAPI SplitText(UINT32 offset, IXmlText** secondPart) = 0;
};

struct IXmlElement : IInspectable
{
    virtual HRESULT WINAPI get_TagName(HSTRING* value) = 0;
    virtual HRESULT WINAPI GetAttribute(HSTRING name, HSTRING* value) = 0;
    virtual HRESULT WINAPI SetAttribute(HSTRING name, HSTRING value) = 0;
    virtual HRESULT WINAPI RemoveAttribute(HSTRING name) = 0;
    virtual HRESULT WINAPI GetAttributeNode(HSTRING name, IXmlAttribute** attribute) = 0;
    virtual HRESULT WINAPI SetAttributeNode(IXmlAttribute* attribute, IXmlAttribute** previous) = 0;
    virtual HRESULT WINAPI RemoveAttributeNode(IXmlAttribute* attribute, IXmlAttribute** removed) = 0;
    virtual HRESULT WINAPI GetElementsByTagName(HSTRING name, IXmlNodeList** elements) = 0;
    virtual HRESULT WINAPI SetAttributeNS(IInspectable* uri, HSTRING name, HSTRING value) = 0;
    virtual HRESULT WINAPI GetAttributeNS(IInspectable* uri, HSTRING name, HSTRING* value) = 0;
    virtual HRESULT WINAPI RemoveAttributeNS(IInspectable* uri, HSTRING name) = 0;
    virtual HRESULT WINAPI SetAttributeNodeNS(IXmlAttribute* attribute, IXmlAttribute** previous) = 0;
    virtual HRESULT WINAPI GetAttributeNodeNS(IInspectable* uri, HSTRING name, IXmlAttribute** attribute) = 0;
};

struct IXmlDocument : IInspectable
{
    virtual HRESULT WINAPI get_Doctype(IInspectable** value) = 0;
    virtual HRESULT WINAPI get_Implementation(IInspectable** value) = 0;
    virtual HRESULT WINAPI get_DocumentElement(IXmlElement** value) = 0;
    virtual HRESULT WINAPI CreateElement(HSTRING name, IXmlElement** element) = 0;
    virtual HRESULT WINAPI CreateDocumentFragment(IInspectable** fragment) = 0;
    virtual HRESULT WINAPI CreateTextNode(HSTRING data, IXmlText** text) = 0;
    virtual HRESULT WINAPI CreateComment(HSTRING data, IInspectable** comment) = 0;
    virtual HRESULT WINAPI CreateProcessingInstruction(HSTRING target, HSTRING data, IInspectable** instruction) = 0;
    virtual HRESULT WINAPI CreateAttribute(HSTRING name, IXmlAttribute** attribute) = 0;
    virtual HRESULT WINAPI CreateEntityReference(HSTRING name, IInspectable** reference) = 0;
    virtual HRESULT WINAPI GetElementsByTagName(HSTRING name, IXmlNodeList** elements) = 0;
    virtual HRESULT WINAPI CreateCDataSection(HSTRING data, IInspectable** section) = 0;
    virtual HRESULT WINAPI get_DocumentUri(HSTRING* value) = 0;
    virtual HRESULT WINAPI CreateAttributeNS(IInspectable* uri, HSTRING name, IXmlAttribute** attribute) = 0;
    virtual HRESULT WINAPI CreateElementNS(IInspectable* uri, HSTRING name, IXmlElement** element) = 0;
    virtual HRESULT WINAPI GetElementById(HSTRING id, IXmlElement** element) = 0;
    virtual HRESULT WINAPI ImportNode(IXmlNode* node, boolean deep, IXmlNode** imported) = 0;
};
} // namespace Simulator::Abi

// clang-format off
__CRT_UUID_DECL(Simulator::Abi::IXmlNode, 0x1c741d59, 0x2122, 0x47d5, 0xa8, 0x56, 0x83, 0xf3, 0xd4, 0x21, 0x48, 0x75)
__CRT_UUID_DECL(Simulator::Abi::IXmlNodeSerializer, 0x5cc5b382, 0xe6dd, 0x4991, 0xab, 0xef, 0x06, 0xd8, 0xd2, 0xe7, 0xbd, 0x0c)
__CRT_UUID_DECL(Simulator::Abi::IXmlNodeList, 0x8c60ad77, 0x83a4, 0x4ec1, 0x9c, 0x54, 0x7b, 0xa4, 0x29, 0xe1, 0x3d, 0xa6)
__CRT_UUID_DECL(Simulator::Abi::IXmlNamedNodeMap, 0xb3a69eb0, 0xaab0, 0x4b82, 0xa6, 0xfa, 0xb1, 0x45, 0x3f, 0x7c, 0x02, 0x1b)
__CRT_UUID_DECL(Simulator::Abi::IXmlAttribute, 0xac144aa4, 0xb4f1, 0x4db6, 0xb2, 0x06, 0x8a, 0x22, 0xc3, 0x08, 0xdb, 0x0a)
__CRT_UUID_DECL(Simulator::Abi::IXmlCharacterData, 0x132e42ab, 0x4e36, 0x4df6, 0xb1, 0xc8, 0x0c, 0xe6, 0x2f, 0xd8, 0x8b, 0x26)
__CRT_UUID_DECL(Simulator::Abi::IXmlText, 0xf931a4cb, 0x308d, 0x4760, 0xa1, 0xd5, 0x43, 0xb6, 0x74, 0x50, 0xac, 0x7e)
__CRT_UUID_DECL(Simulator::Abi::IXmlElement, 0x2dfb8a1f, 0x6b10, 0x4ef8, 0x9f, 0x83, 0xef, 0xcc, 0xe8, 0xfa, 0xec, 0x37)
__CRT_UUID_DECL(Simulator::Abi::IXmlDocument, 0xf7f3a506, 0x1e87, 0x42d6, 0xbc, 0xfb, 0xb8, 0xc8, 0x09, 0xfa, 0x54, 0x94)
// clang-format on

namespace Simulator::Abi
{
_COM_SMARTPTR_TYPEDEF(IXmlNode, __uuidof(IXmlNode));
_COM_SMARTPTR_TYPEDEF(IXmlNodeSerializer, __uuidof(IXmlNodeSerializer));
_COM_SMARTPTR_TYPEDEF(IXmlNodeList, __uuidof(IXmlNodeList));
_COM_SMARTPTR_TYPEDEF(IXmlNamedNodeMap, __uuidof(IXmlNamedNodeMap));
_COM_SMARTPTR_TYPEDEF(IXmlAttribute, __uuidof(IXmlAttribute));
_COM_SMARTPTR_TYPEDEF(IXmlCharacterData, __uuidof(IXmlCharacterData));
_COM_SMARTPTR_TYPEDEF(IXmlText, __uuidof(IXmlText));
_COM_SMARTPTR_TYPEDEF(IXmlElement, __uuidof(IXmlElement));
_COM_SMARTPTR_TYPEDEF(IXmlDocument, __uuidof(IXmlDocument));
} // namespace Simulator::Abi
