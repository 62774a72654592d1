#pragma once

#include "usbc/OwnerTypes.h"

#include <windows.h>

#include <setupapi.h>

#include <optional>
#include <string>
#include <string_view>

// A device information set and what it tells of its devices. One thread. Each failure leaves the last-error code as the
// system set it. A query that tells a size above 64 KiB is a failure too, with ERROR_INVALID_DATA.
class DeviceInformationSet
{
public:
    // interfaceClass: null for all devices. flags: of SetupDiGetClassDevsW.
    DeviceInformationSet(const GUID* interfaceClass, DWORD flags) noexcept;

    explicit operator bool() const noexcept { return m_hSet != nullptr; }

    bool EnumDevice(DWORD index, SP_DEVINFO_DATA& device) const noexcept;
    // device: null for the interfaces of all devices.
    bool EnumInterface(SP_DEVINFO_DATA* device, const GUID& interfaceClass, DWORD index,
                       SP_DEVICE_INTERFACE_DATA& deviceInterface) const noexcept;

    // Instance id with room for 520 characters; nothing when it cannot be read.
    std::optional<std::wstring> InstanceId(SP_DEVINFO_DATA& device) const;
    // Instance id and driver property in two calls, the first of which asks for the size. The functions that follow
    // give the result of one such call; bytes and characters are as the system counts them.
    bool InstanceIdSize(SP_DEVINFO_DATA& device, DWORD& characters) const noexcept;
    bool ReadInstanceId(SP_DEVINFO_DATA& device, DWORD characters, std::wstring& instanceId) const;
    bool DriverKeySize(SP_DEVINFO_DATA& device, DWORD& bytes) const noexcept;
    bool ReadDriverKey(SP_DEVINFO_DATA& device, DWORD bytes, std::wstring& driverKey) const;

    // Device path of an interface. S_OK comes with a path that is not empty. A query for the size that works although
    // it has no buffer is a failure too.
    [[nodiscard]] HRESULT ReadDevicePath(SP_DEVICE_INTERFACE_DATA& deviceInterface, std::wstring& path) const;

private:
    UniqueDeviceInfoList m_hSet;
};

// Instance ids are the same in any case: the system reports them in upper case, an interface name may not.
[[nodiscard]] bool IsSameInstanceId(std::wstring_view left, std::wstring_view right) noexcept;
