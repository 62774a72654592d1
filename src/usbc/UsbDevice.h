#pragma once

#include <windows.h>

#include <dbt.h>

#include <string>
#include <string_view>

// Finds out whether a USB device that arrived is a billboard device: looks the device up, asks each port of its hub
// and sets the process-wide flag from the device's class. Main thread. Every failure is logged, ends or skips as its
// operation says, and leaves the flag as it was; nothing is raised.
class CUsbDevice
{
public:
    // For the arrival of a device interface: header is a DEV_BROADCAST_DEVICEINTERFACE_W, its name is read up to its
    // size. Without a header nothing happens.
    static void Init(HWND window, const DEV_BROADCAST_HDR* header);

    // Looks the arrived device and its hub up and examines the hub's ports.
    static void GetDeviceInfo();

    // Device path of the present hub with that instance id; empty when it cannot be had.
    [[nodiscard]] static std::wstring GetHubName(const std::wstring& hubInstanceId);

    // Examines ports 1 to numberOfPorts of an open hub; one that fails is passed over.
    static void GetDescriptor(HANDLE hub, int numberOfPorts);

    // Driver key name of the device at a hub's port; empty when it cannot be had.
    [[nodiscard]] static std::wstring GetDriverKeyName(HANDLE hub, ULONG port);

    // Instance id of the present device with that driver key name; empty when there is none. A device that cannot be
    // read is passed over.
    [[nodiscard]] static std::wstring GetDeviceInstFromDriverName(const std::wstring& driverKeyName);

    // Whether the id is that of the device that arrived last, in any case; no id is while none is known.
    [[nodiscard]] static bool IsArrivedDevice(std::wstring_view instanceId);
};
