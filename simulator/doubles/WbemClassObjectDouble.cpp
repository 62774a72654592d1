#include "simulator/doubles/WbemClassObjectDouble.h"

#include "simulator/doubles/JournalText.h"
#include "simulator/doubles/JsonVariant.h"
#include "simulator/doubles/RealFunctions.h"
#include "simulator/doubles/WmiQuery.h"
#include "simulator/doubles/WmiStatus.h"

namespace Simulator
{
namespace
{
// The CIM type whose values have that VARIANT type.
CIMTYPE CimType(VARTYPE type)
{
    switch (type)
    {
    case VT_BSTR:
        return CIM_STRING;
    case VT_I4:
        return CIM_SINT32;
    case VT_I2:
        return CIM_SINT16;
    case VT_UI1:
        return CIM_UINT8;
    case VT_BOOL:
        return CIM_BOOLEAN;
    case VT_R4:
        return CIM_REAL32;
    case VT_R8:
        return CIM_REAL64;
    case VT_UNKNOWN:
        return CIM_OBJECT;
    case VT_ARRAY | VT_UI1:
        return CIM_FLAG_ARRAY | CIM_UINT8;
    default:
        return CIM_ILLEGAL;
    }
}
} // namespace

WbemClassObjectDouble::WbemClassObjectDouble(std::string_view className, nlohmann::json properties)
    : WbemClassObjectBase("WbemClassObject"), m_strWmiClass(className),
      m_properties(properties.is_object() ? std::move(properties) : nlohmann::json::object())
{
    if (Find("__Class") == nullptr)
        m_properties["__Class"] = m_strWmiClass;
}

const nlohmann::json* WbemClassObjectDouble::Find(std::string_view name) const
{
    for (auto property = m_properties.begin(); property != m_properties.end(); ++property)
    {
        if (EqualNames(property.key(), name))
            return &property.value();
    }
    return nullptr;
}

HRESULT WbemClassObjectDouble::Get(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE* type, LONG* flavor)
{
    const std::string property = name != nullptr ? Narrow(name) : std::string();
    const HRESULT hr =
        CallPlan::Instance().Enter("IWbemClassObject::Get", {{"class", m_strWmiClass}, {"property", property}});
    if (FAILED(hr))
        return hr;
    if (name == nullptr || flags != 0)
        return Status(WBEM_E_INVALID_PARAMETER);
    const nlohmann::json* fact = Find(property);
    if (fact == nullptr)
        return Status(WBEM_E_NOT_FOUND);

    VARIANT made{};
    if (const HRESULT result = VariantFromJson(*fact, made); FAILED(result))
        return result;
    if (type != nullptr)
        *type = CimType(made.vt);
    if (flavor != nullptr)
        *flavor = property.starts_with("__") ? WBEM_FLAVOR_ORIGIN_SYSTEM : WBEM_FLAVOR_ORIGIN_LOCAL;
    if (value != nullptr)
        *value = made;
    else
        RealFunctions::Instance().VariantClear(&made);
    return Status(WBEM_S_NO_ERROR);
}
} // namespace Simulator
