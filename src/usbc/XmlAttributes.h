#pragma once

#include "platform/UniqueBstr.h"
#include "platform/XmlPointers.h"

#include <cstdint>

// Steps through a document of MSXML, which answers success without an object for what is not there. Each raises
// _com_error with E_OUTOFMEMORY when a text cannot be allocated.

// The first node of that path; null when there is none or it cannot be had.
[[nodiscard]] IXMLDOMNodePtr SelectNode(IXMLDOMDocument* document, const wchar_t* path);

// The text of a node's attribute; null when it cannot be read.
[[nodiscard]] UniqueBstr ReadAttribute(IXMLDOMNode* node, const wchar_t* name);

// The attribute as a decimal number: text that is none gives 0, a number out of range the nearest that fits. False and
// value unchanged when the attribute cannot be read.
bool ReadAttribute(IXMLDOMNode* node, const wchar_t* name, std::int32_t& value);
