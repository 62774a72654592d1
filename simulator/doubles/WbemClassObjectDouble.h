#pragma once

#include "simulator/doubles/WbemClassObjectBase.h"

namespace Simulator
{
// One WMI instance: its class name and its properties as facts (JsonVariant.h), a property whose fact is {"hr": ...}
// fails to be read. "__Class" answers the class name unless the properties say otherwise.
class WbemClassObjectDouble final : public WbemClassObjectBase
{
public:
    // properties: an object; anything else means none.
    WbemClassObjectDouble(std::string_view className, nlohmann::json properties);

    HRESULT STDMETHODCALLTYPE Get(LPCWSTR name, LONG flags, VARIANT* value, CIMTYPE* type, LONG* flavor) override;

private:
    // Property names have no letter case. Null when there is no such property.
    [[nodiscard]] const nlohmann::json* Find(std::string_view name) const;

    std::string m_strWmiClass;
    nlohmann::json m_properties;
};
} // namespace Simulator
