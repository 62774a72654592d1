#include "simulator/driver/ProbeDevice.h"

namespace Simulator::Devices
{
namespace
{
NTSTATUS ControlProbe(const ControlRequest& request)
{
    return request.End(STATUS_INVALID_DEVICE_REQUEST);
}

constinit Device g_device = {L"\\Device\\OrvikProbe", &ProbeIdentity, &ProbeInterface, &OpenAlways,
                             &CloseQuietly,           &ControlProbe};
} // namespace

Device& ProbeDevice()
{
    return g_device;
}

NTSTATUS ProbeArrivals()
{
    const NTSTATUS status = SetPresent(g_device, true);
    return NT_SUCCESS(status) ? SetPresent(g_device, false) : status;
}
} // namespace Simulator::Devices
