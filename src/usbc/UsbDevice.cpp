#include "usbc/UsbDevice.h"

#include "shared/OwnerTypes.h"
#include "shared/TraceScope.h"
#include "usbc/DeviceInformationSet.h"
#include "usbc/UsbCState.h"
#include "usbc/UsbHub.h"
#include "usbc/UsbInterfaceClasses.h"

#include <cfgmgr32.h>

#include <cstddef>
#include <memory>
#include <new>
#include <string_view>

using Orvik::Shared::TraceScope;
using Orvik::Shared::UniqueHandle;

namespace
{
// Room for the hub's instance id, in characters with the terminating zero.
constexpr ULONG g_dwHubIdRoom = 200;
// The prefix of a device path, in characters.
constexpr std::size_t g_pathPrefix = 4;

// The name at the end of an arrival's header, which says how long it is.
std::wstring InterfaceName(const DEV_BROADCAST_HDR& header)
{
    constexpr std::size_t offset = offsetof(DEV_BROADCAST_DEVICEINTERFACE_W, dbcc_name);
    if (header.dbch_size <= offset)
        return {};
    const wchar_t* const name = reinterpret_cast<const DEV_BROADCAST_DEVICEINTERFACE_W&>(header).dbcc_name;
    return {name, wcsnlen(name, (header.dbch_size - offset) / sizeof(wchar_t))};
}

// "\\?\USB#VID_1234&PID_5678#1#{class}" names the device USB\VID_1234&PID_5678\1; a name of another form none.
std::wstring InstanceIdFromName(std::wstring_view name)
{
    if (name.size() < g_pathPrefix)
        return {};
    name.remove_prefix(g_pathPrefix);
    const std::size_t end = name.rfind(L'#');
    if (end == std::wstring_view::npos)
        return {};
    std::wstring instanceId(name.substr(0, end));
    for (wchar_t& c : instanceId)
    {
        if (c == L'#')
            c = L'\\';
    }
    return instanceId;
}

// Instance id of the device's parent; empty when it cannot be had.
std::wstring ParentInstanceId(const TraceScope& trace, DEVINST device)
{
    DEVINST parent = 0;
    if (const CONFIGRET result = CM_Get_Parent(&parent, device, 0); result != CR_SUCCESS)
    {
        trace.Information(L"CM_Get_Parent failed.  Error= %d", static_cast<int>(result));
        return {};
    }
    wchar_t szInstanceId[g_dwHubIdRoom]{};
    if (CM_Get_Device_IDW(parent, szInstanceId, g_dwHubIdRoom, 0) != CR_SUCCESS)
        return {};
    return {szInstanceId, wcsnlen(szInstanceId, g_dwHubIdRoom)};
}

UniqueHandle OpenHub(const TraceScope& trace, const std::wstring& path)
{
    const HANDLE hub = CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
    if (hub != INVALID_HANDLE_VALUE && hub != nullptr)
        return UniqueHandle(hub);
    trace.Information(L"CreateFile failed, GetLastError = 0x%x", GetLastError());
    return nullptr;
}

void ExamineHub(const TraceScope& trace, const std::wstring& path)
{
    const UniqueHandle hub = OpenHub(trace, path);
    if (!hub)
        return;
    trace.Verbose(L"Hub found, now read descriptor of each port ");
    const std::unique_ptr<USB_NODE_INFORMATION> node(new (std::nothrow) USB_NODE_INFORMATION{});
    if (!node)
    {
        trace.Information(L"Allocate some space for a USB_NODE_INFORMATION structure failed, GetLastError = 0x%x",
                          GetLastError());
        return;
    }
    if (!ReadNodeInformation(hub.get(), *node))
    {
        trace.Information(L"DeviceIoControl failed, GetLastError = 0x%x", GetLastError());
        return;
    }
    CUsbDevice::GetDescriptor(hub.get(), node->u.HubInformation.HubDescriptor.bNumberOfPorts);
}

void ExamineParentOf(const TraceScope& trace, DEVINST device)
{
    const std::wstring hubId = ParentInstanceId(trace, device);
    if (hubId.empty())
        return;
    const std::wstring hubName = CUsbDevice::GetHubName(hubId);
    trace.Verbose(L"Hub name: %s", hubName.c_str());
    ExamineHub(trace, hubName);
}

// The path of the first interface of the hub that the set has; empty when it cannot be had.
std::wstring HubPath(const DeviceInformationSet& hubs, SP_DEVINFO_DATA& device)
{
    std::wstring path;
    SP_DEVICE_INTERFACE_DATA deviceInterface{};
    if (!hubs.EnumInterface(&device, g_usbHubClass, 0, deviceInterface) ||
        FAILED(hubs.ReadDevicePath(deviceInterface, path)))
        return {};
    return path;
}
} // namespace

void CUsbDevice::Init(HWND /*window*/, const DEV_BROADCAST_HDR* header)
{
    const TraceScope trace(ORVIK_FUNCTION);
    try
    {
        if (header == nullptr)
            return;
        const std::wstring name = InterfaceName(*header);
        trace.Information(L"USB device inserted:  %s", name.c_str());
        // Emptied first: without memory for the new one no device matches.
        g_strArrivedInstanceId.clear();
        g_strArrivedInstanceId = InstanceIdFromName(name);
        GetDeviceInfo();
    }
    catch (...)
    {
        trace.Information(L"Exception occurred");
    }
}

void CUsbDevice::GetDeviceInfo()
{
    const TraceScope trace(ORVIK_FUNCTION);
    try
    {
        const DeviceInformationSet devices(&g_usbDeviceClass, DIGCF_ALLCLASSES | DIGCF_DEVICEINTERFACE);
        if (!devices)
        {
            trace.Information(L"SetupDiGetClassDevs failed, GetLastError = 0x%x", GetLastError());
            return;
        }
        SP_DEVINFO_DATA device{};
        for (DWORD index = 0; devices.EnumDevice(index, device); ++index)
        {
            const std::optional<std::wstring> instanceId = devices.InstanceId(device);
            if (!instanceId)
            {
                trace.Information(L"SetupDiGetDeviceInstanceId failed, GetLastError = 0x%x", GetLastError());
                continue;
            }
            trace.Verbose(L"Device instance id =%s", g_strArrivedInstanceId.c_str());
            trace.Verbose(L"  Enum instance id =%s", instanceId->c_str());
            if (!IsArrivedDevice(*instanceId))
                continue;
            ExamineParentOf(trace, device.DevInst);
            return;
        }
    }
    catch (...)
    {
        trace.Information(L"Exception occurred. GetLastError = 0x%x", GetLastError());
    }
}

bool CUsbDevice::IsArrivedDevice(std::wstring_view instanceId)
{
    return !g_strArrivedInstanceId.empty() && IsSameInstanceId(instanceId, g_strArrivedInstanceId);
}

std::wstring CUsbDevice::GetHubName(const std::wstring& hubInstanceId)
{
    const TraceScope trace(ORVIK_FUNCTION);
    try
    {
        const DeviceInformationSet hubs(&g_usbHubClass, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
        SP_DEVINFO_DATA device{};
        for (DWORD index = 0; hubs && hubs.EnumDevice(index, device); ++index)
        {
            const std::optional<std::wstring> instanceId = hubs.InstanceId(device);
            if (instanceId && IsSameInstanceId(*instanceId, hubInstanceId))
                return HubPath(hubs, device);
        }
    }
    catch (...)
    {
        trace.Information(L"Exception occurred. GetLastError = 0x%x", GetLastError());
    }
    return {};
}
