#include "usbc/UsbHub.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <cwchar>
#include <utility>
#include <vector>

namespace
{
// A key name of the registry has at most 255 characters, and a driver key name is two of them.
constexpr ULONG g_dwLargestDriverKey = 4096;

using DriverKey = USB_NODE_CONNECTION_DRIVERKEY_NAME;

// Input and output are the same buffer, as hubs expect it.
bool SendRequest(HANDLE hub, DWORD code, void* buffer, DWORD size) noexcept
{
    DWORD returned = 0;
    return DeviceIoControl(hub, code, buffer, size, buffer, size, &returned, nullptr) != FALSE;
}
} // namespace

bool ReadNodeInformation(HANDLE hub, USB_NODE_INFORMATION& node) noexcept
{
    return SendRequest(hub, IOCTL_USB_GET_NODE_INFORMATION, &node, sizeof(node));
}

bool UsbPortConnection::Read(HANDLE hub, ULONG port) noexcept
{
    reinterpret_cast<USB_NODE_CONNECTION_INFORMATION_EX*>(m_buffer)->ConnectionIndex = port;
    return SendRequest(hub, IOCTL_USB_GET_NODE_CONNECTION_INFORMATION_EX, m_buffer, sizeof(m_buffer));
}

const USB_NODE_CONNECTION_INFORMATION_EX& UsbPortConnection::Information() const noexcept
{
    return *reinterpret_cast<const USB_NODE_CONNECTION_INFORMATION_EX*>(m_buffer);
}

bool ReadDriverKeySize(HANDLE hub, ULONG port, ULONG& bytes) noexcept
{
    DriverKey driverKey{};
    driverKey.ConnectionIndex = port;
    if (!SendRequest(hub, IOCTL_USB_GET_NODE_CONNECTION_DRIVERKEY_NAME, &driverKey, sizeof(driverKey)))
        return false;
    bytes = driverKey.ActualLength;
    return true;
}

bool ReadDriverKeyName(HANDLE hub, ULONG port, ULONG bytes, std::wstring& name)
{
    const ULONG size = std::clamp<ULONG>(bytes, sizeof(DriverKey), g_dwLargestDriverKey);
    std::vector<BYTE> buffer(size);
    reinterpret_cast<DriverKey*>(buffer.data())->ConnectionIndex = port;
    if (!SendRequest(hub, IOCTL_USB_GET_NODE_CONNECTION_DRIVERKEY_NAME, buffer.data(), size))
        return false;
    // Behind two numbers of 4 bytes; half a character at the end of an odd size is left out.
    constexpr std::size_t offset = offsetof(DriverKey, DriverKeyName);
    std::wstring text((size - offset) / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), buffer.data() + offset, text.size() * sizeof(wchar_t));
    text.resize(wcsnlen(text.data(), text.size()));
    name = std::move(text);
    return true;
}
