#include "platform/PlixCommand.h"

#include "platform/ComActivation.h"

#include <new>

using Orvik::Shared::TraceScope;
using Orvik::Shared::WideFormat;

namespace
{
// The wrapper's own allocation fails as the text's does.
_bstr_t CommandName(const wchar_t* name)
{
    try
    {
        return {name};
    }
    catch (const std::bad_alloc&)
    {
        throw _com_error(E_OUTOFMEMORY);
    }
}

// What both ways to run a command share; call: runs it with its name and the place of its output.
template <class Call>
_variant_t Send(IPlixCommand* command, const wchar_t* name, HRESULT* result, Call call)
{
    const _bstr_t commandName = CommandName(name);
    if (command == nullptr)
        _com_issue_error(E_POINTER);
    _variant_t output;
    // The constructor sets the type alone: a value that the library leaves untouched reads as zero.
    static_cast<VARIANT&>(output) = VARIANT{};
    const HRESULT hr = call(commandName, &output);
    if (FAILED(hr))
        _com_issue_errorex(hr, command, __uuidof(IPlixCommand));
    if (result != nullptr)
        *result = hr;
    return output;
}
} // namespace

HRESULT CreatePlixCommand(IPlixCommandPtr& spCommand)
{
    TraceScope trace(ORVIK_FUNCTION);
    return trace.Exit(
        CreateRunningObject(CLSID_PlixCommand, __uuidof(IPlixCommand), reinterpret_cast<void**>(&spCommand)));
}

_variant_t ExecutePlixCommand(IPlixCommand* command, const wchar_t* name, HRESULT* result)
{
    return Send(command, name, result, [command](const _bstr_t& commandName, VARIANT* output)
                { return command->Execute(commandName, output); });
}

_variant_t ExecutePlixCommandWithInput(IPlixCommand* command, const wchar_t* name, const VARIANT& input,
                                       HRESULT* result)
{
    return Send(command, name, result, [&](const _bstr_t& commandName, VARIANT* output)
                { return command->ExecuteWithInput(commandName, input, output); });
}

HRESULT LogCommandFailure(const TraceScope& trace, const _com_error& error, WideFormat<HRESULT> invalidCommand,
                          WideFormat<HRESULT> otherFailure)
{
    const HRESULT hr = error.Error();
    trace.Information(hr == g_hrInvalidCommand ? invalidCommand : otherFailure, hr);
    return hr;
}
