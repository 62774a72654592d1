#include "notifications/DesktopToast.h"
#include "platform/PlixNotification.h"
#include "res/Resource.h"
#include "shared/SettingsControl.h"
#include "shared/TraceScope.h"
#include "wmievents/EventRegistration.h"
#include "wmievents/OrvikWmiEvents.h"

#include <optional>

using Orvik::Shared::TraceScope;

namespace Notifications::OrvikWmiEvents
{
namespace
{
constexpr int g_nSmartAdapterEvent = 3;

// String of the message for a status; 0 for a status that is not shown.
UINT MessageOf(long status)
{
    switch (status)
    {
    case 2: // GOOD_ENOUGH
        return IDS_ADAPTER_HIGHER_CAPACITY;
    case 3: // TOO_SMALL
        return IDS_ADAPTER_OUTPUT_TOO_LOW;
    case 4: // FAILED
        return IDS_ADAPTER_NOT_FUNCTIONING;
    case 5: // SUPPLEMENT
        return IDS_POWER_SOURCE_TOO_WEAK;
    default:
        return 0;
    }
}

// The adapter's status; nothing without a command object or when the command fails, also by an answer that is no
// number.
std::optional<long> ReadStatus(const TraceScope& trace)
{
    try
    {
        IPlixCommandPtr spCommand;
        if (FAILED(CreateCommand(trace, spCommand)) || !spCommand)
            return std::nullopt;
        const long status = SendCommand(trace, spCommand, L"SmartAdapter.Status");
        trace.Verbose(L"SmartAdapterData: %d", status);
        return status;
    }
    catch (const _com_error& error)
    {
        LogCommandFailure(trace, error, L"Invalid Command SmartAdapter.Status. hr = 0x%X",
                          L"Exception occurred when calling SmartAdapter.Status, [hr:0x%08X]");
        return std::nullopt;
    }
}

// The component's presence is what counts: the object is given back at once.
bool IsNotificationComponentPresent(const TraceScope& trace)
{
    IUnknownPtr spNotification;
    const HRESULT hr = CreatePlixNotification(spNotification);
    if (FAILED(hr))
        trace.Information(L"Failed to CreateInstance of PlixNotification, hr = 0x%X", hr);
    return SUCCEEDED(hr);
}

void ShowStatus(const TraceScope& trace)
{
    const std::optional<long> status = ReadStatus(trace);
    const UINT messageId = status ? MessageOf(*status) : 0;
    if (messageId == 0)
        return;
    wchar_t szStatus[260]{};
    LoadStringW(nullptr, messageId, szStatus, static_cast<int>(std::size(szStatus)));
    if (!IsNotificationComponentPresent(trace))
        return;

    wchar_t szTitle[128]{};
    LoadStringW(nullptr, IDS_APP_TITLE, szTitle, static_cast<int>(std::size(szTitle)));
    trace.Information(L"szTitle: %s", szTitle);
    trace.Information(L"szStatus: %s", szStatus);
    // The toast's own records tell what became of it.
    static_cast<void>(DesktopToast(nullptr, nullptr).DisplayToast(szTitle, szStatus));
}
} // namespace

HRESULT COrvikWmiEvents::RegisterSmartAdapterEvent(const std::wstring& iconPath)
{
    TraceScope trace(ORVIK_FUNCTION);
    m_strIconPath = iconPath;
    return trace.Exit(
        RegisterRow(trace, this,
                    EventRegistration{m_pSmartAdapterEvent, g_nSmartAdapterEvent,
                                      &COrvikWmiEvents::ProcessSmartAdapterEvent, L"SmartAdapter.Supported", nullptr,
                                      L"Failed to register for smart adapter event, [hr:0x%08X]",
                                      L"Invalid Command SmartAdapter.Supported. hr = 0x%X",
                                      L"Exception occurred when calling SmartAdapter.Supported, [hr:0x%08X]"}));
}

void COrvikWmiEvents::ProcessSmartAdapterEvent()
{
    const TraceScope trace(ORVIK_FUNCTION);
    if (AreAllNotificationsSuppressed() || CSettingsControl::GetRegistrySetting(L"SuppressSmartAdapterNotifications"))
    {
        trace.Verbose(L"Notifications are suppressed");
        return;
    }
    try
    {
        ShowStatus(trace);
    }
    catch (...) // NOLINT(bugprone-empty-catch)
    {
        // Raised behind the command: no message is shown, which no record of this handler tells of.
    }
}
} // namespace Notifications::OrvikWmiEvents
