#pragma once

#include "simulator/doubles/ComDouble.h"
#include "simulator/doubles/Refusals.h"

#include <windows.h>

#include <wbemcli.h>

namespace Simulator
{
// The methods of IEnumWbemClassObject that the product has no use for: journalled, E_NOTIMPL.
class EnumWbemClassObjectBase : public ComDouble<IEnumWbemClassObject>
{
public:
    HRESULT STDMETHODCALLTYPE Reset() override { return NotImplemented("IEnumWbemClassObject::Reset"); }
    HRESULT STDMETHODCALLTYPE NextAsync(ULONG, IWbemObjectSink*) override
    {
        return NotImplemented("IEnumWbemClassObject::NextAsync");
    }
    HRESULT STDMETHODCALLTYPE Clone(IEnumWbemClassObject**) override
    {
        return NotImplemented("IEnumWbemClassObject::Clone");
    }
    HRESULT STDMETHODCALLTYPE Skip(LONG, ULONG) override { return NotImplemented("IEnumWbemClassObject::Skip"); }

protected:
    using ComDouble::ComDouble;
};
} // namespace Simulator
