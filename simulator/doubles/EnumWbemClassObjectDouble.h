#pragma once

#include "simulator/doubles/EnumWbemClassObjectBase.h"

#include <deque>

namespace Simulator
{
// The result of a query, to be walked forward once. The fact "/wmi/next/timed-out" = true makes Next give
// WBEM_S_TIMEDOUT and no object; CallPlan::Delay makes it slow.
class EnumWbemClassObjectDouble final : public EnumWbemClassObjectBase
{
public:
    struct Instance
    {
        std::string m_strClass;
        nlohmann::json m_properties;
    };

    explicit EnumWbemClassObjectDouble(std::deque<Instance> instances);

    HRESULT STDMETHODCALLTYPE Next(LONG timeout, ULONG count, IWbemClassObject** objects, ULONG* returned) override;

private:
    std::deque<Instance> m_lstInstances;
};
} // namespace Simulator
