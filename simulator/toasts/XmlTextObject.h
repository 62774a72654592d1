#pragma once

#include "simulator/toasts/XmlNodeBase.h"

namespace Simulator
{
class XmlTextObject : public Abi::IXmlText, public Abi::IXmlCharacterData, public XmlNodeBase
{
public:
    static constexpr char ObjectName[] = "XmlText";
    static constexpr wchar_t RuntimeClassName[] = L"Windows.Data.Xml.Dom.XmlText";
    using PublicInterfaces =
        InterfaceList<Abi::IXmlText, Abi::IXmlCharacterData, Abi::IXmlNode, Abi::IXmlNodeSerializer>;

    using XmlNodeBase::XmlNodeBase;

    HRESULT WINAPI SplitText(UINT32 offset, Abi::IXmlText** secondPart) override;

    // Offsets and counts are in UTF-16 units; an offset beyond the end is E_INVALIDARG, a count beyond it stops there.
    HRESULT WINAPI get_Data(HSTRING* value) override;
    HRESULT WINAPI put_Data(HSTRING value) override;
    HRESULT WINAPI get_Length(UINT32* value) override;
    HRESULT WINAPI SubstringData(UINT32 offset, UINT32 count, HSTRING* data) override;
    HRESULT WINAPI AppendData(HSTRING data) override;
    HRESULT WINAPI InsertData(UINT32 offset, HSTRING data) override;
    HRESULT WINAPI DeleteData(UINT32 offset, UINT32 count) override;
    HRESULT WINAPI ReplaceData(UINT32 offset, UINT32 count, HSTRING data) override;

private:
    [[nodiscard]] HRESULT Replace(UINT32 offset, UINT32 count, std::wstring_view data);
};
} // namespace Simulator
