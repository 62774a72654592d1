#include "wmievents/VeritorEventLog.h"

#include "platform/UniqueBstr.h"
#include "shared/OwnerTypes.h"
#include "shared/TraceScope.h"
#include "wmievents/UpperCase.h"

#include <comdef.h>

#include <new>

using Orvik::Shared::TraceScope;
using Orvik::Shared::UniqueEventSource;

namespace Notifications::OrvikWmiEvents
{
namespace
{
WORD EventTypeOf(const std::wstring& logType)
{
    const std::wstring name = UpperCase(logType);
    if (name == L"WARN")
        return EVENTLOG_WARNING_TYPE;
    if (name == L"ERROR")
        return EVENTLOG_ERROR_TYPE;
    return EVENTLOG_INFORMATION_TYPE;
}

void WriteRecord(const TraceScope& trace, HANDLE source, WORD type, int eventId, const wchar_t* text)
{
    const auto number = static_cast<DWORD>(eventId);
    if (!ReportEventW(source, type, 0, number, nullptr, 1, 0, &text, nullptr))
        trace.Information(L"ReportEvent failed, GatLastError() return: hr = 0x%X", GetLastError());
}

void LogWriteFailure(const TraceScope& trace, HRESULT hr)
{
    trace.Information(L"Exception occurred writing Event Viewer. hr = 0x%X", hr);
}
} // namespace

void LogVeritor(const std::wstring& description, const std::wstring& source, const std::wstring& timestamp,
                const std::wstring& eventId, const std::wstring& logType)
{
    const TraceScope trace(ORVIK_FUNCTION);
    const UniqueEventSource eventSource(RegisterEventSourceW(nullptr, VeritorEventSourceName));
    if (!eventSource)
        return;
    try
    {
        // The timestamp stays last: a later run takes everything behind its name for it.
        const UniqueBstr text = MakeBstr(
            (L"Veritor log entry: " + description + L"\r\nSource: " + source + L"\r\nTimestamp: " + timestamp).c_str());
        WriteRecord(trace, eventSource.get(), EventTypeOf(logType), EventIdNumber(eventId), text.get());
    }
    catch (const _com_error& error)
    {
        LogWriteFailure(trace, error.Error());
    }
    catch (const std::bad_alloc&)
    {
        LogWriteFailure(trace, E_OUTOFMEMORY);
    }
}
} // namespace Notifications::OrvikWmiEvents
