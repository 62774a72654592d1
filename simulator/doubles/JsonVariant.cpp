#include "simulator/doubles/JsonVariant.h"

#include "simulator/doubles/ComDouble.h"
#include "simulator/doubles/JournalText.h"
#include "simulator/doubles/RealFunctions.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <string>
#include <vector>

namespace Simulator
{
namespace
{
using Json = nlohmann::json;
using Maker = HRESULT (*)(const Json& value, VARIANT& result);

class UnknownValue final : public ComDouble<IUnknown>
{
public:
    UnknownValue() : ComDouble("UnknownValue") {}
};

HRESULT SetBstr(std::wstring_view text, VARIANT& result)
{
    result.vt = VT_BSTR;
    result.bstrVal = RealFunctions::Instance().SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    return result.bstrVal != nullptr ? S_OK : E_OUTOFMEMORY;
}

// A number into the union's first bytes; every scalar member starts there.
template <VARTYPE type, class Number>
HRESULT SetNumber(const Json& value, VARIANT& result)
{
    const Number number = value.get<Number>();
    result.vt = type;
    std::memcpy(&result.llVal, &number, sizeof(number));
    return S_OK;
}

HRESULT SetUtf16(const Json& value, VARIANT& result)
{
    std::wstring text;
    for (const Json& unit : value)
        text.push_back(static_cast<wchar_t>(unit.get<unsigned>()));
    return SetBstr(text, result);
}

template <VARTYPE type, class Element>
HRESULT SetArray(const Json& value, VARIANT& result)
{
    const auto elements = value.get<std::vector<Element>>();
    result.parray = SafeArrayCreateVector(type, 0, static_cast<ULONG>(elements.size()));
    if (result.parray == nullptr)
        return E_OUTOFMEMORY;
    result.vt = static_cast<VARTYPE>(VT_ARRAY | type);
    std::copy(elements.begin(), elements.end(), static_cast<Element*>(result.parray->pvData));
    return S_OK;
}

HRESULT SetBstrArray(const Json& value, VARIANT& result)
{
    result.parray = SafeArrayCreateVector(VT_BSTR, 0, static_cast<ULONG>(value.size()));
    if (result.parray == nullptr)
        return E_OUTOFMEMORY;
    result.vt = VT_ARRAY | VT_BSTR;
    auto* element = static_cast<BSTR*>(result.parray->pvData);
    for (const Json& text : value)
    {
        const std::wstring wide = Wide(text.get<std::string>());
        *element++ = RealFunctions::Instance().SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
    }
    return S_OK;
}

HRESULT SetRaw(const Json& value, VARIANT& result)
{
    result.llVal = value.value("value", std::int64_t{0});
    result.vt = value.at("vt").get<VARTYPE>();
    return S_OK;
}

template <VARTYPE type>
HRESULT SetNothing(const Json&, VARIANT& result)
{
    result.vt = type;
    return S_OK;
}

const std::map<std::string, Maker, std::less<>>& Makers()
{
    // Never freed: facts are read until the process is gone.
    static const auto& makers = *new std::map<std::string, Maker, std::less<>>{
        {"bool",
         [](const Json& value, VARIANT& result) -> HRESULT
         {
             result.vt = VT_BOOL;
             result.boolVal = value.get<bool>() ? VARIANT_TRUE : VARIANT_FALSE;
             return S_OK;
         }},
        {"i1", &SetNumber<VT_I1, std::int8_t>},
        {"ui1", &SetNumber<VT_UI1, std::uint8_t>},
        {"i2", &SetNumber<VT_I2, std::int16_t>},
        {"ui2", &SetNumber<VT_UI2, std::uint16_t>},
        {"i4", &SetNumber<VT_I4, std::int32_t>},
        {"ui4", &SetNumber<VT_UI4, std::uint32_t>},
        {"int", &SetNumber<VT_INT, std::int32_t>},
        {"uint", &SetNumber<VT_UINT, std::uint32_t>},
        {"i8", &SetNumber<VT_I8, std::int64_t>},
        {"ui8", &SetNumber<VT_UI8, std::uint64_t>},
        {"r4", &SetNumber<VT_R4, float>},
        {"r8", &SetNumber<VT_R8, double>},
        {"date", &SetNumber<VT_DATE, double>},
        {"error",
         [](const Json& value, VARIANT& result) -> HRESULT
         {
             result.vt = VT_ERROR;
             result.scode = HResultFromJson(value, E_FAIL);
             return S_OK;
         }},
        {"empty", &SetNothing<VT_EMPTY>},
        {"null", &SetNothing<VT_NULL>},
        {"null-bstr", &SetNothing<VT_BSTR>},
        {"null-unknown", &SetNothing<VT_UNKNOWN>},
        {"bstr",
         [](const Json& value, VARIANT& result) -> HRESULT { return SetBstr(Wide(value.get<std::string>()), result); }},
        {"utf16", &SetUtf16},
        {"unknown",
         [](const Json&, VARIANT& result) -> HRESULT
         {
             result.vt = VT_UNKNOWN;
             result.punkVal = new UnknownValue;
             return S_OK;
         }},
        {"ui1-array", &SetArray<VT_UI1, std::uint8_t>},
        {"i4-array", &SetArray<VT_I4, std::int32_t>},
        {"bstr-array", &SetBstrArray},
        {"raw", &SetRaw},
        {"hr", [](const Json& value, VARIANT&) -> HRESULT { return HResultFromJson(value, E_FAIL); }},
    };
    return makers;
}

HRESULT FromPlainValue(const Json& value, VARIANT& result)
{
    if (value.is_null())
        return SetNothing<VT_NULL>(value, result);
    if (value.is_boolean())
        return Makers().at("bool")(value, result);
    if (value.is_number_integer())
        return SetNumber<VT_I4, std::int32_t>(value, result);
    if (value.is_number_float())
        return SetNumber<VT_R8, double>(value, result);
    if (value.is_string())
        return SetBstr(Wide(value.get<std::string>()), result);
    return E_INVALIDARG;
}
} // namespace

HRESULT VariantFromJson(const Json& value, VARIANT& result)
{
    VARIANT made{};
    HRESULT hr = E_INVALIDARG;
    try
    {
        if (!value.is_object())
            hr = FromPlainValue(value, made);
        else if (value.size() == 1)
        {
            const auto maker = Makers().find(value.begin().key());
            if (maker != Makers().end())
                hr = maker->second(value.begin().value(), made);
        }
    }
    catch (const Json::exception&)
    {
        hr = E_INVALIDARG;
    }
    if (SUCCEEDED(hr))
        result = made;
    return hr;
}

Json JsonFromVariant(const VARIANT& value)
{
    Json result = {{"vt", value.vt}};
    switch (value.vt)
    {
    case VT_BOOL:
        result["value"] = value.boolVal != VARIANT_FALSE;
        break;
    case VT_I2:
        result["value"] = value.iVal;
        break;
    case VT_UI1:
        result["value"] = value.bVal;
        break;
    case VT_UI2:
        result["value"] = value.uiVal;
        break;
    case VT_I4:
    case VT_INT:
        result["value"] = value.lVal;
        break;
    case VT_UI4:
    case VT_UINT:
        result["value"] = value.ulVal;
        break;
    case VT_I8:
        result["value"] = value.llVal;
        break;
    case VT_R8:
        result["value"] = value.dblVal;
        break;
    case VT_BSTR:
        result["value"] = value.bstrVal != nullptr ? Json(NarrowBstr(value.bstrVal)) : Json();
        break;
    default:
        break;
    }
    return result;
}
} // namespace Simulator
