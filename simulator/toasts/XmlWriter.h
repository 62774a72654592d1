#pragma once

#include "simulator/toasts/XmlTree.h"

namespace Simulator
{
// The node and everything below it as XML text: &, < and > are escaped in texts, quotation marks, tabs and line breaks
// in attributes as well, so that a parser reads back the same values. An attribute alone is name="value".
[[nodiscard]] std::wstring WriteXml(const XmlNode& node);
} // namespace Simulator
