#include "wmievents/VeritorThreads.h"

#include "app/dialogs/MessageDialog.h"
#include "platform/ComApartment.h"
#include "res/Resource.h"
#include "shared/OwnerTypes.h"
#include "shared/SettingsControl.h"
#include "shared/TraceScope.h"
#include "wmievents/AuditLogCopy.h"
#include "wmievents/WmiEventsState.h"

using Orvik::Shared::CriticalSectionLock;
using Orvik::Shared::TraceScope;
using Orvik::Shared::UniqueHandle;

namespace Notifications::OrvikWmiEvents
{
namespace
{
constexpr DWORD g_dwStartDelay = 120000; // milliseconds

int NumberOf(void* parameter)
{
    return static_cast<int>(reinterpret_cast<LONG_PTR>(parameter));
}

void CopyOnThisThread(const TraceScope& trace)
{
    if (AreLoggingsSuppressed(trace))
        return;
    // Without the logging lock: the copy that every event starts may be under way.
    const ComApartment apartment(COINIT_APARTMENTTHREADED);
    static_cast<void>(CopyAuditLog(trace));
}

void ActOn(const TraceScope& trace, int eventId)
{
    switch (eventId)
    {
    case 0:
        // Policy silences the good news alone, deliberately: every other message asks the person to act.
        if (!AreAllNotificationsSuppressed() && !CSettingsControl::GetRegistrySetting(L"SuppressVeritorNotifications"))
            ShowMessageDialog(IDS_VERITOR_RECOVERED, MessageKind::Recovered);
        break;
    case 1:
    case 2:
        ShowMessageDialog(IDS_VERITOR_SHUT_DOWN_TO_RECOVER, MessageKind::NotRecovered);
        break;
    case 4:
        ShowMessageDialog(IDS_VERITOR_SHUT_DOWN_TO_REPAIR, MessageKind::RuntimeIntrusion);
        break;
    case 5:
        ShowMessageDialog(IDS_VERITOR_POWER_OFF, MessageKind::PowerOff);
        break;
    default:
        if (eventId >= 30 && eventId <= 39)
            CopyOnThisThread(trace);
        break;
    }
}
} // namespace

void StartThread(const char* functionName, LPTHREAD_START_ROUTINE routine, int parameter) noexcept
{
    const UniqueHandle thread(
        CreateThread(nullptr, 0, routine, reinterpret_cast<void*>(static_cast<LONG_PTR>(parameter)), 0, nullptr));
    if (!thread)
        Orvik::Shared::Log(Orvik::Shared::Level::Error, functionName, L"CreateThread failed (0x%x)", GetLastError());
}

DWORD WINAPI ThreadProcVeritorLogging(void* parameter)
{
    TraceScope trace(ORVIK_FUNCTION);
    if (NumberOf(parameter) == 1)
        Sleep(g_dwStartDelay);
    const CriticalSectionLock lock(g_csLogging);
    const ComApartment apartment(COINIT_APARTMENTTHREADED);
    return static_cast<DWORD>(trace.Exit(CopyAuditLog(trace)));
}

DWORD WINAPI ThreadProcVeritorEvent(void* parameter)
{
    TraceScope trace(ORVIK_FUNCTION);
    const int eventId = NumberOf(parameter);
    trace.Verbose(L"ThreadProcVeritorEvent Logging EventID : %d", eventId);
    ActOn(trace, eventId);
    SetForegroundWindow(nullptr);
    return static_cast<DWORD>(trace.Exit(0));
}
} // namespace Notifications::OrvikWmiEvents
