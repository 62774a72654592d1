#include "shared/TraceScope.h"
#include "wmievents/AuditLogCopy.h"
#include "wmievents/AuditLogScan.h"
#include "wmievents/EventRegistration.h"
#include "wmievents/OrvikWmiEvents.h"
#include "wmievents/VeritorThreads.h"

using Orvik::Shared::TraceScope;

namespace Notifications::OrvikWmiEvents
{
namespace
{
constexpr int g_nVeritorEvent = 131074;
}

HRESULT COrvikWmiEvents::RegisterVeritorEvent(const std::wstring& iconPath)
{
    TraceScope trace(ORVIK_FUNCTION);
    m_strIconPath = iconPath;
    return trace.Exit(
        RegisterRow(trace, this,
                    EventRegistration{m_pVeritorEvent, g_nVeritorEvent, &COrvikWmiEvents::ProcessVeritorEvent, nullptr,
                                      nullptr, L"Failed to register for Veritor event, [hr:0x%08X]",
                                      L"Invalid Command to register for Veritor. hr = 0x%X",
                                      L"Exception occurred when calling register for Veritor, [hr:0x%08X]"}));
}

void COrvikWmiEvents::ProcessVeritorEvent(int /*eventId*/, VARIANT* eventData)
{
    const TraceScope trace(ORVIK_FUNCTION);
    const VARTYPE type = eventData != nullptr ? eventData->vt : static_cast<VARTYPE>(VT_EMPTY);
    if (type != VT_I4)
        trace.Information(L"invalid parameter, expect VT_I4, got = %d", static_cast<int>(type));
    else
    {
        trace.Verbose(L"debug: pvarInput->lVal = %d", eventData->lVal);
        trace.Verbose(L"iEvent ID = %d", eventData->lVal);
        StartThread(ORVIK_FUNCTION, &ThreadProcVeritorEvent, eventData->lVal);
    }
    ProcessVeritorLog(0);
}

void COrvikWmiEvents::ProcessVeritorLog(int delayFlag)
{
    const TraceScope trace(ORVIK_FUNCTION);
    if (!AreLoggingsSuppressed(trace))
        StartThread(ORVIK_FUNCTION, &ThreadProcVeritorLogging, delayFlag);
}

void COrvikWmiEvents::CreateHashKeysForVeritorEventLogs()
{
    const TraceScope trace(ORVIK_FUNCTION);
    StartThread(ORVIK_FUNCTION, &ThreadProcCreateHashKeysForVeritorEventLogs, 0);
}
} // namespace Notifications::OrvikWmiEvents
