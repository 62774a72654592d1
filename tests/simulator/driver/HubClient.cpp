#include "tests/simulator/driver/HubClient.h"

#include "tests/simulator/driver/DeviceFilesTest.h"

#include <cstring>

HubClient::HubClient()
{
    const std::vector<std::wstring> paths = PresentPaths(HubInterface);
    if (paths.size() != 1)
        return;
    const HANDLE hub =
        CreateFileW(paths.front().c_str(), GENERIC_WRITE, FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
    if (hub != INVALID_HANDLE_VALUE)
        m_hHub.reset(hub);
}

DWORD HubClient::Send(DWORD code, void* buffer, DWORD size)
{
    m_dwSize = 0;
    const BOOL isAnswered = DeviceIoControl(m_hHub.get(), code, buffer, size, buffer, size, &m_dwSize, nullptr);
    return isAnswered ? ERROR_SUCCESS : GetLastError();
}

DWORD HubClient::AskNode(USB_NODE_INFORMATION& node)
{
    return Send(IOCTL_USB_GET_NODE_INFORMATION, &node, sizeof(node));
}

DWORD HubClient::AskConnection(ULONG port, USB_NODE_CONNECTION_INFORMATION_EX& information)
{
    information = {};
    information.ConnectionIndex = port;
    return Send(IOCTL_USB_GET_NODE_CONNECTION_INFORMATION_EX, &information, sizeof(information));
}

DWORD HubClient::AskDriverKeyLength(ULONG port, ULONG& bytes)
{
    USB_NODE_CONNECTION_DRIVERKEY_NAME key{};
    key.ConnectionIndex = port;
    const DWORD error = Send(IOCTL_USB_GET_NODE_CONNECTION_DRIVERKEY_NAME, &key, sizeof(key));
    bytes = key.ActualLength;
    return error;
}

DWORD HubClient::AskDriverKey(ULONG port, ULONG bytes, std::wstring& name)
{
    constexpr std::size_t offset = offsetof(USB_NODE_CONNECTION_DRIVERKEY_NAME, DriverKeyName);
    std::vector<BYTE> buffer(bytes);
    std::memcpy(buffer.data(), &port, sizeof(port));
    const DWORD error = Send(IOCTL_USB_GET_NODE_CONNECTION_DRIVERKEY_NAME, buffer.data(), bytes);
    name.clear();
    if (error == ERROR_SUCCESS && m_dwSize > offset)
    {
        name.resize((m_dwSize - offset) / sizeof(wchar_t));
        std::memcpy(name.data(), buffer.data() + offset, name.size() * sizeof(wchar_t));
    }
    return error;
}
