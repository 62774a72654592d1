#include "simulator/doubles/EnumWbemClassObjectDouble.h"

#include "simulator/doubles/WbemClassObjectDouble.h"
#include "simulator/doubles/WmiStatus.h"
#include "simulator/model/Facts.h"

namespace Simulator
{
EnumWbemClassObjectDouble::EnumWbemClassObjectDouble(std::deque<Instance> instances)
    : EnumWbemClassObjectBase("EnumWbemClassObject"), m_lstInstances(std::move(instances))
{
}

HRESULT EnumWbemClassObjectDouble::Next(LONG timeout, ULONG count, IWbemClassObject** objects, ULONG* returned)
{
    const HRESULT hr =
        CallPlan::Instance().Enter("IEnumWbemClassObject::Next", {{"timeout", timeout}, {"count", count}});
    if (objects == nullptr || returned == nullptr)
        return FirstFailure(hr, Status(WBEM_E_INVALID_PARAMETER));
    *returned = 0;
    if (FAILED(hr))
        return hr;
    if (Facts::Instance().Get("/wmi/next/timed-out") == true)
        return Status(WBEM_S_TIMEDOUT);
    for (; *returned < count && !m_lstInstances.empty(); m_lstInstances.pop_front())
    {
        Instance& next = m_lstInstances.front();
        objects[(*returned)++] = new WbemClassObjectDouble(next.m_strClass, std::move(next.m_properties));
    }
    return *returned == count ? Status(WBEM_S_NO_ERROR) : Status(WBEM_S_FALSE);
}
} // namespace Simulator
