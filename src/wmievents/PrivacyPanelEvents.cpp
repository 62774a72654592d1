#include "app/dialogs/PrivacyNotice.h"
#include "app/dialogs/PrivacyPanelDialog.h"
#include "res/Resource.h"
#include "shared/TraceScope.h"
#include "wmievents/EventRegistration.h"
#include "wmievents/OrvikWmiEvents.h"

using Orvik::Shared::TraceScope;

namespace Notifications::OrvikWmiEvents
{
namespace
{
constexpr int g_nPrivacyPanelEvent = 20;
constexpr LONG g_nNotSupported = 1;
} // namespace

HRESULT COrvikWmiEvents::RegisterPrivacyPanelWMIEvent()
{
    TraceScope trace(ORVIK_FUNCTION);
    // The firmware event's words, deliberately: administrators search for them.
    return trace.Exit(RegisterRow(
        trace, this,
        EventRegistration{m_pPrivacyPanelEvent, g_nPrivacyPanelEvent, &COrvikWmiEvents::ProcessPrivacyPanelEvent,
                          nullptr, &m_bShowPrivacyDialog, L"Failed to register for Firmware event, [hr:0x%08X]",
                          L"Invalid Command to register for Firmware. hr = 0x%X",
                          L"Exception occurred when calling register for Firmware, [hr:0x%08X]"}));
}

void COrvikWmiEvents::ProcessPrivacyPanelEvent(int /*eventId*/, VARIANT* eventData)
{
    const TraceScope trace(ORVIK_FUNCTION);
    m_bShowPrivacyDialog = !IsPrivacyNoticeSilenced();
    if (eventData != nullptr && eventData->lVal == g_nNotSupported && m_bShowPrivacyDialog)
        ShowPrivacyPanelDialog(IDS_LUMBRA_NOT_SUPPORTED, MessageKind::Notice);
}
} // namespace Notifications::OrvikWmiEvents
