#include "tests/support/AllocationFault.h"
#include "tests/support/LogCapture.h"
#include "tests/usbc/DeviceMachine.h"
#include "usbc/UsbCState.h"
#include "usbc/UsbDevice.h"
#include "usbc/UsbHub.h"

#include <gmock/gmock.h>

using nlohmann::json;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using testing::StartsWith;
using TestSupport::LogLines;

namespace
{
constexpr const char* g_pDescriptor = "CUsbDevice::GetDescriptor";
constexpr const char* g_pKeyName = "CUsbDevice::GetDriverKeyName";
constexpr const char* g_pInstance = "CUsbDevice::GetDeviceInstFromDriverName";

class UsbPort : public Tests::HubMachine
{
protected:
    UsbPort() { g_strArrivedInstanceId = ArrivedId; }

    // Handles are not looked at by the hub.
    const HANDLE m_hHub = reinterpret_cast<HANDLE>(4);
};

TEST_F(UsbPort, MatchingPort_IsLoggedInFull)
{
    CUsbDevice::GetDescriptor(m_hHub, 2);
    EXPECT_TRUE(g_bBillboardDevice);
    EXPECT_THAT(LogLines(g_pDescriptor),
                ElementsAre(L"TraceIn|", L"Verbose|Num ports = 2", L"Verbose|port # = 1", L"Verbose|port # = 2",
                            L"Information|bcdUSB = 0x201", L"Information|BBID = 0x11",
                            L"Information|bDeviceSubClass = 0x5", L"Information|idProduct = 0xbb0",
                            L"Information|bcdDevice = 0x100", L"TraceOut|"));
}

TEST_F(UsbPort, Requests_HaveTheirParameters)
{
    CUsbDevice::GetDescriptor(m_hHub, 2);
    const auto request = [](unsigned code, std::size_t size, unsigned port)
    {
        return json({{"code", code},
                     {"input", true},
                     {"input-size", size},
                     {"output", true},
                     {"output-size", size},
                     {"same", true},
                     {"returned", 0},
                     {"overlapped", false},
                     {"port", port}});
    };
    const std::size_t information = 35 + 32 * 11;
    const std::size_t key = 8 + (std::wcslen(ArrivedKey) + 1) * 2;
    EXPECT_EQ(Details("DeviceIoControl", 1), request(0x220448, information, 1));
    EXPECT_EQ(Details("DeviceIoControl", 2), request(0x220448, information, 2));
    EXPECT_EQ(Details("DeviceIoControl", 3), request(0x220420, 10, 2));
    EXPECT_EQ(Details("DeviceIoControl", 4), request(0x220420, key, 2));
    EXPECT_EQ(CallCount("DeviceIoControl"), 4u);
}

class UsbPortState : public UsbPort, public testing::WithParamInterface<int>
{
};

TEST_P(UsbPortState, NotConnected_IsNotAskedForItsDriver)
{
    ArrivedPort().m_status = static_cast<USB_CONNECTION_STATUS>(GetParam());
    g_bBillboardDevice = false;
    CUsbDevice::GetDescriptor(m_hHub, 2);
    EXPECT_EQ(CallCount("DeviceIoControl"), 2u);
    EXPECT_FALSE(g_bBillboardDevice);
}

INSTANTIATE_TEST_SUITE_P(Each, UsbPortState, testing::Values(0, 2, 3, 4, 5, 6, 7, 8, 9, 10, 255));

TEST_F(UsbPort, PortFails_GoesOnWithTheNext)
{
    Fail("DeviceIoControl", ERROR_DEVICE_NOT_CONNECTED);
    CUsbDevice::GetDescriptor(m_hHub, 2);
    EXPECT_THAT(LogLines(g_pDescriptor), Contains(L"Information|cannot get info on this port: 1, move to next one."));
    EXPECT_TRUE(g_bBillboardDevice);
}

TEST_F(UsbPort, NoMemoryForAPort_GoesOnWithTheNext)
{
    Tests::Port same = ArrivedPort();
    m_files.m_lstPorts = {same, same};
    g_bBillboardDevice = false;
    {
        const AllocationFault fault(1, sizeof(UsbPortConnection));
        CUsbDevice::GetDescriptor(m_hHub, 2);
    }
    EXPECT_THAT(LogLines(g_pDescriptor),
                ElementsAre(L"TraceIn|", L"Verbose|Num ports = 2", L"Verbose|port # = 1",
                            L"Information|connectionInfoEx = null.", L"Verbose|port # = 2",
                            L"Information|bcdUSB = 0x201", L"Information|BBID = 0x11",
                            L"Information|bDeviceSubClass = 0x5", L"Information|idProduct = 0xbb0",
                            L"Information|bcdDevice = 0x100", L"TraceOut|"));
}

TEST_F(UsbPort, NoPorts_AsksNothing)
{
    m_files.m_reportedPorts = UCHAR{0};
    Arrive(ArrivedName);
    EXPECT_THAT(LogLines(g_pDescriptor), ElementsAre(L"TraceIn|", L"Verbose|Num ports = 0", L"TraceOut|"));
    EXPECT_EQ(CallCount("DeviceIoControl"), 1u);
}

// More ports than there are: each is asked, none stops the others.
TEST_F(UsbPort, ManyPorts_EachIsAskedOnce)
{
    g_bBillboardDevice = false;
    m_files.m_reportedPorts = UCHAR{255};
    Arrive(ArrivedName);
    EXPECT_TRUE(g_bBillboardDevice);
    EXPECT_THAT(LogLines(g_pDescriptor), Contains(L"Information|cannot get info on this port: 255, move to next one."));
    EXPECT_EQ(CallCount("DeviceIoControl"), 1u + 255u + 2u);
}

TEST_F(UsbPort, FewerPortsThanThereAre_TheDeviceIsNotFound)
{
    g_bBillboardDevice = false;
    m_files.m_reportedPorts = UCHAR{1};
    Arrive(ArrivedName);
    EXPECT_FALSE(g_bBillboardDevice);
}

TEST_F(UsbPort, OtherDeviceAtThePort_KeepsTheFlag)
{
    ArrivedPort().m_strDriverKey = L"{745a17a0-74d3-11d0-b6fe-00a0c90f57da}\\0003";
    g_bBillboardDevice = false;
    CUsbDevice::GetDescriptor(m_hHub, 2);
    EXPECT_FALSE(g_bBillboardDevice);
    EXPECT_THAT(LogLines(g_pDescriptor), Not(Contains(L"Information|BBID = 0x11")));
}

// A match does not end the search, and a device that is another one does not undo it.
TEST_F(UsbPort, BillboardThenOtherDevice_KeepsTheFlagAndAsksBoth)
{
    m_files.m_lstPorts.front() = ArrivedPort();
    ArrivedPort().m_strDriverKey = L"{745a17a0-74d3-11d0-b6fe-00a0c90f57da}\\0003";
    ArrivedPort().m_descriptor.bDeviceClass = 0;
    g_bBillboardDevice = false;
    CUsbDevice::GetDescriptor(m_hHub, 2);
    EXPECT_TRUE(g_bBillboardDevice);
    EXPECT_EQ(CallCount("DeviceIoControl"), 6u);
    EXPECT_EQ(Details("DeviceIoControl", 6).at("port"), 2);
    EXPECT_EQ(CallCount("SetupDiGetClassDevsW"), 2u);
}

TEST_F(UsbPort, EmptyDriverKey_IsNotLookedUp)
{
    ArrivedPort().m_strDriverKey.clear();
    CUsbDevice::GetDescriptor(m_hHub, 2);
    EXPECT_EQ(CallCount("SetupDiGetClassDevsW"), 0u);
}

TEST_F(UsbPort, DriverKeyName_IsRead)
{
    EXPECT_EQ(CUsbDevice::GetDriverKeyName(m_hHub, 2), ArrivedKey);
    EXPECT_THAT(LogLines(g_pKeyName), ElementsAre(L"TraceIn|", L"TraceOut|"));
}

TEST_F(UsbPort, DriverKeyName_FirstRequestFails_IsLogged)
{
    Fail("DeviceIoControl", ERROR_INVALID_PARAMETER);
    EXPECT_EQ(CUsbDevice::GetDriverKeyName(m_hHub, 2), L"");
    EXPECT_THAT(LogLines(g_pKeyName),
                ElementsAre(L"TraceIn|", L"Information|DeviceIoControl failed.  GetLastError: 0x57", L"TraceOut|"));
    EXPECT_EQ(CallCount("DeviceIoControl"), 1u);
}

TEST_F(UsbPort, DriverKeyName_DeviceGoneAtTheSecondRequest_IsLogged)
{
    Fail("DeviceIoControl", ERROR_DEVICE_NOT_CONNECTED, 2);
    EXPECT_EQ(CUsbDevice::GetDriverKeyName(m_hHub, 2), L"");
    EXPECT_THAT(
        LogLines(g_pKeyName),
        ElementsAre(L"TraceIn|", L"Information|DeviceIoControl failed [2].  GetLastError: 0x48f", L"TraceOut|"));
}

// Sizes that are too small, odd and far too large; what is read of the name stays within them and within bounds.
TEST_F(UsbPort, DriverKeyName_OddSizes_StayWithinBounds)
{
    const std::wstring key = ArrivedKey;
    for (const auto& [told, expected] : {std::pair{0ul, key.substr(0, 1)},
                                         {1ul, key.substr(0, 1)},
                                         {10ul, key.substr(0, 1)},
                                         {11ul, key.substr(0, 1)},
                                         {13ul, key.substr(0, 2)},
                                         {20ul, key.substr(0, 6)},
                                         {5000ul, key},
                                         {0x7FFFFFFFul, key},
                                         {0xFFFFFFFFul, key}})
    {
        StartWatching();
        ArrivedPort().m_keySize = told;
        EXPECT_EQ(CUsbDevice::GetDriverKeyName(m_hHub, 2), expected) << told;
        EXPECT_LE(Details("DeviceIoControl", 2).at("output-size").get<unsigned>(), 4096u) << told;
    }
}

TEST_F(UsbPort, DriverKeyName_Overlong_IsCutAndMatchesNothing)
{
    ArrivedPort().m_strDriverKey = ArrivedKey + std::wstring(30000, L'x');
    g_bBillboardDevice = false;
    Arrive(ArrivedName);
    EXPECT_FALSE(g_bBillboardDevice);
    EXPECT_EQ(CUsbDevice::GetDriverKeyName(m_hHub, 2).size(), (4096u - 8) / 2);
}

TEST_F(UsbPort, InstanceOfDriverKey_IsFound)
{
    EXPECT_EQ(CUsbDevice::GetDeviceInstFromDriverName(ArrivedKey), ArrivedId);
    EXPECT_EQ(Details("SetupDiGetDeviceRegistryPropertyW"),
              json({{"device", 1}, {"property", 9}, {"buffer", false}, {"size", 0}}));
    EXPECT_EQ(Details("SetupDiGetDeviceRegistryPropertyW", 2),
              json({{"device", 1}, {"property", 9}, {"buffer", true}, {"size", 88}}));
    EXPECT_EQ(Details("SetupDiGetDeviceInstanceIdW"), json({{"device", 3}, {"buffer", false}, {"size", 0}}));
    EXPECT_EQ(Details("SetupDiGetDeviceInstanceIdW", 2), json({{"device", 3}, {"buffer", true}, {"size", 28}}));
    EXPECT_THAT(LogLines(g_pInstance),
                ElementsAre(L"TraceIn|", L"Verbose|SetupDiGetDeviceInstanceId [2] returns 1.", L"TraceOut|"));
}

// The end of the list is no failure.
TEST_F(UsbPort, InstanceOfDriverKey_Unknown_IsEmptyAndLogsNothing)
{
    EXPECT_EQ(CUsbDevice::GetDeviceInstFromDriverName(L"{x}\\0001"), L"");
    EXPECT_EQ(CallCount("SetupDiEnumDeviceInfo"), 4u);
    EXPECT_THAT(LogLines(g_pInstance), ElementsAre(L"TraceIn|", L"TraceOut|"));
}

// A size query that works although it has no buffer tells the size like any other.
TEST_F(UsbPort, InstanceOfDriverKey_SizeQueriesWork_IsFound)
{
    m_tree.m_bSizeQueryWorks = true;
    EXPECT_EQ(CUsbDevice::GetDeviceInstFromDriverName(ArrivedKey), ArrivedId);
    EXPECT_THAT(LogLines(g_pInstance),
                ElementsAre(L"TraceIn|", L"Verbose|SetupDiGetDeviceInstanceId [2] returns 1.", L"TraceOut|"));
}

TEST_F(UsbPort, InstanceOfDriverKey_SizesAbove64KiB_AreFailedQueries)
{
    for (const bool works : {false, true})
    {
        StartWatching();
        m_tree.m_bSizeQueryWorks = works;
        m_tree.m_driverKeySize = 0x10001;
        m_tree.m_instanceIdSize.reset();
        EXPECT_EQ(CUsbDevice::GetDeviceInstFromDriverName(ArrivedKey), L"");
        const auto* const refused = L"Information|SetupDiGetDeviceRegistryProperty failed. GetLastError = 0xd";
        EXPECT_THAT(LogLines(g_pInstance), ElementsAre(L"TraceIn|", refused, refused, refused, L"TraceOut|"));
        StartWatching();
        m_tree.m_driverKeySize.reset();
        m_tree.m_instanceIdSize = 0x8001;
        EXPECT_EQ(CUsbDevice::GetDeviceInstFromDriverName(ArrivedKey), L"");
        EXPECT_THAT(LogLines(g_pInstance),
                    ElementsAre(L"TraceIn|", L"Information|SetupDiGetDeviceInstanceId failed. GetLastError = 0xd",
                                L"TraceOut|"));
        m_tree.m_instanceIdSize = 0x8000;
        EXPECT_EQ(CUsbDevice::GetDeviceInstFromDriverName(ArrivedKey), ArrivedId);
    }
}

TEST_F(UsbPort, InstanceOfDriverKey_NoMemory_IsLoggedAndEmpty)
{
    m_tree.m_lstDevices.front().m_strDriverKey.assign(5000, L'x');
    {
        const AllocationFault fault(1, 10000);
        EXPECT_EQ(CUsbDevice::GetDeviceInstFromDriverName(ArrivedKey), L"");
    }
    EXPECT_THAT(
        LogLines(g_pInstance),
        ElementsAre(L"TraceIn|", StartsWith(L"Information|Exception occurred. GetLastError = 0x"), L"TraceOut|"));
    EXPECT_EQ(CUsbDevice::GetDeviceInstFromDriverName(ArrivedKey), ArrivedId);
}

TEST_F(UsbPort, InstanceOfDriverKey_AbsentDevice_IsNotLookedAt)
{
    Arrived().m_bPresent = false;
    EXPECT_EQ(CUsbDevice::GetDeviceInstFromDriverName(ArrivedKey), L"");
}

TEST_F(UsbPort, InstanceOfDriverKey_NoSet_IsEmpty)
{
    Fail("SetupDiGetClassDevsW", ERROR_ACCESS_DENIED);
    EXPECT_EQ(CUsbDevice::GetDeviceInstFromDriverName(ArrivedKey), L"");
    EXPECT_THAT(Calls(), ElementsAre("SetupDiGetClassDevsW"));
}

TEST_F(UsbPort, InstanceOfDriverKey_EnumerationFails_IsLogged)
{
    Fail("SetupDiEnumDeviceInfo", ERROR_INVALID_HANDLE, 2);
    EXPECT_EQ(CUsbDevice::GetDeviceInstFromDriverName(ArrivedKey), L"");
    EXPECT_THAT(LogLines(g_pInstance), Contains(L"Information|SetupDiEnumDeviceInfo failed. GetLastError = 0x6"));
}

// A device without driver, and one that vanishes between the two calls.
TEST_F(UsbPort, InstanceOfDriverKey_PropertyFails_GoesOnWithTheNext)
{
    m_tree.m_lstDevices.front().m_strDriverKey.clear();
    Fail("SetupDiGetDeviceRegistryPropertyW", ERROR_NO_SUCH_DEVINST, 3);
    EXPECT_EQ(CUsbDevice::GetDeviceInstFromDriverName(ArrivedKey), ArrivedId);
    EXPECT_THAT(LogLines(g_pInstance),
                ElementsAre(L"TraceIn|", L"Information|SetupDiGetDeviceRegistryProperty failed. GetLastError = 0xd",
                            L"Information|SetupDiGetDeviceRegistryProperty [2] failed. GetLastError = 0xe000020b",
                            L"Verbose|SetupDiGetDeviceInstanceId [2] returns 1.", L"TraceOut|"));
}

TEST_F(UsbPort, InstanceOfDriverKey_IdFails_GoesOnWithTheNext)
{
    m_tree.Add({L"USB\\SECOND\\1", ArrivedKey, 1, {}});
    Fail("SetupDiGetDeviceInstanceIdW", ERROR_NO_SUCH_DEVINST);
    EXPECT_EQ(CUsbDevice::GetDeviceInstFromDriverName(ArrivedKey), L"USB\\SECOND\\1");
    EXPECT_THAT(LogLines(g_pInstance),
                Contains(L"Information|SetupDiGetDeviceInstanceId failed. GetLastError = 0xe000020b"));
    StartWatching();
    Fail("SetupDiGetDeviceInstanceIdW", ERROR_NO_SUCH_DEVINST, 2);
    EXPECT_EQ(CUsbDevice::GetDeviceInstFromDriverName(ArrivedKey), L"USB\\SECOND\\1");
    EXPECT_THAT(LogLines(g_pInstance), Contains(L"Information|SetupDiGetDeviceInstanceId [2] returns 0."));
}

// A driver property without terminator, of odd size, or cut short.
TEST_F(UsbPort, InstanceOfDriverKey_OddPropertySizes_StayWithinBounds)
{
    const auto whole = static_cast<DWORD>(std::wcslen(ArrivedKey) * 2);
    m_tree.m_lstDevices.erase(m_tree.m_lstDevices.begin(), m_tree.m_lstDevices.begin() + 2);
    for (const DWORD size : {0ul, 1ul, 2ul, whole - 2, whole - 1, whole, whole + 1})
    {
        m_tree.m_driverKeySize = size;
        EXPECT_EQ(CUsbDevice::GetDeviceInstFromDriverName(ArrivedKey), size >= whole ? ArrivedId : L"") << size;
    }
}

TEST_F(UsbPort, IsArrivedDevice_ComparesWithoutCaseAndNeverEmpty)
{
    EXPECT_TRUE(CUsbDevice::IsArrivedDevice(ArrivedId));
    EXPECT_TRUE(CUsbDevice::IsArrivedDevice(L"usb\\vid_1D6B&pid_0bb0\\4&fa1"));
    EXPECT_FALSE(CUsbDevice::IsArrivedDevice(L"USB\\VID_1D6B&PID_0BB0\\4&FA"));
    EXPECT_FALSE(CUsbDevice::IsArrivedDevice(L""));
    g_strArrivedInstanceId.clear();
    EXPECT_FALSE(CUsbDevice::IsArrivedDevice(L""));
}
} // namespace
