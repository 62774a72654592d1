#include "usbc/UsbDevice.h"

#include "simulator/model/CallPlan.h"
#include "tests/support/AllocationFault.h"
#include "tests/support/LogCapture.h"
#include "tests/usbc/DeviceMachine.h"
#include "usbc/UsbCState.h"

#include <gmock/gmock.h>

#include <cstddef>

using nlohmann::json;
using testing::Contains;
using testing::ElementsAre;
using TestSupport::LogLines;

namespace
{
constexpr const char* g_pInit = "CUsbDevice::Init";
constexpr const char* g_pInfo = "CUsbDevice::GetDeviceInfo";

class UsbDevice : public Tests::HubMachine
{
};

TEST_F(UsbDevice, BillboardArrives_SetsTheFlag)
{
    g_bBillboardDevice = false;
    Arrive(ArrivedName);
    EXPECT_TRUE(g_bBillboardDevice);
    EXPECT_EQ(g_strArrivedInstanceId, L"usb\\vid_1d6b&pid_0bb0\\4&fa1");
    EXPECT_THAT(
        LogLines(g_pInit),
        ElementsAre(L"TraceIn|", std::wstring(L"Information|USB device inserted:  ") + ArrivedName, L"TraceOut|"));
    EXPECT_THAT(LogLines(g_pInfo),
                ElementsAre(L"TraceIn|", L"Verbose|Device instance id =usb\\vid_1d6b&pid_0bb0\\4&fa1",
                            L"Verbose|  Enum instance id =USB\\ROOT_HUB30\\4&FA0",
                            L"Verbose|Device instance id =usb\\vid_1d6b&pid_0bb0\\4&fa1",
                            L"Verbose|  Enum instance id =USB\\VID_046D&PID_C077\\1",
                            L"Verbose|Device instance id =usb\\vid_1d6b&pid_0bb0\\4&fa1",
                            L"Verbose|  Enum instance id =USB\\VID_1D6B&PID_0BB0\\4&FA1",
                            L"Verbose|Hub name: \\\\?\\hub", L"Verbose|Hub found, now read descriptor of each port ",
                            L"TraceOut|"));
}

TEST_F(UsbDevice, Calls_ComeInOrder)
{
    Arrive(ArrivedName);
    EXPECT_THAT(Calls(), ElementsAre("SetupDiGetClassDevsW", "SetupDiEnumDeviceInfo", "SetupDiGetDeviceInstanceIdW",
                                     "SetupDiEnumDeviceInfo", "SetupDiGetDeviceInstanceIdW", "SetupDiEnumDeviceInfo",
                                     "SetupDiGetDeviceInstanceIdW", "CM_Get_Parent", "CM_Get_Device_IDW",
                                     // the hub's name
                                     "SetupDiGetClassDevsW", "SetupDiEnumDeviceInfo", "SetupDiGetDeviceInstanceIdW",
                                     "SetupDiEnumDeviceInterfaces", "SetupDiGetDeviceInterfaceDetailW",
                                     "SetupDiGetDeviceInterfaceDetailW", "SetupDiDestroyDeviceInfoList",
                                     // the node, the empty port, the port with the device
                                     "CreateFileW", "DeviceIoControl", "DeviceIoControl", "DeviceIoControl",
                                     "DeviceIoControl", "DeviceIoControl",
                                     // the device of that driver key
                                     "SetupDiGetClassDevsW", "SetupDiEnumDeviceInfo",
                                     "SetupDiGetDeviceRegistryPropertyW", "SetupDiGetDeviceRegistryPropertyW",
                                     "SetupDiEnumDeviceInfo", "SetupDiGetDeviceRegistryPropertyW",
                                     "SetupDiGetDeviceRegistryPropertyW", "SetupDiEnumDeviceInfo",
                                     "SetupDiGetDeviceRegistryPropertyW", "SetupDiGetDeviceRegistryPropertyW",
                                     "SetupDiGetDeviceInstanceIdW", "SetupDiGetDeviceInstanceIdW",
                                     "SetupDiDestroyDeviceInfoList", "SetupDiDestroyDeviceInfoList"));
}

TEST_F(UsbDevice, Calls_HaveTheirParameters)
{
    Arrive(ArrivedName);
    const auto set = [](const char* interfaceClass, unsigned flags)
    { return json({{"class", interfaceClass}, {"enumerator", false}, {"window", false}, {"flags", flags}}); };
    EXPECT_EQ(Details("SetupDiGetClassDevsW", 1), set("{A5DCBF10-6530-11D2-901F-00C04FB951ED}", 0x14));
    EXPECT_EQ(Details("SetupDiGetClassDevsW", 2), set("{F18A0E88-C30C-11D0-8815-00A0C906BED8}", 0x12));
    EXPECT_EQ(Details("SetupDiGetClassDevsW", 3), set("none", 0x6));
    EXPECT_EQ(Details("CM_Get_Parent"), json({{"device", 3}, {"flags", 0}}));
    EXPECT_EQ(Details("CM_Get_Device_IDW"), json({{"device", 1}, {"size", 200}, {"flags", 0}}));
    EXPECT_EQ(Details("SetupDiGetDeviceInstanceIdW", 4), json({{"device", 1}, {"buffer", true}, {"size", 520}}));
    EXPECT_EQ(Details("SetupDiEnumDeviceInterfaces"),
              json({{"device", true}, {"class", "{F18A0E88-C30C-11D0-8815-00A0C906BED8}"}, {"index", 0}}));
    EXPECT_EQ(Details("SetupDiGetDeviceInterfaceDetailW"), json({{"buffer", false}, {"size", 0}, {"size-field", 0}}));
    EXPECT_EQ(Details("SetupDiGetDeviceInterfaceDetailW", 2),
              json({{"buffer", true}, {"size", 20}, {"size-field", 8}}));
    EXPECT_EQ(Details("CreateFileW"), json({{"path", "\\\\?\\hub"},
                                            {"access", 0x40000000},
                                            {"share", 2},
                                            {"security", false},
                                            {"disposition", 3},
                                            {"flags", 0},
                                            {"template", false}}));
    EXPECT_EQ(Details("DeviceIoControl").at("code"), 0x220408);
    EXPECT_EQ(Details("DeviceIoControl").at("output-size"), 76);
    EXPECT_EQ(Details("DeviceIoControl").at("overlapped"), false);
}

class UsbDeviceOfClass : public UsbDevice, public testing::WithParamInterface<int>
{
};

TEST_P(UsbDeviceOfClass, Arrives_ClearsTheFlag)
{
    ArrivedPort().m_descriptor.bDeviceClass = static_cast<UCHAR>(GetParam());
    g_bBillboardDevice = true;
    Arrive(ArrivedName);
    EXPECT_FALSE(g_bBillboardDevice);
}

INSTANTIATE_TEST_SUITE_P(NoBillboard, UsbDeviceOfClass, testing::Values(0x00, 0x09, 0x10, 0x12, 0xFF));

class UsbArrivalName : public UsbDevice, public testing::WithParamInterface<const wchar_t*>
{
};

// The flag keeps its value, and the hub is not asked.
TEST_P(UsbArrivalName, NamesNoDevice_MatchesNothing)
{
    for (const bool before : {false, true})
    {
        // Nothing matches a device without id either.
        m_tree.Add({L"", ArrivedKey, 1, {{Tests::g_usbClass, L"\\\\?\\x"}}});
        g_bBillboardDevice = before;
        Arrive(GetParam());
        EXPECT_EQ(g_bBillboardDevice, before);
        EXPECT_EQ(CallCount("CM_Get_Parent"), 0u);
        EXPECT_EQ(CallCount("CreateFileW"), 0u);
        EXPECT_THAT(LogLines(g_pInit), Contains(std::wstring(L"Information|USB device inserted:  ") + GetParam()));
    }
}

INSTANTIATE_TEST_SUITE_P(Odd, UsbArrivalName,
                         testing::Values(L"", L"\\", L"\\\\?", L"\\\\?\\", L"a#b", L"#", L"####", L"\\\\?\\#",
                                         L"\\\\?\\#{x}", L"\\\\?\\USB\\VID_1D6B&PID_0BB0\\4&FA1",
                                         L"\\\\?\\USB#VID_1D6B&PID_0BB0", L"\\\\?\\USB#VID_1D6B&PID_0BB0#4&FA1",
                                         L"USB#VID_1D6B&PID_0BB0#4&FA1#{x}"));

TEST_F(UsbDevice, NewArrival_ReplacesTheStoredId)
{
    Arrive(ArrivedName);
    Arrive(L"\\\\?\\USB#OTHER#1#{x}");
    EXPECT_EQ(g_strArrivedInstanceId, L"USB\\OTHER\\1");
    Arrive(L"no device");
    EXPECT_EQ(g_strArrivedInstanceId, L"");
}

TEST_F(UsbDevice, NoHeader_DoesNothing)
{
    CUsbDevice::Init(nullptr, nullptr);
    EXPECT_THAT(LogLines(g_pInit), ElementsAre(L"TraceIn|", L"TraceOut|"));
    EXPECT_THAT(Calls(), testing::IsEmpty());
}

// The name is read up to the size that the header says and no further.
TEST_F(UsbDevice, NameWithoutEnd_IsReadUpToTheSize)
{
    struct
    {
        DEV_BROADCAST_DEVICEINTERFACE_W m_header;
        wchar_t m_behind[64];
    } message{};
    const std::wstring name = L"\\\\?\\USB#X#1#{x}#not part of it";
    std::copy(name.begin(), name.end(), message.m_header.dbcc_name);
    constexpr DWORD offset = offsetof(DEV_BROADCAST_DEVICEINTERFACE_W, dbcc_name);
    const auto* header = reinterpret_cast<const DEV_BROADCAST_HDR*>(&message);
    message.m_header.dbcc_size = offset + 15 * 2 + 1;
    CUsbDevice::Init(nullptr, header);
    EXPECT_EQ(g_strArrivedInstanceId, L"USB\\X\\1");
    for (const DWORD size : {0ul, 12ul, offset, offset + 1, offset + 8})
    {
        message.m_header.dbcc_size = size;
        CUsbDevice::Init(nullptr, header);
        EXPECT_EQ(g_strArrivedInstanceId, L"") << size;
    }
}

TEST_F(UsbDevice, GetHubName_ComparesWithoutCase)
{
    EXPECT_EQ(CUsbDevice::GetHubName(L"usb\\root_hub30\\4&fa0"), L"\\\\?\\hub");
    EXPECT_EQ(CUsbDevice::GetHubName(L"USB\\ROOT_HUB30\\4&FA"), L"");
    EXPECT_EQ(CUsbDevice::GetHubName(L""), L"");
}

// Each call on the way to the name fails in turn.
TEST_F(UsbDevice, GetHubName_ACallFails_IsEmpty)
{
    for (const auto& [call, nth] : {std::pair{"SetupDiGetClassDevsW", 1u},
                                    {"SetupDiEnumDeviceInfo", 1u},
                                    {"SetupDiGetDeviceInstanceIdW", 1u},
                                    {"SetupDiEnumDeviceInterfaces", 1u},
                                    {"SetupDiGetDeviceInterfaceDetailW", 1u},
                                    {"SetupDiGetDeviceInterfaceDetailW", 2u}})
    {
        StartWatching();
        Fail(call, ERROR_ACCESS_DENIED, nth);
        EXPECT_EQ(CUsbDevice::GetHubName(HubId), L"") << call << nth;
    }
}

TEST_F(UsbDevice, GetHubName_SizeQueryWorksWithoutBuffer_IsEmpty)
{
    m_tree.m_bSizeQueryWorks = true;
    EXPECT_EQ(CUsbDevice::GetHubName(HubId), L"");
    EXPECT_EQ(CallCount("SetupDiGetDeviceInterfaceDetailW"), 1u);
}

class UsbDeviceBehindTwoHubs : public UsbDevice
{
protected:
    // The other hub is enumerated first.
    UsbDeviceBehindTwoHubs()
    {
        for (Tests::Device& device : m_tree.m_lstDevices)
            device.m_parent += device.m_parent != 0 ? 1 : 0;
        m_tree.m_lstDevices.insert(m_tree.m_lstDevices.begin(),
                                   {L"USB\\ROOT_HUB30\\OTHER", L"", 0, {{Tests::g_hubClass, L"\\\\?\\other"}}});
        StartWatching();
    }
};

TEST_F(UsbDeviceBehindTwoHubs, OtherHubFirst_IsPassedOver)
{
    g_bBillboardDevice = false;
    Arrive(ArrivedName);
    EXPECT_TRUE(g_bBillboardDevice);
    EXPECT_EQ(Details("CreateFileW").at("path"), "\\\\?\\hub");
    EXPECT_EQ(CallCount("CreateFileW"), 1u);
}

TEST_F(UsbDeviceBehindTwoHubs, IdOfTheOtherHubFails_GoesOnWithTheNext)
{
    Fail("SetupDiGetDeviceInstanceIdW", ERROR_NO_SUCH_DEVINST);
    EXPECT_EQ(CUsbDevice::GetHubName(HubId), L"\\\\?\\hub");
    EXPECT_EQ(CallCount("SetupDiGetDeviceInstanceIdW"), 2u);
}

class UsbDeviceSweep : public UsbDevice, public testing::WithParamInterface<Simulator::Repeat>
{
};

TEST_P(UsbDeviceSweep, EachCallFails_NothingIsLeftAndTheNextArrivalWorks)
{
    unsigned calls = 0;
    for (bool hasFailed = true; hasFailed; ++calls)
    {
        g_bBillboardDevice = true;
        StartWatching();
        Simulator::CallPlan::Instance().FailAny(E_FAIL, calls + 1, GetParam());
        Arrive(ArrivedName);
        hasFailed = Simulator::CallPlan::Instance().FailedCount() != 0;
        EXPECT_TRUE(g_bBillboardDevice);
        StartWatching();
        g_bBillboardDevice = false;
        Arrive(ArrivedName);
        EXPECT_TRUE(g_bBillboardDevice);
    }
    EXPECT_GT(calls, 30u);
}

INSTANTIATE_TEST_SUITE_P(OnceAndAlways, UsbDeviceSweep,
                         testing::Values(Simulator::Repeat::Once, Simulator::Repeat::Always));

TEST_F(UsbDevice, ThousandArrivals_LeaveNothing)
{
    Arrive(ArrivedName);
    StartWatching();
    const std::size_t blocks = LiveHeapBlocks();
    for (int i = 0; i < 1000; ++i)
    {
        Arrive(ArrivedName);
        StartWatching();
    }
    EXPECT_NEAR(static_cast<double>(LiveHeapBlocks()), static_cast<double>(blocks), 20);
}
} // namespace
