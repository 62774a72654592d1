#include "simulator/toasts/XmlTextObject.h"

#include <algorithm>

namespace Simulator
{
HRESULT XmlTextObject::Replace(UINT32 offset, UINT32 count, std::wstring_view data)
{
    const std::lock_guard lock(Tree().Lock());
    if (offset > Node().m_strValue.size())
        return E_INVALIDARG;
    Node().m_strValue.replace(offset, count, data);
    return S_OK;
}

HRESULT XmlTextObject::SplitText(UINT32 offset, Abi::IXmlText** secondPart)
{
    HRESULT hr = BeginCall("IXmlText::SplitText", secondPart);
    if (FAILED(hr))
        return hr;
    const std::lock_guard lock(Tree().Lock());
    if (offset > Node().m_strValue.size())
        return E_INVALIDARG;
    XmlNode& rest = Tree().CreateText(Node().m_strValue.substr(offset));
    if (XmlNode* parent = Node().m_pParent; parent != nullptr)
    {
        const auto next = std::ranges::find(parent->m_lstChildren, &Node()) + 1;
        hr = Tree().Insert(*parent, rest, next == parent->m_lstChildren.end() ? nullptr : *next);
        if (FAILED(hr))
            return hr;
    }
    Node().m_strValue.resize(offset);
    return MakeObject<XmlTextObject>(secondPart, Other(&rest));
}

HRESULT XmlTextObject::get_Data(HSTRING* value)
{
    const HRESULT hr = BeginCall("IXmlCharacterData::get_Data", value);
    if (FAILED(hr))
        return hr;
    const std::lock_guard lock(Tree().Lock());
    return RuntimeText::Create(Node().m_strValue, value);
}

HRESULT XmlTextObject::put_Data(HSTRING value)
{
    const HRESULT hr = BeginCall("IXmlCharacterData::put_Data");
    if (FAILED(hr))
        return hr;
    const std::lock_guard lock(Tree().Lock());
    Node().m_strValue = RuntimeText::View(value);
    return S_OK;
}

HRESULT XmlTextObject::get_Length(UINT32* value)
{
    const HRESULT hr = BeginCall("IXmlCharacterData::get_Length", value);
    if (FAILED(hr))
        return hr;
    const std::lock_guard lock(Tree().Lock());
    *value = static_cast<UINT32>(Node().m_strValue.size());
    return S_OK;
}

HRESULT XmlTextObject::SubstringData(UINT32 offset, UINT32 count, HSTRING* data)
{
    const HRESULT hr = BeginCall("IXmlCharacterData::SubstringData", data);
    if (FAILED(hr))
        return hr;
    const std::lock_guard lock(Tree().Lock());
    if (offset > Node().m_strValue.size())
        return E_INVALIDARG;
    return RuntimeText::Create(Node().m_strValue.substr(offset, count), data);
}

HRESULT XmlTextObject::AppendData(HSTRING data)
{
    const HRESULT hr = BeginCall("IXmlCharacterData::AppendData");
    if (FAILED(hr))
        return hr;
    const std::lock_guard lock(Tree().Lock());
    Node().m_strValue += RuntimeText::View(data);
    return S_OK;
}

HRESULT XmlTextObject::InsertData(UINT32 offset, HSTRING data)
{
    const HRESULT hr = BeginCall("IXmlCharacterData::InsertData");
    return FAILED(hr) ? hr : Replace(offset, 0, RuntimeText::View(data));
}

HRESULT XmlTextObject::DeleteData(UINT32 offset, UINT32 count)
{
    const HRESULT hr = BeginCall("IXmlCharacterData::DeleteData");
    return FAILED(hr) ? hr : Replace(offset, count, {});
}

HRESULT XmlTextObject::ReplaceData(UINT32 offset, UINT32 count, HSTRING data)
{
    const HRESULT hr = BeginCall("IXmlCharacterData::ReplaceData");
    return FAILED(hr) ? hr : Replace(offset, count, RuntimeText::View(data));
}
} // namespace Simulator
