#pragma once

#include <windows.h>

#include <winioctl.h>

#include <usbioctl.h>

#include <cstddef>
#include <string>

// The requests that a USB hub answers, each on an open handle of the hub. A request that fails leaves the last-error
// code of the system. What a hub does not fill in reads as 0, and nothing is read behind what was asked for.

static_assert(sizeof(USB_NODE_INFORMATION) == 76);
static_assert(sizeof(USB_NODE_CONNECTION_DRIVERKEY_NAME) == 10);
static_assert(sizeof(USB_NODE_CONNECTION_INFORMATION_EX) == 35);
static_assert(IOCTL_USB_GET_NODE_INFORMATION == 0x220408);
static_assert(IOCTL_USB_GET_NODE_CONNECTION_INFORMATION_EX == 0x220448);
static_assert(IOCTL_USB_GET_NODE_CONNECTION_DRIVERKEY_NAME == 0x220420);

// node: all zero before.
bool ReadNodeInformation(HANDLE hub, USB_NODE_INFORMATION& node) noexcept;

// Connection information of one port, with room for the pipe list behind it; all zero until it is read.
class UsbPortConnection
{
public:
    bool Read(HANDLE hub, ULONG port) noexcept;
    [[nodiscard]] const USB_NODE_CONNECTION_INFORMATION_EX& Information() const noexcept;

private:
    // Twice the endpoints that one direction of a device can have.
    static constexpr std::size_t MostPipes = 32;

    BYTE m_buffer[sizeof(USB_NODE_CONNECTION_INFORMATION_EX) + MostPipes * sizeof(USB_PIPE_INFO)]{};
};

// Bytes that the driver key name of the device at a port needs, with the structure around it.
bool ReadDriverKeySize(HANDLE hub, ULONG port, ULONG& bytes) noexcept;
// size: from ReadDriverKeySize. A name that is longer than any driver key is asked for in part only.
bool ReadDriverKeyName(HANDLE hub, ULONG port, ULONG bytes, std::wstring& name);
