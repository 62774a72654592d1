#pragma once

#include "simulator/driver/DeviceControl.h"
#include "simulator/driver/Request.h"

namespace Simulator::Devices
{
// One device of the driver: its object, what it tells of itself, and who answers for it.
struct Device
{
    const wchar_t* m_pName;            // of the object, "\Device\..."
    const DeviceIdentity* m_pIdentity; // null for the control device, which is no device of the plug-and-play tree
    const GUID* m_pInterfaceClass;
    NTSTATUS (*m_pfnOpen)();
    void (*m_pfnClose)(const FILE_OBJECT* file);
    NTSTATUS (*m_pfnControl)(const ControlRequest& request);

    DEVICE_OBJECT* m_pObject = nullptr;
    UNICODE_STRING m_link{}; // of the interface; empty until it has been present once
    bool m_bPresent = false;
};

// Makes the device's object; it is not present yet.
NTSTATUS Create(DRIVER_OBJECT* driver, Device& device);
// The device that an object is.
[[nodiscard]] Device& DeviceOf(DEVICE_OBJECT* object);

// Lets the device arrive or go, as the system sees it: its interface appears or disappears, with a message to those
// who asked for it.
NTSTATUS SetPresent(Device& device, bool present);

// Answers the system's questions for the device's ids; everything else is not supported.
NTSTATUS AnswerPlugAndPlay(const Device& device, IRP* irp);

inline NTSTATUS OpenAlways()
{
    return STATUS_SUCCESS;
}
inline void CloseQuietly(const FILE_OBJECT*) {}
} // namespace Simulator::Devices
