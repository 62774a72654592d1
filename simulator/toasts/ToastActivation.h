#pragma once

#include <windows.h>

#include <activation.h>
#include <hstring.h>

namespace Simulator
{
// What a DLL of Windows Runtime classes exports as DllGetActivationFactory, for the two toast classes. Fails with
// REGDB_E_CLASSNOTREG for any other class and, while the fact /toasts/registered is false, for all of them. Entered
// into the call plan as "DllGetActivationFactory".
[[nodiscard]] HRESULT GetToastActivationFactory(HSTRING classId, IActivationFactory** factory);
} // namespace Simulator
