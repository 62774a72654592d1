#include "platform/PlatformCommand.h"

using Orvik::Shared::Log;
using Orvik::Shared::TraceScope;
namespace Level = Orvik::Shared::Level;

HRESULT CreateCommand(const TraceScope& trace, IPlixCommandPtr& spCommand)
{
    const HRESULT hr = CreatePlixCommand(spCommand);
    if (FAILED(hr) || !spCommand)
        trace.Information(L"Create Plix instance cmd failed.  HR=0X%x", hr);
    return hr;
}

_variant_t SendCommand(const TraceScope& trace, IPlixCommand* command, const wchar_t* name, HRESULT* result)
{
    Log(Level::TraceIn, trace.FunctionName(), L"Before Calling %s", name);
    // NOLINTNEXTLINE(misc-const-correctness): a constant would be copied into the result
    _variant_t answer = ExecutePlixCommand(command, name, result);
    Log(Level::TraceOut, trace.FunctionName(), L"After Calling %s", name);
    return answer;
}

bool IsTrue(const VARIANT& answer)
{
    return answer.vt == VT_BOOL && answer.boolVal == VARIANT_TRUE;
}
