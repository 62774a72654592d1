#include "simulator/machine/PlannedCall.h"
#include "simulator/machine/Redirections.h"

#include <initguid.h>
#include <setupapi.h>

#include <cfgmgr32.h>
#include <devpkey.h>

namespace Simulator
{
namespace
{
// A devnode number is valid while a set holds the device; this one holds every device that was asked for.
HDEVINFO KnownDevices()
{
    static const HDEVINFO known = SetupDiCreateDeviceInfoList(nullptr, nullptr);
    return known;
}

bool OpenDevice(const wchar_t* instanceId, SP_DEVINFO_DATA& device)
{
    device = {};
    device.cbSize = sizeof(device);
    return SetupDiOpenDeviceInfoW(KnownDevices(), instanceId, nullptr, 0, &device) != FALSE;
}

// The property that the registry's device tree has for it.
bool ParentOf(DEVINST device, DEVINST& parent)
{
    wchar_t instanceId[MAX_DEVICE_ID_LEN] = {};
    if (CM_Get_Device_IDW(device, instanceId, MAX_DEVICE_ID_LEN, 0) != CR_SUCCESS)
        return false;
    SP_DEVINFO_DATA child{};
    SP_DEVINFO_DATA found{};
    DEVPROPTYPE type = 0;
    if (!OpenDevice(instanceId, child) ||
        !SetupDiGetDevicePropertyW(KnownDevices(), &child, &DEVPKEY_Device_Parent, &type,
                                   reinterpret_cast<BYTE*>(instanceId), sizeof(instanceId), nullptr, 0) ||
        !OpenDevice(instanceId, found))
        return false;
    parent = found.DevInst;
    return true;
}

// Wine knows no parents.
CONFIGRET WINAPI ParentOfMachine(PDEVINST parent, DEVINST device, ULONG)
{
    const HRESULT hr = CallPlan::Instance().Enter("CM_Get_Parent");
    if (FAILED(hr))
        return ErrorNumber(hr);
    if (parent == nullptr)
        return CR_INVALID_POINTER;
    *parent = 0;
    return ParentOf(device, *parent) ? CR_SUCCESS : CR_NO_SUCH_DEVNODE;
}

template <CallName Name, class Function>
using DeviceCall = PlannedCall<Name, FailsAs::Zero, Function>;
template <CallName Name, class Function>
using HandleCall = PlannedCall<Name, FailsAs::MinusOne, Function>;
} // namespace

void RedirectDeviceFunctions(Redirections& redirections)
{
    redirections.Add("CM_Get_Parent", &ParentOfMachine);
    redirections.AddPlanned<HandleCall<"CreateFileW", decltype(CreateFileW)>>();
    redirections.AddPlanned<DeviceCall<"DeviceIoControl", decltype(DeviceIoControl)>>();
    redirections.AddPlanned<HandleCall<"SetupDiGetClassDevsW", decltype(SetupDiGetClassDevsW)>>();
    redirections.AddPlanned<DeviceCall<"SetupDiEnumDeviceInterfaces", decltype(SetupDiEnumDeviceInterfaces)>>();
    redirections
        .AddPlanned<DeviceCall<"SetupDiGetDeviceInterfaceDetailW", decltype(SetupDiGetDeviceInterfaceDetailW)>>();
}
} // namespace Simulator
