#include "wmievents/AuditLogCopy.h"

#include "platform/PlatformCommand.h"
#include "shared/SettingsControl.h"

#include <new>

using Orvik::Shared::TraceScope;

namespace Notifications::OrvikWmiEvents
{
namespace
{
// Both raise _com_error and std::bad_alloc.
HRESULT SendForAuditLog(const TraceScope& trace, IPlixCommand* command, std::wstring& xml)
{
    HRESULT hr = S_OK;
    const _variant_t output = SendCommand(trace, command, L"EmbeddedController.AuditLog", &hr);
    trace.Verbose(L"Calling EmbeddedController.AuditLog passed.");
    if (output.vt == VT_BSTR && output.bstrVal != nullptr)
        xml = output.bstrVal;
    return hr;
}

HRESULT AskForAuditLog(const TraceScope& trace, std::wstring& xml)
{
    IPlixCommandPtr spCommand;
    HRESULT hr = CreateCommand(trace, spCommand);
    if (FAILED(hr) || !spCommand)
        return hr;
    hr = SendForAuditLog(trace, spCommand, xml);
    spCommand = nullptr;
    trace.Verbose(L"VR Log Data:");
    trace.Verbose(L"%s", xml.c_str());
    return hr;
}

HRESULT LogAuditLogFailure(const TraceScope& trace, const _com_error& error)
{
    return LogCommandFailure(trace, error, L"Invalid Command EmbeddedController.AuditLog. hr = 0x%X",
                             L"Exception occurred during call for EmbeddedController.AuditLog. hr = 0x%X");
}

HRESULT FetchAndWrite(const TraceScope& trace)
{
    std::wstring text;
    const HRESULT hr = GetVeritorLogFromPlix(text);
    if (FAILED(hr))
    {
        trace.Information(L"GetVeritorLogFromPlix failed.  HR=0X%x", hr);
        return hr;
    }
    XmlDocument xml;
    // What does not parse is a log without entries.
    static_cast<void>(xml.Load(MakeBstr(text.c_str()).get()));
    AddLogsToEventViewer(xml);
    return hr;
}
} // namespace

bool AreLoggingsSuppressed(const TraceScope& trace)
{
    if (!CSettingsControl::GetRegistrySetting(L"SuppressAllLoggings") &&
        !CSettingsControl::GetRegistrySetting(L"SuppressVeritorLoggings"))
        return false;
    trace.Verbose(L"Loggings are suppressed.");
    return true;
}

HRESULT GetVeritorLogFromPlix(std::wstring& xml)
{
    TraceScope trace(ORVIK_FUNCTION);
    xml.clear();
    try
    {
        return trace.Exit(AskForAuditLog(trace, xml));
    }
    catch (const _com_error& error)
    {
        return trace.Exit(LogAuditLogFailure(trace, error));
    }
    catch (const std::bad_alloc&)
    {
        return trace.Exit(LogAuditLogFailure(trace, _com_error(E_OUTOFMEMORY)));
    }
}

HRESULT CopyAuditLog(const TraceScope& trace) noexcept
{
    try
    {
        return FetchAndWrite(trace);
    }
    catch (...)
    {
        // Between fetch and walk only memory is asked for.
        trace.Error(L"There is no memory for the audit log.");
        return E_OUTOFMEMORY;
    }
}
} // namespace Notifications::OrvikWmiEvents
