#include "platform/PlixCommand.h"

#include "platform/ComActivation.h"

using Orvik::Shared::TraceScope;
using Orvik::Shared::WideFormat;

HRESULT CreatePlixCommand(IPlixCommandPtr& spCommand)
{
    TraceScope trace(ORVIK_FUNCTION);
    return trace.Exit(
        CreateRunningObject(CLSID_PlixCommand, __uuidof(IPlixCommand), reinterpret_cast<void**>(&spCommand)));
}

_variant_t ExecutePlixCommand(IPlixCommand* command, const wchar_t* name)
{
    const _bstr_t commandName(name);
    if (command == nullptr)
        _com_issue_error(E_POINTER);
    _variant_t output;
    if (const HRESULT hr = command->Execute(commandName, &output); FAILED(hr))
        _com_issue_errorex(hr, command, __uuidof(IPlixCommand));
    return output;
}

HRESULT LogCommandFailure(const TraceScope& trace, const _com_error& error, WideFormat<HRESULT> invalidCommand,
                          WideFormat<HRESULT> otherFailure)
{
    const HRESULT hr = error.Error();
    trace.Information(hr == g_hrInvalidCommand ? invalidCommand : otherFailure, hr);
    return hr;
}
