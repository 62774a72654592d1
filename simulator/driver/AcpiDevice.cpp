#include "simulator/driver/AcpiDevice.h"

#include "simulator/driver/AcpiQueue.h"
#include "simulator/driver/PendingRequests.h"

namespace Simulator::Devices
{
namespace
{
constexpr GUID g_interfaceClass = {0x38E184EA, 0x2138, 0x468C, {0xAE, 0xE5, 0x12, 0x80, 0x53, 0x2B, 0x5C, 0x2D}};
// Device type 0x8084, function 0xCEA, buffered, any access.
constexpr ULONG g_nWaitForEventCode = 0x808433A8;

// All of it under the lock.
constinit PendingRequests g_pending;
constinit PendingRequests g_watchers;
constinit AcpiQueue g_queue;
constinit Counters g_counters{};
constinit NTSTATUS g_refusal = STATUS_SUCCESS;
constinit bool g_bRemoved = false;

NTSTATUS Answer(IRP* irp, const AcpiEvent& event)
{
    const ULONG room = IoGetCurrentIrpStackLocation(irp)->Parameters.DeviceIoControl.OutputBufferLength;
    auto* const buffer = static_cast<unsigned char*>(irp->AssociatedIrp.SystemBuffer);
    const ULONG length = buffer == nullptr || room == 0 ? 0 : event.m_nLength;
    if (length != 0)
        *buffer = static_cast<unsigned char>(event.m_nData);
    return Complete(irp, STATUS_SUCCESS, length);
}

NTSTATUS OpenAcpi()
{
    const DeviceLock lock;
    if (g_bRemoved)
        return STATUS_NO_SUCH_DEVICE;
    ++g_counters.m_nOpens;
    return STATUS_SUCCESS;
}

// A client that has gone does not take its requests along under Wine.
void CloseAcpi(const FILE_OBJECT* file)
{
    const ULONG count = CompleteAll(g_pending, STATUS_CANCELLED, file);
    const DeviceLock lock;
    g_counters.m_nCancelled += count;
}

// What becomes of a new request: STATUS_SUCCESS with an event, STATUS_PENDING, or how it fails.
NTSTATUS Accept(IRP* irp, AcpiEvent& event)
{
    const DeviceLock lock;
    ++g_counters.m_nWaits;
    if (g_bRemoved)
        return STATUS_DEVICE_REMOVED;
    if (g_refusal != STATUS_SUCCESS)
    {
        ++g_counters.m_nRefused;
        return g_refusal;
    }
    if (g_queue.Take(event))
    {
        ++g_counters.m_nCompleted;
        return STATUS_SUCCESS;
    }
    return g_pending.Add(irp);
}

NTSTATUS ControlAcpi(const ControlRequest& request)
{
    if (request.Code() != g_nWaitForEventCode)
        return request.End(STATUS_INVALID_DEVICE_REQUEST);
    AcpiEvent event{};
    const NTSTATUS status = Accept(request.Irp(), event);
    if (status == STATUS_SUCCESS)
        return Answer(request.Irp(), event);
    if (status != STATUS_PENDING)
        return request.End(status);
    // From here on the request may be gone.
    CompleteAll(g_watchers, STATUS_SUCCESS);
    return STATUS_PENDING;
}

constinit Device g_device = {
    L"\\Device\\OrvikAcpiEvents", &AcpiIdentity, &g_interfaceClass, &OpenAcpi, &CloseAcpi, &ControlAcpi};
} // namespace

Device& AcpiDevice()
{
    return g_device;
}

void InitializeAcpiDevice()
{
    g_pending.Initialize();
    g_watchers.Initialize();
}

void ResetAcpiDevice()
{
    CompleteAll(g_pending, STATUS_CANCELLED);
    {
        const DeviceLock lock;
        g_queue.Clear();
        g_counters = {};
        g_pending.m_nCancelled = 0;
        g_refusal = STATUS_SUCCESS;
    }
    SetAcpiPresence(true);
}

NTSTATUS CompleteAcpiRequest(const AcpiEvent& event)
{
    if (event.m_nLength > 1 || event.m_nData > 0xFF)
        return STATUS_INVALID_PARAMETER;
    IRP* irp = nullptr;
    {
        const DeviceLock lock;
        irp = g_pending.Take();
        if (irp == nullptr)
            return g_queue.Put(event) ? STATUS_SUCCESS : STATUS_DEVICE_BUSY;
        ++g_counters.m_nCompleted;
    }
    return Answer(irp, event);
}

NTSTATUS FailAcpiRequest(NTSTATUS status)
{
    IRP* irp = nullptr;
    {
        const DeviceLock lock;
        irp = g_pending.Take();
        if (irp == nullptr)
            return STATUS_NOT_FOUND;
        ++g_counters.m_nFailed;
    }
    Complete(irp, status);
    return STATUS_SUCCESS;
}

void RefuseAcpiRequests(NTSTATUS status)
{
    const DeviceLock lock;
    g_refusal = status;
}

NTSTATUS SetAcpiPresence(bool present)
{
    {
        const DeviceLock lock;
        g_bRemoved = !present;
    }
    const ULONG failed = present ? 0 : CompleteAll(g_pending, STATUS_DEVICE_REMOVED);
    {
        const DeviceLock lock;
        g_counters.m_nFailed += failed;
    }
    return SetPresent(g_device, present);
}

NTSTATUS WaitForAcpiRequest(const ControlRequest& request)
{
    NTSTATUS status = STATUS_SUCCESS;
    {
        const DeviceLock lock;
        if (g_pending.Count() == 0)
            status = g_watchers.Add(request.Irp());
    }
    return status == STATUS_PENDING ? status : request.End(status);
}

void StopWaitingForAcpiRequest(const FILE_OBJECT* file)
{
    CompleteAll(g_watchers, STATUS_CANCELLED, file);
}

void CountAcpi(Counters& counters)
{
    const DeviceLock lock;
    counters = g_counters;
    counters.m_nPending = g_pending.Count();
    counters.m_nQueued = g_queue.Count();
    counters.m_nCancelled += g_pending.m_nCancelled;
}
} // namespace Simulator::Devices
