#include "simulator/driver/UsbDevices.h"

namespace Simulator::Devices
{
namespace
{
constexpr GUID g_interfaceClass = {0xA5DCBF10, 0x6530, 0x11D2, {0x90, 0x1F, 0x00, 0xC0, 0x4F, 0xB9, 0x51, 0xED}};

// All that there is to know of it the hub tells.
NTSTATUS ControlUsbDevice(const ControlRequest& request)
{
    return request.End(STATUS_INVALID_DEVICE_REQUEST);
}

constexpr Device MakeUsbDevice(const wchar_t* name, ULONG port)
{
    return {name, &UsbIdentities[port - 1], &g_interfaceClass, &OpenAlways, &CloseQuietly, &ControlUsbDevice};
}

constinit Device g_devices[PortCount] = {
    MakeUsbDevice(L"\\Device\\OrvikUsbDevice1", 1), MakeUsbDevice(L"\\Device\\OrvikUsbDevice2", 2),
    MakeUsbDevice(L"\\Device\\OrvikUsbDevice3", 3), MakeUsbDevice(L"\\Device\\OrvikUsbDevice4", 4)};
} // namespace

Device& UsbDevice(ULONG port)
{
    return g_devices[port - 1];
}
} // namespace Simulator::Devices
