#include "app/dialogs/MessageDialog.h"
#include "res/Resource.h"
#include "shared/TraceScope.h"
#include "wmievents/EventRegistration.h"
#include "wmievents/OrvikWmiEvents.h"

using Orvik::Shared::TraceScope;

namespace Notifications::OrvikWmiEvents
{
namespace
{
constexpr int g_nFirmwareEvent = 21;
constexpr int g_nFirmwareRuntimeEvent = 33;
// Deliberately not the number that is subscribed to: both are as the firmware has them, so an event 33 shows nothing.
constexpr int g_nIntrusionDetectionOff = 83;
} // namespace

HRESULT COrvikWmiEvents::RegisterFirmwareWMIEvent()
{
    TraceScope trace(ORVIK_FUNCTION);
    return trace.Exit(
        RegisterRow(trace, this,
                    EventRegistration{m_pFirmwareEvent, g_nFirmwareEvent, &COrvikWmiEvents::ProcessFirmwareEvent,
                                      nullptr, nullptr, L"Failed to register for Firmware event, [hr:0x%08X]",
                                      L"Invalid Command to register for Firmware. hr = 0x%X",
                                      L"Exception occurred when calling register for Firmware, [hr:0x%08X]"}));
}

HRESULT COrvikWmiEvents::RegisterFirmwareRuntimeWMIEvent()
{
    TraceScope trace(ORVIK_FUNCTION);
    return trace.Exit(RegisterRow(
        trace, this,
        EventRegistration{m_pFirmwareRuntimeEvent, g_nFirmwareRuntimeEvent,
                          &COrvikWmiEvents::ProcessFirmwareRuntimeEvent, nullptr, nullptr,
                          L"Failed to register for Firmware Runtime event, [hr:0x%08X]",
                          L"Invalid Command to register for FirmwareRuntimeEvent. hr = 0x%X",
                          L"Exception occurred when calling register for FirmwareRuntimeEvent, [hr:0x%08X]"}));
}

void COrvikWmiEvents::ProcessFirmwareEvent(int eventId, VARIANT* /*eventData*/)
{
    const TraceScope trace(ORVIK_FUNCTION);
    if (eventId == g_nFirmwareEvent)
        ShowMessageDialog(IDS_KEYBOARD_FIRMWARE_OUTDATED, MessageKind::Notice);
}

void COrvikWmiEvents::ProcessFirmwareRuntimeEvent(int eventId, VARIANT* /*eventData*/)
{
    const TraceScope trace(ORVIK_FUNCTION);
    if (eventId == g_nIntrusionDetectionOff)
        ShowMessageDialog(IDS_VERITOR_DISABLED, MessageKind::Warning);
}
} // namespace Notifications::OrvikWmiEvents
