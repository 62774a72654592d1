#include "tests/usbc/DeviceTree.h"

#include "simulator/doubles/JournalText.h"
#include "simulator/model/LiveObjects.h"
#include "tests/usbc/PlannedFunction.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <memory>
#include <utility>

namespace Tests
{
namespace
{
DeviceTree* g_pTree = nullptr;

struct InterfaceOfDevice
{
    const Device* m_pDevice;
    const DeviceInterface* m_pInterface;
};

// What a set holds: devices by their number.
struct Set
{
    Simulator::LiveObject m_live{"DeviceInformationSet"};
    std::vector<DEVINST> m_lstDevices;
};

Device* Find(DEVINST number)
{
    return number >= 1 && number <= g_pTree->m_lstDevices.size() ? &g_pTree->m_lstDevices[number - 1] : nullptr;
}

bool Offers(const Device& device, const GUID& interfaceClass)
{
    for (const DeviceInterface& offered : device.m_lstInterfaces)
    {
        if (offered.m_class == interfaceClass)
            return true;
    }
    return false;
}

HDEVINFO WINAPI GetClassDevs(const GUID* interfaceClass, PCWSTR enumerator, HWND window, DWORD flags)
{
    if (!EnterCall("SetupDiGetClassDevsW",
                   {{"class", interfaceClass != nullptr ? Simulator::GuidText(*interfaceClass) : "none"},
                    {"enumerator", enumerator != nullptr},
                    {"window", window != nullptr},
                    {"flags", flags}}))
        return INVALID_HANDLE_VALUE;
    auto set = std::make_unique<Set>();
    for (DEVINST number = 1; number <= g_pTree->m_lstDevices.size(); ++number)
    {
        const Device& device = *Find(number);
        const bool isOfClass = (flags & DIGCF_ALLCLASSES) != 0 || Offers(device, *interfaceClass);
        if (isOfClass && (device.m_bPresent || (flags & DIGCF_PRESENT) == 0))
            set->m_lstDevices.push_back(number);
    }
    return set.release();
}

BOOL WINAPI Destroy(HDEVINFO set)
{
    static_cast<void>(EnterCall("SetupDiDestroyDeviceInfoList", {}));
    delete static_cast<Set*>(set);
    return TRUE;
}

BOOL WINAPI EnumDevice(HDEVINFO set, DWORD index, SP_DEVINFO_DATA* data)
{
    EXPECT_EQ(data->cbSize, sizeof(SP_DEVINFO_DATA));
    if (!EnterCall("SetupDiEnumDeviceInfo", {{"index", index}}))
        return FALSE;
    const auto& devices = static_cast<Set*>(set)->m_lstDevices;
    if (index >= devices.size())
        return FailWith(ERROR_NO_MORE_ITEMS);
    data->DevInst = devices[index];
    return TRUE;
}

std::vector<InterfaceOfDevice> Interfaces(const Set& set, const SP_DEVINFO_DATA* only, const GUID& interfaceClass)
{
    std::vector<InterfaceOfDevice> found;
    for (const DEVINST number : set.m_lstDevices)
    {
        const Device& device = *Find(number);
        for (const DeviceInterface& offered : device.m_lstInterfaces)
        {
            if (offered.m_class == interfaceClass && (only == nullptr || only->DevInst == number))
                found.push_back({&device, &offered});
        }
    }
    return found;
}

BOOL WINAPI EnumInterface(HDEVINFO set, SP_DEVINFO_DATA* device, const GUID* interfaceClass, DWORD index,
                          SP_DEVICE_INTERFACE_DATA* data)
{
    EXPECT_EQ(data->cbSize, sizeof(SP_DEVICE_INTERFACE_DATA));
    if (!EnterCall("SetupDiEnumDeviceInterfaces",
                   {{"device", device != nullptr}, {"class", Simulator::GuidText(*interfaceClass)}, {"index", index}}))
        return FALSE;
    const auto interfaces = Interfaces(*static_cast<Set*>(set), device, *interfaceClass);
    if (index >= interfaces.size())
        return FailWith(ERROR_NO_MORE_ITEMS);
    data->Reserved = reinterpret_cast<ULONG_PTR>(interfaces[index].m_pInterface);
    return TRUE;
}

// Text with its end for a caller who has room for it; otherwise the room that it needs.
BOOL GiveText(const std::wstring& text, wchar_t* buffer, DWORD room, DWORD* needed)
{
    const auto size = static_cast<DWORD>(text.size() + 1);
    if (needed != nullptr)
        *needed = size;
    if (buffer == nullptr && g_pTree->m_bSizeQueryWorks)
        return TRUE;
    if (buffer == nullptr || room < size)
        return FailWith(ERROR_INSUFFICIENT_BUFFER);
    std::memcpy(buffer, text.c_str(), size * sizeof(wchar_t));
    return TRUE;
}

BOOL WINAPI InstanceId(HDEVINFO, SP_DEVINFO_DATA* data, PWSTR buffer, DWORD room, DWORD* needed)
{
    if (!EnterCall("SetupDiGetDeviceInstanceIdW",
                   {{"device", data->DevInst}, {"buffer", buffer != nullptr}, {"size", room}}))
        return FALSE;
    const BOOL given = GiveText(Find(data->DevInst)->m_strInstanceId, buffer, room, needed);
    if (needed != nullptr)
        *needed = g_pTree->m_instanceIdSize.value_or(*needed);
    return given;
}

BOOL WINAPI Property(HDEVINFO, SP_DEVINFO_DATA* data, DWORD property, DWORD* type, BYTE* buffer, DWORD room,
                     DWORD* needed)
{
    if (!EnterCall("SetupDiGetDeviceRegistryPropertyW",
                   {{"device", data->DevInst}, {"property", property}, {"buffer", buffer != nullptr}, {"size", room}}))
        return FALSE;
    const std::wstring& text = Find(data->DevInst)->m_strDriverKey;
    if (text.empty())
        return FailWith(ERROR_INVALID_DATA);
    if (type != nullptr)
        *type = REG_SZ;
    const auto size = g_pTree->m_driverKeySize.value_or(static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    if (needed != nullptr)
        *needed = size;
    if (buffer == nullptr || room < size)
        return buffer == nullptr && g_pTree->m_bSizeQueryWorks ? TRUE : FailWith(ERROR_INSUFFICIENT_BUFFER);
    std::memcpy(buffer, text.c_str(), size);
    return TRUE;
}

BOOL WINAPI Detail(HDEVINFO, SP_DEVICE_INTERFACE_DATA* data, SP_DEVICE_INTERFACE_DETAIL_DATA_W* detail, DWORD room,
                   DWORD* needed, SP_DEVINFO_DATA*)
{
    if (!EnterCall(
            "SetupDiGetDeviceInterfaceDetailW",
            {{"buffer", detail != nullptr}, {"size", room}, {"size-field", detail != nullptr ? detail->cbSize : 0}}))
        return FALSE;
    const std::wstring& path = reinterpret_cast<const DeviceInterface*>(data->Reserved)->m_strPath;
    const std::size_t whole = offsetof(SP_DEVICE_INTERFACE_DETAIL_DATA_W, DevicePath) + (path.size() + 1) * 2;
    const DWORD size = g_pTree->m_detailSize.value_or(static_cast<DWORD>(whole));
    if (needed != nullptr)
        *needed = size;
    if ((detail == nullptr || room < size) && (detail != nullptr || !g_pTree->m_bSizeQueryWorks))
        return FailWith(ERROR_INSUFFICIENT_BUFFER);
    if (detail != nullptr && size >= whole)
        std::memcpy(detail->DevicePath, path.c_str(), (path.size() + 1) * 2);
    SetLastError(g_pTree->m_dwStaleError);
    return TRUE;
}

CONFIGRET WINAPI Parent(DEVINST* parent, DEVINST device, ULONG flags)
{
    if (!EnterCall("CM_Get_Parent", {{"device", device}, {"flags", flags}}))
        return CR_NO_SUCH_DEVNODE;
    *parent = Find(device)->m_parent;
    return *parent != 0 ? CR_SUCCESS : CR_NO_SUCH_DEVNODE;
}

CONFIGRET WINAPI DeviceId(DEVINST device, PWSTR buffer, ULONG room, ULONG flags)
{
    if (!EnterCall("CM_Get_Device_IDW", {{"device", device}, {"size", room}, {"flags", flags}}))
        return CR_NO_SUCH_DEVNODE;
    return GiveText(Find(device)->m_strInstanceId, buffer, room, nullptr) != FALSE ? CR_SUCCESS : CR_BUFFER_SMALL;
}
} // namespace

DeviceTree::DeviceTree()
    : m_getClassDevs("SetupDiGetClassDevsW", &GetClassDevs), m_destroy("SetupDiDestroyDeviceInfoList", &Destroy),
      m_enumDevice("SetupDiEnumDeviceInfo", &EnumDevice),
      m_enumInterface("SetupDiEnumDeviceInterfaces", &EnumInterface),
      m_instanceId("SetupDiGetDeviceInstanceIdW", &InstanceId),
      m_property("SetupDiGetDeviceRegistryPropertyW", &Property), m_detail("SetupDiGetDeviceInterfaceDetailW", &Detail),
      m_parent("CM_Get_Parent", &Parent), m_deviceId("CM_Get_Device_IDW", &DeviceId)
{
    g_pTree = this;
}

DEVINST DeviceTree::Add(Device device)
{
    m_lstDevices.push_back(std::move(device));
    return static_cast<DEVINST>(m_lstDevices.size());
}
} // namespace Tests
