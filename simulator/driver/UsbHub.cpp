#include "simulator/driver/UsbHub.h"

#include "simulator/driver/PendingRequests.h"
#include "simulator/driver/UsbDevices.h"
#include "simulator/driver/UsbPort.h"

namespace Simulator::Devices
{
namespace
{
constexpr GUID g_hubInterfaceClass = {0xF18A0E88, 0xC30C, 0x11D0, {0x88, 0x15, 0x00, 0xA0, 0xC9, 0x06, 0xBE, 0xD8}};
constexpr ULONG g_nMostReportedPorts = 255;
constexpr UCHAR g_nHubDescriptorType = 0x29;

using NodeInformation = USB_NODE_INFORMATION;
using ConnectionInformation = USB_NODE_CONNECTION_INFORMATION_EX;
using DriverKeyName = USB_NODE_CONNECTION_DRIVERKEY_NAME;

// All of it under the lock.
constinit UsbPort g_ports[PortCount];
constinit ULONG g_nReportedPorts = PortCount;
constinit Counters g_counters{};

bool IsPort(ULONG port)
{
    return port >= 1 && port <= PortCount;
}

NTSTATUS OpenHub()
{
    const DeviceLock lock;
    ++g_counters.m_nHubOpens;
    return STATUS_SUCCESS;
}

NTSTATUS AnswerNode(const ControlRequest& request)
{
    NodeInformation node{};
    node.NodeType = ::UsbHub;
    USB_HUB_DESCRIPTOR& descriptor = node.u.HubInformation.HubDescriptor;
    descriptor.bDescriptorLength = sizeof(descriptor);
    descriptor.bDescriptorType = g_nHubDescriptorType;
    {
        const DeviceLock lock;
        ++g_counters.m_nNodeRequests;
        descriptor.bNumberOfPorts = static_cast<UCHAR>(g_nReportedPorts);
    }
    return request.Answer(&node, sizeof(node));
}

NTSTATUS AnswerConnection(const ControlRequest& request, ULONG port)
{
    ConnectionInformation information{};
    NTSTATUS status = STATUS_INVALID_PARAMETER;
    {
        const DeviceLock lock;
        ++g_counters.m_nConnectionRequests;
        if (IsPort(port))
            status = g_ports[port - 1].Describe(information);
    }
    if (!NT_SUCCESS(status))
        return request.End(status);
    // The list of pipes behind it is empty.
    return request.Answer(&information, FIELD_OFFSET(ConnectionInformation, PipeList));
}

// As much of the name as there is room for; the length tells how much there would be.
NTSTATUS AnswerDriverKey(const ControlRequest& request, ULONG port)
{
    if (request.OutputSize() < sizeof(DriverKeyName))
        return request.End(STATUS_BUFFER_TOO_SMALL);
    constexpr ULONG offset = FIELD_OFFSET(DriverKeyName, DriverKeyName);
    auto* const answer = reinterpret_cast<DriverKeyName*>(request.Buffer());
    ULONG written = sizeof(DriverKeyName);
    NTSTATUS status = STATUS_INVALID_PARAMETER;
    {
        const DeviceLock lock;
        ++g_counters.m_nDriverKeyRequests;
        const wchar_t* name = nullptr;
        ULONG characters = 0;
        ULONG declared = 0;
        if (IsPort(port))
            status = g_ports[port - 1].DriverKey(name, characters, declared);
        if (NT_SUCCESS(status))
        {
            const ULONG bytes = characters * ULONG{sizeof(wchar_t)};
            answer->ConnectionIndex = port;
            answer->ActualLength = declared;
            answer->DriverKeyName[0] = L'\0';
            if (request.OutputSize() > sizeof(DriverKeyName))
            {
                const ULONG room = request.OutputSize() - offset;
                written = offset + (bytes < room ? bytes : room);
                RtlCopyMemory(request.Buffer() + offset, name, written - offset);
            }
        }
    }
    return Complete(request.Irp(), status, NT_SUCCESS(status) ? written : 0);
}

NTSTATUS ControlHub(const ControlRequest& request)
{
    const auto* const port = request.In<ULONG>();
    if (request.Code() == IOCTL_USB_GET_NODE_INFORMATION)
        return AnswerNode(request);
    if (request.Code() == IOCTL_USB_GET_NODE_CONNECTION_INFORMATION_EX && port != nullptr)
        return AnswerConnection(request, *port);
    if (request.Code() == IOCTL_USB_GET_NODE_CONNECTION_DRIVERKEY_NAME && port != nullptr)
        return AnswerDriverKey(request, *port);
    return request.End(STATUS_INVALID_DEVICE_REQUEST);
}

constinit Device g_hub = {
    L"\\Device\\OrvikUsbHub", &HubIdentity, &g_hubInterfaceClass, &OpenHub, &CloseQuietly, &ControlHub};
void EmptyPort(ULONG port)
{
    const DeviceLock lock;
    g_ports[port - 1].MakeEmpty(port);
}
} // namespace

Device& UsbHub()
{
    return g_hub;
}

void InitializeUsbHub()
{
    for (ULONG port = 1; port <= PortCount; ++port)
        EmptyPort(port);
}

void ResetUsbHub()
{
    for (ULONG port = 1; port <= PortCount; ++port)
        UnplugDevice(port);
    const DeviceLock lock;
    g_nReportedPorts = PortCount;
    g_counters = {};
}

NTSTATUS PlugDevice(const Plug& plug)
{
    if (!IsPort(plug.m_nPort) || plug.m_nDeviceClass > 0xFF)
        return STATUS_INVALID_PARAMETER;
    Device& device = UsbDevice(plug.m_nPort);
    if (device.m_bPresent)
        return STATUS_DEVICE_BUSY;
    {
        const DeviceLock lock;
        g_ports[plug.m_nPort - 1].Connect(plug.m_nPort, plug.m_nDeviceClass);
    }
    const NTSTATUS status = SetPresent(device, true);
    if (!NT_SUCCESS(status))
        EmptyPort(plug.m_nPort);
    return status;
}

NTSTATUS UnplugDevice(ULONG port)
{
    if (!IsPort(port))
        return STATUS_INVALID_PARAMETER;
    EmptyPort(port);
    return SetPresent(UsbDevice(port), false);
}

NTSTATUS SetPortAnswers(const PortAnswers& answers)
{
    if (!IsPort(answers.m_nPort))
        return STATUS_INVALID_PARAMETER;
    const DeviceLock lock;
    g_ports[answers.m_nPort - 1].Set(answers);
    return STATUS_SUCCESS;
}

NTSTATUS SetReportedPorts(ULONG count)
{
    if (count > g_nMostReportedPorts)
        return STATUS_INVALID_PARAMETER;
    const DeviceLock lock;
    g_nReportedPorts = count;
    return STATUS_SUCCESS;
}

void CountHub(Counters& counters)
{
    const DeviceLock lock;
    counters.m_nHubOpens = g_counters.m_nHubOpens;
    counters.m_nNodeRequests = g_counters.m_nNodeRequests;
    counters.m_nConnectionRequests = g_counters.m_nConnectionRequests;
    counters.m_nDriverKeyRequests = g_counters.m_nDriverKeyRequests;
}
} // namespace Simulator::Devices
