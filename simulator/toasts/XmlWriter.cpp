#include "simulator/toasts/XmlWriter.h"

namespace Simulator
{
namespace
{
std::wstring Escape(std::wstring_view text, bool inAttribute)
{
    std::wstring escaped;
    for (const wchar_t character : text)
    {
        switch (character)
        {
        case L'&':
            escaped += L"&amp;";
            break;
        case L'<':
            escaped += L"&lt;";
            break;
        case L'>':
            escaped += L"&gt;";
            break;
        case L'\r':
            // A parser turns a bare carriage return into a line feed, in texts too.
            escaped += L"&#13;";
            break;
        case L'"':
            escaped += inAttribute ? L"&quot;" : L"\"";
            break;
        case L'\n':
            escaped += inAttribute ? L"&#10;" : L"\n";
            break;
        case L'\t':
            escaped += inAttribute ? L"&#9;" : L"\t";
            break;
        default:
            escaped += character;
        }
    }
    return escaped;
}

std::wstring WriteContent(const XmlNode& node)
{
    std::wstring xml;
    for (const XmlNode* child : node.m_lstChildren)
        xml += WriteXml(*child);
    return xml;
}

std::wstring WriteElement(const XmlNode& element)
{
    std::wstring xml = L"<" + element.m_strName;
    for (const XmlNode* attribute : element.m_lstAttributes)
        xml += L" " + WriteXml(*attribute);
    if (element.m_lstChildren.empty() && !element.m_bEndTag)
        return xml + L"/>";
    return xml + L">" + WriteContent(element) + L"</" + element.m_strName + L">";
}
} // namespace

std::wstring WriteXml(const XmlNode& node)
{
    switch (node.m_type)
    {
    case Abi::XmlNodeType_Text:
        return Escape(node.m_strValue, false);
    case Abi::XmlNodeType_Attribute:
        return node.m_strName + L"=\"" + Escape(node.Text(), true) + L"\"";
    case Abi::XmlNodeType_Element:
        return WriteElement(node);
    default:
        return WriteContent(node);
    }
}
} // namespace Simulator
