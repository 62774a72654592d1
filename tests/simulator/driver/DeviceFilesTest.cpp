#include "tests/simulator/driver/DeviceFilesTest.h"

namespace
{
struct Interface
{
    std::wstring m_strPath;
    std::wstring m_strInstanceId;
};

// Wine lists the devices whose interfaces are gone too, but not their interfaces.
std::vector<Interface> PresentInterfaces(const GUID& interfaceClass)
{
    std::vector<Interface> interfaces;
    const DeviceInformationSet devices(&interfaceClass, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
    SP_DEVINFO_DATA device{};
    for (DWORD i = 0; devices.EnumDevice(i, device); ++i)
    {
        SP_DEVICE_INTERFACE_DATA deviceInterface{};
        Interface found;
        if (devices.EnumInterface(&device, interfaceClass, 0, deviceInterface) &&
            SUCCEEDED(devices.ReadDevicePath(deviceInterface, found.m_strPath)))
        {
            found.m_strInstanceId = devices.InstanceId(device).value_or(L"");
            interfaces.push_back(found);
        }
    }
    return interfaces;
}
} // namespace

std::vector<std::wstring> PresentPaths(const GUID& interfaceClass)
{
    std::vector<std::wstring> paths;
    for (const Interface& one : PresentInterfaces(interfaceClass))
        paths.push_back(one.m_strPath);
    return paths;
}

std::vector<std::wstring> PresentDevices(const GUID& interfaceClass)
{
    std::vector<std::wstring> ids;
    for (const Interface& one : PresentInterfaces(interfaceClass))
        ids.push_back(one.m_strInstanceId);
    return ids;
}

DeviceFilesTest::DeviceFilesTest()
{
    // No test says anything without it.
    if (!m_driver || m_driver.Reset() != ERROR_SUCCESS)
    {
        ADD_FAILURE() << "the driver does not run; \"orvik-sim prepare\" comes first";
        std::exit(1);
    }
}

DeviceFilesTest::~DeviceFilesTest()
{
    EXPECT_EQ(m_driver.Reset(), DWORD{ERROR_SUCCESS});
}
