#include "simulator/devices/DeviceKeys.h"

#include "simulator/devices/DeviceDriver.h"

#include <system_error>

namespace Simulator
{
using namespace Devices;

namespace
{
constexpr wchar_t g_tree[] = L"SYSTEM\\CurrentControlSet\\Enum\\";
// Property "parent" of a device, and the type of a property that is a text.
constexpr wchar_t g_parentProperty[] = L"\\Properties\\{4340A6C5-93FA-4706-972C-7B648008A5A7}\\0008";
constexpr DWORD g_dwTextProperty = 0xFFFF0012;

constexpr wchar_t g_systemClass[] = L"{4D36E97D-E325-11CE-BFC1-08002BE10318}";
constexpr wchar_t g_usbClass[] = L"{36FC9E60-C465-11CF-8056-444553540000}";
constexpr wchar_t g_usbDeviceClass[] = L"{88BAE032-5A81-49F0-BC3D-A4FF138216D6}";

struct Node
{
    DeviceIdentity m_identity;
    const wchar_t* m_pClassGuid;
    const wchar_t* m_pClass;
    std::wstring m_strDriverKey;
    const wchar_t* m_pDescription;
    std::wstring m_strParent; // empty without one
};

std::wstring InstanceId(const DeviceIdentity& identity)
{
    return std::wstring(identity.m_pDeviceId) + L"\\" + identity.m_pInstance;
}

void Write(const std::wstring& key, const wchar_t* name, DWORD type, const std::wstring& text)
{
    const auto size = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
    const LSTATUS status = RegSetKeyValueW(HKEY_LOCAL_MACHINE, key.c_str(), name, type, text.c_str(), size);
    if (status != ERROR_SUCCESS)
        throw std::system_error(static_cast<int>(status), std::system_category(), "RegSetKeyValueW");
}

void Write(const Node& node)
{
    const std::wstring key = g_tree + InstanceId(node.m_identity);
    Write(key, L"ClassGUID", REG_SZ, node.m_pClassGuid);
    Write(key, L"Class", REG_SZ, node.m_pClass);
    Write(key, L"Driver", REG_SZ, node.m_strDriverKey);
    Write(key, L"DeviceDesc", REG_SZ, node.m_pDescription);
    Write(key, L"HardwareID", REG_MULTI_SZ, node.m_identity.m_pDeviceId + std::wstring(1, L'\0'));
    if (!node.m_strParent.empty())
        Write(key + g_parentProperty, nullptr, g_dwTextProperty, node.m_strParent);
}
} // namespace

std::wstring AcpiInstanceId()
{
    return InstanceId(AcpiIdentity);
}

std::wstring HubInstanceId()
{
    return InstanceId(HubIdentity);
}

std::wstring UsbInstanceId(unsigned long port)
{
    return InstanceId(UsbIdentities[port - 1]);
}

void WriteDeviceKeys()
{
    Write({AcpiIdentity, g_systemClass, L"System", std::wstring(g_systemClass) + L"\\0100", L"Kavel ACPI event device",
           L""});
    Write({HubIdentity, g_usbClass, L"USB", std::wstring(g_usbClass) + L"\\0100", L"USB root hub", L""});
    Write({ProbeIdentity, g_systemClass, L"System", std::wstring(g_systemClass) + L"\\0101", L"Probe", L""});
    for (ULONG port = 1; port <= PortCount; ++port)
        Write({UsbIdentities[port - 1], g_usbDeviceClass, L"USBDevice", DriverKeys[port - 1], L"USB device",
               HubInstanceId()});
}
} // namespace Simulator
