#include "wmievents/PlatformCommand.h"

using Orvik::Shared::TraceScope;

namespace Notifications::OrvikWmiEvents
{
HRESULT CreateCommand(const TraceScope& trace, IPlixCommandPtr& spCommand)
{
    const HRESULT hr = CreatePlixCommand(spCommand);
    if (FAILED(hr) || !spCommand)
        trace.Information(L"Create Plix instance cmd failed.  HR=0X%x", hr);
    return hr;
}

_variant_t SendCommand(IPlixCommand* command, const wchar_t* name)
{
    TraceScope trace(ORVIK_FUNCTION, L"%s", name);
    return ExecutePlixCommand(command, name);
}

bool IsTrue(const VARIANT& answer)
{
    return answer.vt == VT_BOOL && answer.boolVal == VARIANT_TRUE;
}
} // namespace Notifications::OrvikWmiEvents
