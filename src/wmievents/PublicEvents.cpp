#include "notifications/DesktopToast.h"
#include "shared/TraceScope.h"
#include "wmievents/EventRegistration.h"
#include "wmievents/OrvikWmiEvents.h"
#include "wmievents/WmiEventsState.h"

#include <cwchar>
#include <exception>

using Orvik::Shared::TraceScope;

namespace Notifications::OrvikWmiEvents
{
namespace
{
// A description that is no text counts as an empty one.
std::wstring TextOf(const VARIANT* eventData)
{
    if (eventData == nullptr || eventData->vt != VT_BSTR || eventData->bstrVal == nullptr)
        return {};
    return eventData->bstrVal;
}

// Whether firmware set-up lets events be shown. Raises _com_error as SendCommand does.
bool AreEventsEnabled(const TraceScope& trace)
{
    IPlixCommandPtr spCommand;
    if (FAILED(CreateCommand(trace, spCommand)) || !spCommand)
        return false;
    return IsTrue(SendCommand(trace, spCommand, L"F10Setting.WMIEvents.Enabled"));
}

void ShowPublicEvent(const TraceScope& trace, const CStringW& eventClass, const VARIANT* eventData)
{
    if (!AreEventsEnabled(trace))
        return;
    if (_wcsicmp(eventClass.c_str(), g_szPublicEventClass) != 0)
        return;

    DesktopToast toast(nullptr, nullptr);
    // Both operations leave their result in records of their own; the second is tried whatever became of the first.
    static_cast<void>(toast.TryCreateShortcut());
    static_cast<void>(toast.DisplayToast(L"Orvik Notifications", TextOf(eventData)));
}
} // namespace

HRESULT COrvikWmiEvents::RegisterGPIOWMIEvent()
{
    TraceScope trace(ORVIK_FUNCTION);
    return trace.Exit(
        RegisterRow(trace, this,
                    EventRegistration{m_pPublicEvent, g_szPublicEventClass, &COrvikWmiEvents::ProcessWMIEvent, nullptr,
                                      &m_bShowPrivacyDialog, L"Failed to register for GPIO event, [hr:0x%08X]",
                                      L"Invalid Command to register for GPIO. hr = 0x%X",
                                      L"Exception occurred when calling register for GPIO, [hr:0x%08X]"}));
}

void COrvikWmiEvents::ProcessWMIEvent(const CStringW& eventClass, VARIANT* eventData)
{
    const TraceScope trace(ORVIK_FUNCTION);
    try
    {
        ShowPublicEvent(trace, eventClass, eventData);
    }
    catch (const _com_error& error)
    {
        trace.Information(L"Exception when call Popup. hr = 0x%X", error.Error());
    }
    catch (const std::exception&)
    {
        // Only want of memory raises one here.
        trace.Information(L"Exception when call Popup. hr = 0x%X", E_OUTOFMEMORY);
    }
}
} // namespace Notifications::OrvikWmiEvents
