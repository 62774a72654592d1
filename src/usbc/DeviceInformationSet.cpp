#include "usbc/DeviceInformationSet.h"

#include "shared/LastErrorResult.h"

#include <algorithm>
#include <cstddef>
#include <cwchar>
#include <vector>

namespace
{
// Room for an instance id, in characters with the terminating zero.
constexpr DWORD g_dwInstanceIdRoom = 520;

// Sizes that a query may tell. All three are texts that the system keeps as counted strings, whose length in bytes has
// 16 bits: a size above 64 KiB is a mistake of a driver, not a reason to ask for gigabytes.
// Characters; an instance id has 200 at most (MAX_DEVICE_ID_LEN).
constexpr DWORD g_dwLargestInstanceId = 0x10000 / sizeof(wchar_t);
// Bytes; a driver key is two key names of the registry, of 255 characters at most each.
constexpr DWORD g_dwLargestDriverProperty = 0x10000;
// Bytes; the path of an interface is the name of a symbolic link, with 4 bytes before it.
constexpr DWORD g_dwLargestInterfaceDetail = 0x10000;

using InterfaceDetail = SP_DEVICE_INTERFACE_DETAIL_DATA_W;
static_assert(sizeof(InterfaceDetail) == 8, "what the system expects in the size field");

// The text before the first zero.
std::wstring TextOf(const wchar_t* text, std::size_t room)
{
    return {text, wcsnlen(text, room)};
}

// Whether a size is one that can be; otherwise the last-error code says that the query gave bad data.
bool IsWithin(DWORD size, DWORD largest) noexcept
{
    if (size <= largest)
        return true;
    SetLastError(ERROR_INVALID_DATA);
    return false;
}

// The result of a query for a size; any other error of it stays what it is.
bool ResultOfSizeQuery(BOOL works, DWORD size, DWORD largest) noexcept
{
    if (works == FALSE && GetLastError() != ERROR_INSUFFICIENT_BUFFER)
        return false;
    return IsWithin(size, largest) && works != FALSE;
}
} // namespace

DeviceInformationSet::DeviceInformationSet(const GUID* interfaceClass, DWORD flags) noexcept
{
    const HDEVINFO list = SetupDiGetClassDevsW(interfaceClass, nullptr, nullptr, flags);
    if (list != INVALID_HANDLE_VALUE)
        m_hSet.reset(list);
}

bool DeviceInformationSet::EnumDevice(DWORD index, SP_DEVINFO_DATA& device) const noexcept
{
    device = {};
    device.cbSize = sizeof(device);
    return SetupDiEnumDeviceInfo(m_hSet.get(), index, &device) != FALSE;
}

bool DeviceInformationSet::EnumInterface(SP_DEVINFO_DATA* device, const GUID& interfaceClass, DWORD index,
                                         SP_DEVICE_INTERFACE_DATA& deviceInterface) const noexcept
{
    deviceInterface = {};
    deviceInterface.cbSize = sizeof(deviceInterface);
    return SetupDiEnumDeviceInterfaces(m_hSet.get(), device, &interfaceClass, index, &deviceInterface) != FALSE;
}

std::optional<std::wstring> DeviceInformationSet::InstanceId(SP_DEVINFO_DATA& device) const
{
    wchar_t szInstanceId[g_dwInstanceIdRoom]{};
    if (SetupDiGetDeviceInstanceIdW(m_hSet.get(), &device, szInstanceId, g_dwInstanceIdRoom, nullptr) == FALSE)
        return std::nullopt;
    return TextOf(szInstanceId, g_dwInstanceIdRoom);
}

bool DeviceInformationSet::InstanceIdSize(SP_DEVINFO_DATA& device, DWORD& characters) const noexcept
{
    characters = 0;
    const BOOL works = SetupDiGetDeviceInstanceIdW(m_hSet.get(), &device, nullptr, 0, &characters);
    return ResultOfSizeQuery(works, characters, g_dwLargestInstanceId);
}

bool DeviceInformationSet::ReadInstanceId(SP_DEVINFO_DATA& device, DWORD characters, std::wstring& instanceId) const
{
    std::vector<wchar_t> buffer(std::max<std::size_t>(characters, 1));
    if (SetupDiGetDeviceInstanceIdW(m_hSet.get(), &device, buffer.data(), characters, nullptr) == FALSE)
        return false;
    instanceId = TextOf(buffer.data(), buffer.size());
    return true;
}

bool DeviceInformationSet::DriverKeySize(SP_DEVINFO_DATA& device, DWORD& bytes) const noexcept
{
    bytes = 0;
    const BOOL works =
        SetupDiGetDeviceRegistryPropertyW(m_hSet.get(), &device, SPDRP_DRIVER, nullptr, nullptr, 0, &bytes);
    return ResultOfSizeQuery(works, bytes, g_dwLargestDriverProperty);
}

bool DeviceInformationSet::ReadDriverKey(SP_DEVINFO_DATA& device, DWORD bytes, std::wstring& driverKey) const
{
    // Room for half a character at the end of an odd size, which is then left out.
    std::vector<wchar_t> buffer(bytes / sizeof(wchar_t) + 1);
    if (SetupDiGetDeviceRegistryPropertyW(m_hSet.get(), &device, SPDRP_DRIVER, nullptr,
                                          reinterpret_cast<BYTE*>(buffer.data()), bytes, nullptr) == FALSE)
        return false;
    driverKey = TextOf(buffer.data(), bytes / sizeof(wchar_t));
    return true;
}

HRESULT DeviceInformationSet::ReadDevicePath(SP_DEVICE_INTERFACE_DATA& deviceInterface, std::wstring& path) const
{
    DWORD size = 0;
    if (SetupDiGetDeviceInterfaceDetailW(m_hSet.get(), &deviceInterface, nullptr, 0, &size, nullptr) != FALSE ||
        GetLastError() != ERROR_INSUFFICIENT_BUFFER || !IsWithin(size, g_dwLargestInterfaceDetail))
        return LastErrorResult();

    // Never less than the structure itself, however little the system asks for.
    std::vector<BYTE> buffer(std::max<std::size_t>(size, sizeof(InterfaceDetail)));
    auto* const detail = reinterpret_cast<InterfaceDetail*>(buffer.data());
    detail->cbSize = sizeof(InterfaceDetail);
    if (SetupDiGetDeviceInterfaceDetailW(m_hSet.get(), &deviceInterface, detail, size, nullptr, nullptr) == FALSE)
        return LastErrorResult();
    std::wstring found = TextOf(detail->DevicePath, (buffer.size() - offsetof(InterfaceDetail, DevicePath)) / 2);
    if (found.empty())
        return LastErrorResult();
    path = std::move(found);
    return S_OK;
}

bool IsSameInstanceId(std::wstring_view left, std::wstring_view right) noexcept
{
    return CompareStringOrdinal(left.data(), static_cast<int>(left.size()), right.data(),
                                static_cast<int>(right.size()), TRUE) == CSTR_EQUAL;
}
