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

_variant_t SendCommand(const TraceScope& trace, IPlixCommand* command, const wchar_t* name, HRESULT* result)
{
    trace.Verbose(L"Before Calling %s", name);
    _variant_t answer = ExecutePlixCommand(command, name, result);
    trace.Verbose(L"After Calling %s", name);
    return answer;
}

bool IsTrue(const VARIANT& answer)
{
    return answer.vt == VT_BOOL && answer.boolVal == VARIANT_TRUE;
}
} // namespace Notifications::OrvikWmiEvents
