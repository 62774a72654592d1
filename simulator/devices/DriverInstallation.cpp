#include "simulator/devices/DriverInstallation.h"

#include "simulator/devices/DeviceDriver.h"
#include "simulator/devices/DeviceKeys.h"
#include "simulator/devices/OwnerTypes.h"

#include <system_error>

namespace Simulator
{
namespace
{
constexpr wchar_t g_serviceName[] = L"orvik_devices";
constexpr DWORD g_dwStartLimit = 30'000; // milliseconds
constexpr DWORD g_dwStartStep = 20;

[[noreturn]] void ThrowLastError(const char* function)
{
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), function);
}

UniqueServiceHandle OpenManager()
{
    UniqueServiceHandle manager(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ALL_ACCESS));
    if (!manager)
        ThrowLastError("OpenSCManagerW");
    return manager;
}

UniqueServiceHandle OpenDriverService(SC_HANDLE manager)
{
    return UniqueServiceHandle(OpenServiceW(manager, g_serviceName, SERVICE_ALL_ACCESS));
}

std::filesystem::path DriverFolder()
{
    wchar_t folder[MAX_PATH]{};
    GetSystemDirectoryW(folder, MAX_PATH);
    return std::filesystem::path(folder) / L"drivers";
}

// The driver is started on demand: prepare and the console start it, and find out when that fails.
UniqueServiceHandle CreateDriverService(SC_HANDLE manager, const std::filesystem::path& file)
{
    UniqueServiceHandle service(CreateServiceW(manager, g_serviceName, L"Orvik simulated devices", SERVICE_ALL_ACCESS,
                                               SERVICE_KERNEL_DRIVER, SERVICE_DEMAND_START, SERVICE_ERROR_NORMAL,
                                               file.c_str(), nullptr, nullptr, nullptr, nullptr, nullptr));
    if (!service)
        ThrowLastError("CreateServiceW");
    return service;
}

void Start(SC_HANDLE service)
{
    if (!StartServiceW(service, 0, nullptr) && GetLastError() != ERROR_SERVICE_ALREADY_RUNNING)
        ThrowLastError("StartServiceW");
    // The service runs before the driver has made its devices.
    const ULONGLONG limit = GetTickCount64() + g_dwStartLimit;
    while (!DeviceDriver())
    {
        if (GetTickCount64() > limit)
            ThrowLastError("CreateFileW of the driver's control device");
        Sleep(g_dwStartStep);
    }
}
} // namespace

void InstallDriver(const std::filesystem::path& file)
{
    if (DeviceDriver())
        return;
    const std::filesystem::path installed = DriverFolder() / DriverFileName;
    if (!CopyFileW(file.c_str(), installed.c_str(), FALSE))
        ThrowLastError("CopyFileW of the driver");
    WriteDeviceKeys();
    const UniqueServiceHandle manager = OpenManager();
    UniqueServiceHandle service = OpenDriverService(manager.get());
    if (!service)
        service = CreateDriverService(manager.get(), installed);
    Start(service.get());
}

bool StartInstalledDriver()
{
    if (DeviceDriver())
        return true;
    const UniqueServiceHandle manager = OpenManager();
    const UniqueServiceHandle service = OpenDriverService(manager.get());
    if (!service)
        return false;
    Start(service.get());
    return true;
}
} // namespace Simulator
