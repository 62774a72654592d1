#include "shared/Logger.h"
#include "tests/support/AllocationFault.h"
#include "tests/support/LogCapture.h"
#include "tests/usbc/DeviceMachine.h"
#include "usbc/UsbCState.h"
#include "usbc/UsbDevice.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <optional>
#include <utility>

using testing::Contains;
using testing::ElementsAre;
using testing::StartsWith;
using TestSupport::LogLines;

namespace
{
constexpr const char* g_pInit = "CUsbDevice::Init";
constexpr const char* g_pInfo = "CUsbDevice::GetDeviceInfo";

class UsbDeviceFailure : public Tests::HubMachine
{
protected:
    // The arrival would change the flag if that call worked.
    void ExpectFlagKept(bool before, const char* call, DWORD error)
    {
        ArrivedPort().m_descriptor.bDeviceClass = before ? 0x00 : 0x11;
        g_bBillboardDevice = before;
        StartWatching();
        Fail(call, error);
        Arrive(ArrivedName);
        EXPECT_EQ(g_bBillboardDevice, before);
    }
};

TEST_F(UsbDeviceFailure, NoMemoryForTheName_IsLogged)
{
    const std::wstring name = L"\\\\?\\" + std::wstring(5000, L'x') + L"#{x}";
    g_strArrivedInstanceId = L"USB\\OLD\\1";
    {
        std::vector<BYTE> message(20000);
        auto* const header = reinterpret_cast<DEV_BROADCAST_DEVICEINTERFACE_W*>(message.data());
        header->dbcc_size = 20000;
        std::copy(name.begin(), name.end(), header->dbcc_name);
        const AllocationFault fault(2, 10000);
        CUsbDevice::Init(nullptr, reinterpret_cast<DEV_BROADCAST_HDR*>(header));
    }
    EXPECT_THAT(LogLines(g_pInit), Contains(L"Information|Exception occurred"));
    EXPECT_EQ(g_strArrivedInstanceId, L"");
}

// What fails here leaves the flag as it was, whatever it was.
TEST_F(UsbDeviceFailure, NoSet_IsLoggedAndKeepsTheFlag)
{
    for (const bool before : {false, true})
    {
        ExpectFlagKept(before, "SetupDiGetClassDevsW", ERROR_ACCESS_DENIED);
        EXPECT_THAT(
            LogLines(g_pInfo),
            ElementsAre(L"TraceIn|", L"Information|SetupDiGetClassDevs failed, GetLastError = 0x5", L"TraceOut|"));
        EXPECT_THAT(Calls(), ElementsAre("SetupDiGetClassDevsW"));
    }
}

TEST_F(UsbDeviceFailure, IdOfADeviceCannotBeRead_GoesOnWithTheNext)
{
    g_bBillboardDevice = false;
    Fail("SetupDiGetDeviceInstanceIdW", ERROR_NO_SUCH_DEVINST, 2);
    Arrive(ArrivedName);
    EXPECT_THAT(LogLines(g_pInfo),
                Contains(L"Information|SetupDiGetDeviceInstanceId failed, GetLastError = 0xe000020b"));
    EXPECT_TRUE(g_bBillboardDevice);
}

TEST_F(UsbDeviceFailure, EnumerationFails_EndsWithoutTheHub)
{
    Fail("SetupDiEnumDeviceInfo", ERROR_INVALID_HANDLE, 3);
    Arrive(ArrivedName);
    EXPECT_EQ(CallCount("CM_Get_Parent"), 0u);
}

TEST_F(UsbDeviceFailure, NoParent_IsLoggedAndEnds)
{
    g_bBillboardDevice = true;
    ArrivedPort().m_descriptor.bDeviceClass = 0;
    Fail("CM_Get_Parent", ERROR_GEN_FAILURE);
    Arrive(ArrivedName);
    EXPECT_THAT(LogLines(g_pInfo), Contains(L"Information|CM_Get_Parent failed.  Error= 13"));
    EXPECT_EQ(CallCount("CM_Get_Device_IDW"), 0u);
    EXPECT_TRUE(g_bBillboardDevice);
}

TEST_F(UsbDeviceFailure, NoIdOfTheParent_Ends)
{
    Fail("CM_Get_Device_IDW", ERROR_GEN_FAILURE);
    Arrive(ArrivedName);
    EXPECT_EQ(CallCount("SetupDiGetClassDevsW"), 1u);
    EXPECT_EQ(CallCount("CreateFileW"), 0u);
}

TEST_F(UsbDeviceFailure, OverlongIdOfTheParent_Ends)
{
    m_tree.m_lstDevices.front().m_strInstanceId.assign(200, L'X');
    Arrive(ArrivedName);
    EXPECT_EQ(CallCount("CM_Get_Device_IDW"), 1u);
    EXPECT_EQ(CallCount("CreateFileW"), 0u);
}

TEST_F(UsbDeviceFailure, HubCannotBeOpened_IsLoggedAndKeepsTheFlag)
{
    for (const bool before : {false, true})
    {
        ExpectFlagKept(before, "CreateFileW", ERROR_ACCESS_DENIED);
        EXPECT_THAT(LogLines(g_pInfo), Contains(L"Information|CreateFile failed, GetLastError = 0x5"));
        EXPECT_EQ(CallCount("DeviceIoControl"), 0u);
    }
}

TEST_F(UsbDeviceFailure, HubNotPresent_HasNoNameAndIsNotOpened)
{
    m_tree.m_lstDevices.front().m_bPresent = false;
    Arrive(ArrivedName);
    EXPECT_THAT(LogLines(g_pInfo), Contains(L"Verbose|Hub name: "));
    EXPECT_THAT(LogLines(g_pInfo), Contains(L"Information|CreateFile failed, GetLastError = 0x3"));
    EXPECT_EQ(CallCount("DeviceIoControl"), 0u);
}

TEST_F(UsbDeviceFailure, NodeInformationFails_IsLoggedAndKeepsTheFlag)
{
    for (const bool before : {false, true})
    {
        ExpectFlagKept(before, "DeviceIoControl", ERROR_DEVICE_NOT_CONNECTED);
        EXPECT_THAT(LogLines(g_pInfo), Contains(L"Information|DeviceIoControl failed, GetLastError = 0x48f"));
        EXPECT_EQ(CallCount("DeviceIoControl"), 1u);
    }
}

TEST_F(UsbDeviceFailure, NoMemoryForTheNode_IsLoggedAndKeepsTheFlag)
{
    using Orvik::Shared::g_enabledLevels;
    const std::uint32_t levels = g_enabledLevels;
    for (const bool before : {false, true})
    {
        std::optional<AllocationFault> fault;
        // Without records between the two the node is what is allocated next.
        m_files.m_onOpened = [&]
        {
            g_enabledLevels = levels & ~(1u << Orvik::Shared::Level::Verbose);
            fault.emplace(1, sizeof(USB_NODE_INFORMATION));
        };
        StartWatching();
        g_bBillboardDevice = before;
        ArrivedPort().m_descriptor.bDeviceClass = before ? 0x00 : 0x11;
        Arrive(ArrivedName);
        g_enabledLevels = levels;
        EXPECT_TRUE(AllocationFault::HasBitten());
        EXPECT_THAT(LogLines(g_pInfo),
                    Contains(StartsWith(L"Information|Allocate some space for a USB_NODE_INFORMATION structure failed, "
                                        L"GetLastError = 0x")));
        EXPECT_EQ(g_bBillboardDevice, before);
        EXPECT_EQ(CallCount("CreateFileW"), 1u);
        EXPECT_EQ(CallCount("DeviceIoControl"), 0u);
    }
}

TEST_F(UsbDeviceFailure, NoMemoryForAnInstanceId_IsLoggedAndKeepsTheFlag)
{
    m_tree.Add({std::wstring(500, L'X'), ArrivedKey, 1, {{Tests::g_usbClass, L"\\\\?\\long"}}});
    std::swap(m_tree.m_lstDevices.back(), m_tree.m_lstDevices[1]);
    g_bBillboardDevice = false;
    {
        const AllocationFault fault(1, 1000);
        Arrive(ArrivedName);
    }
    EXPECT_THAT(LogLines(g_pInfo), Contains(StartsWith(L"Information|Exception occurred. GetLastError = 0x")));
    EXPECT_FALSE(g_bBillboardDevice);
    EXPECT_EQ(CallCount("CM_Get_Parent"), 0u);
}

TEST_F(UsbDeviceFailure, GetHubName_NoMemory_IsLoggedAndEmpty)
{
    m_files.m_strHubPath = L"\\\\?\\" + std::wstring(5000, L'h');
    m_tree.m_lstDevices.front().m_lstInterfaces.front().m_strPath = m_files.m_strHubPath;
    {
        const AllocationFault fault(1, 10000);
        EXPECT_EQ(CUsbDevice::GetHubName(HubId), L"");
    }
    EXPECT_THAT(
        LogLines("CUsbDevice::GetHubName"),
        ElementsAre(L"TraceIn|", StartsWith(L"Information|Exception occurred. GetLastError = 0x"), L"TraceOut|"));
    EXPECT_EQ(CUsbDevice::GetHubName(HubId), m_files.m_strHubPath);
}

TEST_F(UsbDeviceFailure, NoMemory_EndsTheOperationThatNeedsIt)
{
    ArrivedPort().m_keySize = 4000;
    Arrive(ArrivedName);
    StartWatching();
    g_bBillboardDevice = false;
    const AllocationFault fault(1, 4000);
    Arrive(ArrivedName);
    EXPECT_FALSE(g_bBillboardDevice);
    EXPECT_THAT(LogLines("CUsbDevice::GetDriverKeyName"),
                Contains(StartsWith(L"Information|Exception occurred. GetLastError = 0x")));
}
} // namespace
