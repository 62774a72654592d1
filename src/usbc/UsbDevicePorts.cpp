#include "shared/TraceScope.h"
#include "usbc/DeviceInformationSet.h"
#include "usbc/UsbCState.h"
#include "usbc/UsbDevice.h"
#include "usbc/UsbHub.h"

#include <memory>
#include <new>

using Orvik::Shared::TraceScope;
namespace Level = Orvik::Shared::Level;

namespace
{
// USB device class of a billboard device.
constexpr UCHAR g_billboardClass = 0x11;

void ExaminePort(const TraceScope& trace, HANDLE hub, ULONG port)
{
    const std::unique_ptr<UsbPortConnection> connection(new (std::nothrow) UsbPortConnection{});
    if (!connection)
    {
        trace.Information(L"connectionInfoEx = null.");
        return;
    }
    if (!connection->Read(hub, port))
    {
        trace.Information(L"cannot get info on this port: %d, move to next one.", static_cast<int>(port));
        return;
    }
    const USB_NODE_CONNECTION_INFORMATION_EX& information = connection->Information();
    if (information.ConnectionStatus != DeviceConnected)
        return;
    const std::wstring driverKeyName = CUsbDevice::GetDriverKeyName(hub, port);
    if (driverKeyName.empty() || !CUsbDevice::IsArrivedDevice(CUsbDevice::GetDeviceInstFromDriverName(driverKeyName)))
        return;
    const USB_DEVICE_DESCRIPTOR& device = information.DeviceDescriptor;
    trace.Information(L"bcdUSB = 0x%x", device.bcdUSB);
    trace.Information(L"BBID = 0x%x", device.bDeviceClass);
    trace.Information(L"bDeviceSubClass = 0x%x", device.bDeviceSubClass);
    trace.Information(L"idProduct = 0x%x", device.idProduct);
    trace.Information(L"bcdDevice = 0x%x", device.bcdDevice);
    g_bBillboardDevice = device.bDeviceClass == g_billboardClass;
}

// Whether the device has that driver key. One whose property cannot be read has not.
bool HasDriverKey(const TraceScope& trace, const DeviceInformationSet& devices, SP_DEVINFO_DATA& device,
                  const std::wstring& driverKeyName)
{
    DWORD bytes = 0;
    if (!devices.DriverKeySize(device, bytes) && GetLastError() != ERROR_INSUFFICIENT_BUFFER)
    {
        trace.Information(L"SetupDiGetDeviceRegistryProperty failed. GetLastError = 0x%x", GetLastError());
        return false;
    }
    std::wstring driverKey;
    if (!devices.ReadDriverKey(device, bytes, driverKey))
    {
        trace.Information(L"SetupDiGetDeviceRegistryProperty [2] failed. GetLastError = 0x%x", GetLastError());
        return false;
    }
    return driverKey == driverKeyName;
}

// Empty when it cannot be read.
std::wstring ReadInstanceId(const TraceScope& trace, const DeviceInformationSet& devices, SP_DEVINFO_DATA& device)
{
    DWORD characters = 0;
    if (!devices.InstanceIdSize(device, characters) && GetLastError() != ERROR_INSUFFICIENT_BUFFER)
    {
        trace.Information(L"SetupDiGetDeviceInstanceId failed. GetLastError = 0x%x", GetLastError());
        return {};
    }
    std::wstring instanceId;
    const bool isRead = devices.ReadInstanceId(device, characters, instanceId);
    Orvik::Shared::Log(isRead ? Level::Verbose : Level::Information, trace.FunctionName(),
                       L"SetupDiGetDeviceInstanceId [2] returns %d.", static_cast<int>(isRead));
    return instanceId;
}
} // namespace

void CUsbDevice::GetDescriptor(HANDLE hub, int numberOfPorts)
{
    const TraceScope trace(ORVIK_FUNCTION);
    try
    {
        trace.Verbose(L"Num ports = %d", numberOfPorts);
        for (int port = 1; port <= numberOfPorts; ++port)
        {
            trace.Verbose(L"port # = %d", port);
            ExaminePort(trace, hub, static_cast<ULONG>(port));
        }
    }
    catch (...)
    {
        trace.Information(L"Exception occurred. GetLastError = 0x%x", GetLastError());
    }
}

std::wstring CUsbDevice::GetDriverKeyName(HANDLE hub, ULONG port)
{
    const TraceScope trace(ORVIK_FUNCTION);
    try
    {
        ULONG bytes = 0;
        if (!ReadDriverKeySize(hub, port, bytes))
        {
            trace.Information(L"DeviceIoControl failed.  GetLastError: 0x%x", GetLastError());
            return {};
        }
        std::wstring name;
        if (!ReadDriverKeyName(hub, port, bytes, name))
            trace.Information(L"DeviceIoControl failed [2].  GetLastError: 0x%x", GetLastError());
        return name;
    }
    catch (...)
    {
        trace.Information(L"Exception occurred. GetLastError = 0x%x", GetLastError());
        return {};
    }
}

std::wstring CUsbDevice::GetDeviceInstFromDriverName(const std::wstring& driverKeyName)
{
    const TraceScope trace(ORVIK_FUNCTION);
    try
    {
        const DeviceInformationSet devices(nullptr, DIGCF_PRESENT | DIGCF_ALLCLASSES);
        if (!devices)
            return {};
        SP_DEVINFO_DATA device{};
        for (DWORD index = 0; devices.EnumDevice(index, device); ++index)
        {
            if (!HasDriverKey(trace, devices, device, driverKeyName))
                continue;
            std::wstring instanceId = ReadInstanceId(trace, devices, device);
            if (!instanceId.empty())
                return instanceId;
        }
        if (const DWORD error = GetLastError(); error != ERROR_NO_MORE_ITEMS)
            trace.Information(L"SetupDiEnumDeviceInfo failed. GetLastError = 0x%x", error);
    }
    catch (...)
    {
        trace.Information(L"Exception occurred. GetLastError = 0x%x", GetLastError());
    }
    return {};
}
