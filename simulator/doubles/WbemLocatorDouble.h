#pragma once

#include "simulator/doubles/ComDouble.h"

#include <windows.h>

#include <wbemcli.h>

namespace Simulator
{
// Connects to the namespaces of WmiNamespaces.h.
class WbemLocatorDouble final : public ComDouble<IWbemLocator>
{
public:
    WbemLocatorDouble();

    HRESULT STDMETHODCALLTYPE ConnectServer(const BSTR path, const BSTR user, const BSTR password, const BSTR locale,
                                            LONG flags, const BSTR authority, IWbemContext* context,
                                            IWbemServices** services) override;
};
} // namespace Simulator
