#include "simulator/driver/ControlDevice.h"

#include "simulator/driver/AcpiDevice.h"
#include "simulator/driver/ProbeDevice.h"
#include "simulator/driver/UsbHub.h"

namespace Simulator::Devices
{
namespace
{
constexpr wchar_t g_szName[] = L"\\Device\\OrvikDevices";
constexpr wchar_t g_szLink[] = L"\\??\\OrvikDevices";

NTSTATUS Reset(const ControlRequest& request)
{
    ResetAcpiDevice();
    ResetUsbHub();
    return request.End(STATUS_SUCCESS);
}

NTSTATUS Count(const ControlRequest& request)
{
    Counters counters{};
    CountAcpi(counters);
    CountHub(counters);
    return request.Answer(&counters, sizeof(counters));
}

NTSTATUS Refuse(NTSTATUS status)
{
    RefuseAcpiRequests(status);
    return STATUS_SUCCESS;
}

// Hands the input to the function and ends the request with what it returns.
template <class Input, class Function>
NTSTATUS Forward(const ControlRequest& request, Function function)
{
    const auto* const input = request.In<Input>();
    return request.End(input != nullptr ? function(*input) : STATUS_INVALID_PARAMETER);
}

NTSTATUS ControlAcpiDevice(const ControlRequest& request)
{
    switch (request.Code())
    {
    case CompleteCode:
        return Forward<AcpiEvent>(request, &CompleteAcpiRequest);
    case FailCode:
        return Forward<NTSTATUS>(request, &FailAcpiRequest);
    case RefuseCode:
        return Forward<NTSTATUS>(request, &Refuse);
    case WaitPendingCode:
        return WaitForAcpiRequest(request);
    case AcpiPresenceCode:
        return Forward<ULONG>(request, [](ULONG present) { return SetAcpiPresence(present != 0); });
    default:
        return request.End(STATUS_INVALID_DEVICE_REQUEST);
    }
}

NTSTATUS Control(const ControlRequest& request)
{
    switch (request.Code())
    {
    case ResetCode:
        return Reset(request);
    case CountersCode:
        return Count(request);
    case PlugCode:
        return Forward<Plug>(request, &PlugDevice);
    case UnplugCode:
        return Forward<ULONG>(request, &UnplugDevice);
    case PortAnswersCode:
        return Forward<PortAnswers>(request, &SetPortAnswers);
    case ReportedPortsCode:
        return Forward<ULONG>(request, &SetReportedPorts);
    case ProbeCode:
        return request.End(ProbeArrivals());
    default:
        return ControlAcpiDevice(request);
    }
}

constinit Device g_device = {g_szName, nullptr, nullptr, &OpenAlways, &StopWaitingForAcpiRequest, &Control};
} // namespace

Device& ControlDevice()
{
    return g_device;
}

NTSTATUS NameControlDevice()
{
    UNICODE_STRING name;
    UNICODE_STRING link;
    RtlInitUnicodeString(&name, g_szName);
    RtlInitUnicodeString(&link, g_szLink);
    return IoCreateSymbolicLink(&link, &name);
}

void RemoveControlDeviceName()
{
    UNICODE_STRING link;
    RtlInitUnicodeString(&link, g_szLink);
    IoDeleteSymbolicLink(&link);
}
} // namespace Simulator::Devices
