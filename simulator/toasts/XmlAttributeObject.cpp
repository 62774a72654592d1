#include "simulator/toasts/XmlAttributeObject.h"

namespace Simulator
{
HRESULT XmlAttributeObject::get_Name(HSTRING* value)
{
    const HRESULT hr = BeginCall("IXmlAttribute::get_Name", value);
    return FAILED(hr) ? hr : RuntimeText::Create(Node().m_strName, value);
}

HRESULT XmlAttributeObject::get_Specified(boolean* value)
{
    const HRESULT hr = BeginCall("IXmlAttribute::get_Specified", value);
    if (SUCCEEDED(hr))
        *value = TRUE;
    return hr;
}

HRESULT XmlAttributeObject::get_Value(HSTRING* value)
{
    const HRESULT hr = BeginCall("IXmlAttribute::get_Value", value);
    if (FAILED(hr))
        return hr;
    const std::lock_guard lock(Tree().Lock());
    return RuntimeText::Create(Node().Text(), value);
}

HRESULT XmlAttributeObject::put_Value(HSTRING value)
{
    const HRESULT hr = BeginCall("IXmlAttribute::put_Value");
    if (FAILED(hr))
        return hr;
    const std::lock_guard lock(Tree().Lock());
    Tree().SetText(Node(), RuntimeText::View(value));
    return S_OK;
}
} // namespace Simulator
