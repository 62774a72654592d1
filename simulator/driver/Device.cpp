#include "simulator/driver/Device.h"

namespace Simulator::Devices
{
namespace
{
struct Extension
{
    Device* m_pDevice;
};

// A copy in memory that the system frees; null when there is none.
wchar_t* CopyForSystem(const wchar_t* text)
{
    UNICODE_STRING source;
    RtlInitUnicodeString(&source, text);
    const SIZE_T size = source.Length + sizeof(wchar_t);
    auto* const copy = static_cast<wchar_t*>(ExAllocatePool(PagedPool, size));
    if (copy != nullptr)
        RtlCopyMemory(copy, text, size);
    return copy;
}
} // namespace

NTSTATUS Create(DRIVER_OBJECT* driver, Device& device)
{
    UNICODE_STRING name;
    RtlInitUnicodeString(&name, device.m_pName);
    const NTSTATUS status =
        IoCreateDevice(driver, sizeof(Extension), &name, FILE_DEVICE_UNKNOWN, 0, FALSE, &device.m_pObject);
    if (!NT_SUCCESS(status))
        return status;
    static_cast<Extension*>(device.m_pObject->DeviceExtension)->m_pDevice = &device;
    device.m_pObject->Flags &= ~static_cast<ULONG>(DO_DEVICE_INITIALIZING);
    return status;
}

Device& DeviceOf(DEVICE_OBJECT* object)
{
    return *static_cast<Extension*>(object->DeviceExtension)->m_pDevice;
}

NTSTATUS SetPresent(Device& device, bool present)
{
    if (device.m_bPresent == present)
        return STATUS_SUCCESS;
    if (device.m_link.Buffer == nullptr)
    {
        const NTSTATUS status =
            IoRegisterDeviceInterface(device.m_pObject, device.m_pInterfaceClass, nullptr, &device.m_link);
        if (!NT_SUCCESS(status))
            return status;
    }
    const NTSTATUS status = IoSetDeviceInterfaceState(&device.m_link, present ? TRUE : FALSE);
    if (NT_SUCCESS(status))
        device.m_bPresent = present;
    return status;
}

NTSTATUS AnswerPlugAndPlay(const Device& device, IRP* irp)
{
    const IO_STACK_LOCATION* const location = IoGetCurrentIrpStackLocation(irp);
    if (location->MinorFunction != IRP_MN_QUERY_ID || device.m_pIdentity == nullptr)
        return Complete(irp, STATUS_NOT_SUPPORTED);
    const wchar_t* id = nullptr;
    if (location->Parameters.QueryId.IdType == BusQueryDeviceID)
        id = device.m_pIdentity->m_pDeviceId;
    else if (location->Parameters.QueryId.IdType == BusQueryInstanceID)
        id = device.m_pIdentity->m_pInstance;
    else
        return Complete(irp, STATUS_NOT_SUPPORTED);
    const wchar_t* const copy = CopyForSystem(id);
    return Complete(irp, copy != nullptr ? STATUS_SUCCESS : STATUS_NO_MEMORY, reinterpret_cast<ULONG_PTR>(copy));
}
} // namespace Simulator::Devices
