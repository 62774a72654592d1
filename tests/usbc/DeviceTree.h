#pragma once

#include "simulator/redirect/ImportRedirection.h"

#include <windows.h>

#include <setupapi.h>

#include <cfgmgr32.h>

#include <optional>
#include <string>
#include <vector>

namespace Tests
{
struct DeviceInterface
{
    GUID m_class{};
    std::wstring m_strPath;
};

struct Device
{
    std::wstring m_strInstanceId;
    std::wstring m_strDriverKey; // empty: the device has no driver
    DEVINST m_parent = 0;        // 0: none
    std::vector<DeviceInterface> m_lstInterfaces;
    bool m_bPresent = true;
};

// The devices of a machine, as the setup and configuration functions that the program imports tell of them. Every call
// is journalled with its parameters and may fail by plan; sets that were not given back are live objects.
class DeviceTree
{
public:
    // One at a time.
    DeviceTree();
    DeviceTree(const DeviceTree&) = delete;
    DeviceTree& operator=(const DeviceTree&) = delete;

    // What other devices name as their parent.
    DEVINST Add(Device device);

    std::vector<Device> m_lstDevices;
    // Odd answers: what the size queries say instead of the truth, and that they work although they have no buffer.
    std::optional<DWORD> m_detailSize;
    std::optional<DWORD> m_driverKeySize;
    std::optional<DWORD> m_instanceIdSize;
    bool m_bSizeQueryWorks = false;
    // Last-error code that a call for the path of an interface leaves when it works.
    DWORD m_dwStaleError = ERROR_SUCCESS;

private:
    Simulator::Redirection<decltype(SetupDiGetClassDevsW)> m_getClassDevs;
    Simulator::Redirection<decltype(SetupDiDestroyDeviceInfoList)> m_destroy;
    Simulator::Redirection<decltype(SetupDiEnumDeviceInfo)> m_enumDevice;
    Simulator::Redirection<decltype(SetupDiEnumDeviceInterfaces)> m_enumInterface;
    Simulator::Redirection<decltype(SetupDiGetDeviceInstanceIdW)> m_instanceId;
    Simulator::Redirection<decltype(SetupDiGetDeviceRegistryPropertyW)> m_property;
    Simulator::Redirection<decltype(SetupDiGetDeviceInterfaceDetailW)> m_detail;
    Simulator::Redirection<decltype(CM_Get_Parent)> m_parent;
    Simulator::Redirection<decltype(CM_Get_Device_IDW)> m_deviceId;
};
} // namespace Tests
