#pragma once

#include "simulator/doubles/ComDouble.h"

#include <windows.h>

#include <wbemcli.h>

namespace Simulator
{
// Makes the stubs that WMI calls sinks through. The journal says in which apartment it was asked to.
class UnsecuredApartmentDouble final : public ComDouble<IUnsecuredApartment>
{
public:
    UnsecuredApartmentDouble();

    HRESULT STDMETHODCALLTYPE CreateObjectStub(IUnknown* object, IUnknown** stub) override;
};
} // namespace Simulator
