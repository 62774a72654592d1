#pragma once

#include "simulator/toasts/XmlNodeBase.h"

namespace Simulator
{
class XmlAttributeObject : public Abi::IXmlAttribute, public XmlNodeBase
{
public:
    static constexpr char ObjectName[] = "XmlAttribute";
    static constexpr wchar_t RuntimeClassName[] = L"Windows.Data.Xml.Dom.XmlAttribute";
    using PublicInterfaces = InterfaceList<Abi::IXmlAttribute, Abi::IXmlNode, Abi::IXmlNodeSerializer>;

    using XmlNodeBase::XmlNodeBase;

    HRESULT WINAPI get_Name(HSTRING* value) override;
    HRESULT WINAPI get_Specified(boolean* value) override;
    HRESULT WINAPI get_Value(HSTRING* value) override;
    HRESULT WINAPI put_Value(HSTRING value) override;
};
} // namespace Simulator
