#include "wmievents/OrvikWmiEvents.h"

#include "shared/ModuleName.h"
#include "shared/TraceScope.h"
#include "wmievents/WmiEventsState.h"

#include <objbase.h>

using Orvik::Shared::TraceScope;

namespace Notifications::OrvikWmiEvents
{
namespace
{
// The result is in the subscription's own records; the next subscription is cancelled whatever it was.
template <class Subscription>
void UnregisterExisting(const std::unique_ptr<Subscription>& subscription)
{
    if (subscription)
        static_cast<void>(subscription->Unregister());
}
} // namespace

COrvikWmiEvents::COrvikWmiEvents()
{
    const TraceScope trace(ORVIK_FUNCTION);
    static_cast<void>(CoInitialize(nullptr));
    m_strSmartAdapterHelperPath = GetSmartAdapterHelperPath();
    InitializeCriticalSection(&g_csLogging);
    InitializeCriticalSection(&g_csScan);
    InitializeCriticalSection(&g_csCopy);
}

COrvikWmiEvents::~COrvikWmiEvents()
{
    const TraceScope trace(ORVIK_FUNCTION);
    UnregisterExisting(m_pSmartAdapterEvent);
    UnregisterExisting(m_pVeritorEvent);
    UnregisterExisting(m_pUSBCEvent);
    UnregisterExisting(m_pFirmwareEvent);
    UnregisterExisting(m_pPrivacyPanelEvent);
    UnregisterExisting(m_pFirmwareRuntimeEvent);
    UnregisterExisting(m_pPublicEvent);
    CoUninitialize();
    DeleteCriticalSection(&g_csLogging);
    DeleteCriticalSection(&g_csScan);
    DeleteCriticalSection(&g_csCopy);
}

std::wstring GetSmartAdapterHelperPath()
{
    return Orvik::Shared::PathBesideProgram(L"orvikSmartAdapterHelp.exe");
}
} // namespace Notifications::OrvikWmiEvents
