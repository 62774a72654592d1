#pragma once

#include "platform/UniqueBstr.h"
#include "platform/XmlDocument.h"

#include <cstdint>

inline constexpr IID g_xmlDomNode = {0x2933BF80, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};
inline constexpr IID g_xmlDomNamedNodeMap = {
    0x2933BF83, 0x7B36, 0x11D2, {0xB2, 0x0E, 0x00, 0xC0, 0x4F, 0x98, 0x3E, 0x60}};
_COM_SMARTPTR_TYPEDEF(IXMLDOMNode, g_xmlDomNode);
_COM_SMARTPTR_TYPEDEF(IXMLDOMNamedNodeMap, g_xmlDomNamedNodeMap);

// A new text. It raises instead of giving null.
[[nodiscard]] UniqueBstr MakeBstr(const wchar_t* text);

// Steps through a document of MSXML, which answers success without an object for what is not there. Each raises
// _com_error with E_OUTOFMEMORY when a text cannot be allocated.

// The first node of that path; null when there is none or it cannot be had.
[[nodiscard]] IXMLDOMNodePtr SelectNode(IXMLDOMDocument* document, const wchar_t* path);

// The text of a node's attribute; null when it cannot be read.
[[nodiscard]] UniqueBstr ReadAttribute(IXMLDOMNode* node, const wchar_t* name);

// The attribute as a decimal number: text that is none gives 0, a number out of range the nearest that fits. False and
// value unchanged when the attribute cannot be read.
bool ReadAttribute(IXMLDOMNode* node, const wchar_t* name, std::int32_t& value);
