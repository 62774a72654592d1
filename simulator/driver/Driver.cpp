#include "simulator/driver/AcpiDevice.h"
#include "simulator/driver/ControlDevice.h"
#include "simulator/driver/PendingRequests.h"
#include "simulator/driver/ProbeDevice.h"
#include "simulator/driver/UsbDevices.h"
#include "simulator/driver/UsbHub.h"

// The driver of the simulated devices, for Wine alone. It is a service without an information file: its device objects
// answer for their ids themselves, and the keys of the device tree are written before it is started
// (simulator/devices/DriverInstallation.cpp).
namespace Simulator::Devices
{
namespace
{
constexpr ULONG g_nDeviceCount = PortCount + 4;

Device& DeviceAt(ULONG index)
{
    switch (index)
    {
    case 0:
        return ControlDevice();
    case 1:
        return AcpiDevice();
    case 2:
        return UsbHub();
    case 3:
        return ProbeDevice();
    default:
        return UsbDevice(index - 3);
    }
}

NTSTATUS NTAPI OnCreate(DEVICE_OBJECT* object, IRP* irp)
{
    return Complete(irp, DeviceOf(object).m_pfnOpen());
}

// Windows sends a clean-up first, Wine only a close.
NTSTATUS NTAPI OnCleanupOrClose(DEVICE_OBJECT* object, IRP* irp)
{
    DeviceOf(object).m_pfnClose(IoGetCurrentIrpStackLocation(irp)->FileObject);
    return Complete(irp, STATUS_SUCCESS);
}

NTSTATUS NTAPI OnDeviceControl(DEVICE_OBJECT* object, IRP* irp)
{
    return DeviceOf(object).m_pfnControl(ControlRequest(irp));
}

NTSTATUS NTAPI OnPlugAndPlay(DEVICE_OBJECT* object, IRP* irp)
{
    return AnswerPlugAndPlay(DeviceOf(object), irp);
}

void NTAPI OnUnload(DRIVER_OBJECT*)
{
    RemoveControlDeviceName();
    for (ULONG i = 0; i < g_nDeviceCount; ++i)
    {
        Device& device = DeviceAt(i);
        SetPresent(device, false);
        if (device.m_pObject != nullptr)
            IoDeleteDevice(device.m_pObject);
    }
}

NTSTATUS Start(DRIVER_OBJECT* driver)
{
    for (ULONG i = 0; i < g_nDeviceCount; ++i)
    {
        if (const NTSTATUS status = Create(driver, DeviceAt(i)); !NT_SUCCESS(status))
            return status;
    }
    if (const NTSTATUS status = SetPresent(AcpiDevice(), true); !NT_SUCCESS(status))
        return status;
    if (const NTSTATUS status = SetPresent(UsbHub(), true); !NT_SUCCESS(status))
        return status;
    // Last: whoever can open it finds everything in place.
    return NameControlDevice();
}
} // namespace
} // namespace Simulator::Devices

extern "C" NTSTATUS NTAPI DriverEntry(DRIVER_OBJECT* driver, UNICODE_STRING*)
{
    using namespace Simulator::Devices;
    DeviceLock::Initialize();
    InitializeAcpiDevice();
    InitializeUsbHub();
    driver->MajorFunction[IRP_MJ_CREATE] = &OnCreate;
    driver->MajorFunction[IRP_MJ_CLEANUP] = &OnCleanupOrClose;
    driver->MajorFunction[IRP_MJ_CLOSE] = &OnCleanupOrClose;
    driver->MajorFunction[IRP_MJ_DEVICE_CONTROL] = &OnDeviceControl;
    driver->MajorFunction[IRP_MJ_PNP] = &OnPlugAndPlay;
    driver->DriverUnload = &OnUnload;
    return Start(driver);
}
