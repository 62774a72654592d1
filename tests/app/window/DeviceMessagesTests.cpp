#include "shared/LogLevel.h"
#include "simulator/model/Journal.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/app/window/Broadcast.h"
#include "tests/app/window/WindowMessageTest.h"
#include "tests/support/LogCapture.h"
#include "usbc/UsbCState.h"

#include <dbt.h>
#include <setupapi.h>

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;
using Tests::Broadcast;
using TestSupport::Logged;
using TestSupport::LogLines;
namespace Level = Orvik::Shared::Level;

namespace
{
constexpr const wchar_t* g_name = L"\\\\?\\USB#VID_1D6B&PID_0011#1#{a5dcbf10-6530-11d2-901f-00c04fb951ed}";
constexpr const char* g_text = "Device mode is not supported. Check cable or system capabilities.";
constexpr const wchar_t* g_billboard = L"Verbose|Get billboard device message (device manager)";

// What the detection finds; nothing when it is to fail.
enum class Finds
{
    Nothing,
    Billboard,
    Other
};
Finds g_finds = Finds::Nothing;

// The detection's first call to Windows: the test's finding is there when the detection ends with this failure.
HDEVINFO WINAPI NotedGetClassDevs(const GUID*, PCWSTR, HWND, DWORD)
{
    if (g_finds != Finds::Nothing)
        g_bBillboardDevice = g_finds == Finds::Billboard;
    Simulator::Journal::Instance().Append("call", "SetupDiGetClassDevsW");
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return INVALID_HANDLE_VALUE;
}

class DeviceMessageTest : public Tests::WindowMessageTest
{
protected:
    DeviceMessageTest() { MakeHandler("8A11", true); }
    ~DeviceMessageTest() override { g_bBillboardDevice = false; }

    // The arrival of a device interface of which the detection finds that.
    LRESULT Arrive(Finds finds)
    {
        g_finds = finds;
        const Broadcast broadcast(DBT_DEVTYP_DEVICEINTERFACE, g_name);
        return Send(WM_DEVICECHANGE, DBT_DEVICEARRIVAL, broadcast.Parameter());
    }

    static bool WasDetected() { return WasCalled("SetupDiGetClassDevsW"); }

    Simulator::Redirection<decltype(SetupDiGetClassDevsW)> m_devices{"SetupDiGetClassDevsW", &NotedGetClassDevs};
};
} // namespace

TEST_F(DeviceMessageTest, Billboard_IsDetectedThenShown)
{
    EXPECT_EQ(Arrive(Finds::Billboard), 0);
    EXPECT_TRUE(Logged(Level::Information, "CUsbDevice::Init", std::wstring(L"USB device inserted:  ") + g_name));
    EXPECT_THAT(LogLines("WndProc"), ElementsAre(g_billboard));
    EXPECT_THAT(ToastTexts(), ElementsAre(g_text));
    EXPECT_THAT(m_system.m_lstHandedOn, IsEmpty());
}

TEST_F(DeviceMessageTest, OtherDevice_ShowsNothing)
{
    g_bBillboardDevice = true;
    EXPECT_EQ(Arrive(Finds::Other), 0);
    EXPECT_TRUE(WasDetected());
    EXPECT_THAT(LogLines("WndProc"), IsEmpty());
    EXPECT_THAT(Toasts(), IsEmpty());
}

TEST_F(DeviceMessageTest, FailedDetection_LeavesTheFlagAsItWas)
{
    EXPECT_EQ(Arrive(Finds::Nothing), 0);
    EXPECT_THAT(Toasts(), IsEmpty());
    g_bBillboardDevice = true;
    EXPECT_EQ(Arrive(Finds::Nothing), 0);
    EXPECT_THAT(LogLines("WndProc"), ElementsAre(g_billboard));
    EXPECT_THAT(ToastTexts(), ElementsAre(g_text));
}

TEST_F(DeviceMessageTest, Policies_SilenceAfterTheDetection)
{
    for (const wchar_t* const value : {L"SuppressAllNotifications", L"SuppressUsbCNotifications"})
    {
        const TestSupport::SuppressPolicy suppress(value);
        EXPECT_EQ(Arrive(Finds::Billboard), 0);
        EXPECT_TRUE(WasDetected());
        EXPECT_TRUE(g_bBillboardDevice);
        EXPECT_THAT(LogLines("WndProc"), IsEmpty());
        EXPECT_THAT(Toasts(), IsEmpty());
    }
}

TEST_F(DeviceMessageTest, OtherPolicies_DoNotSilence)
{
    for (const wchar_t* const value : {L"SuppressUsbCBiosNotifications", L"SuppressSmartAdapterNotifications"})
    {
        const TestSupport::SuppressPolicy suppress(value);
        EXPECT_EQ(Arrive(Finds::Billboard), 0);
        EXPECT_THAT(ToastTexts(), ElementsAre(g_text));
    }
}

TEST_F(DeviceMessageTest, WithoutHandler_IsLoggedOnly)
{
    g_pNotificationsHandler.Destroy();
    EXPECT_EQ(Arrive(Finds::Billboard), 0);
    EXPECT_THAT(LogLines("WndProc"), ElementsAre(g_billboard));
    EXPECT_THAT(Toasts(), IsEmpty());
}

TEST_F(DeviceMessageTest, OtherBroadcastTypes_AreIgnoredBeforeAnyLogging)
{
    g_bBillboardDevice = true;
    for (const DWORD type :
         {DWORD{DBT_DEVTYP_OEM}, DWORD{DBT_DEVTYP_DEVNODE}, DWORD{DBT_DEVTYP_VOLUME}, DWORD{DBT_DEVTYP_PORT},
          DWORD{DBT_DEVTYP_NET}, DWORD{DBT_DEVTYP_HANDLE}, DWORD{7}, DWORD{0x10005}, DWORD{0xFFFFFFFF}})
    {
        const Broadcast broadcast(type, g_name);
        EXPECT_EQ(Send(WM_DEVICECHANGE, DBT_DEVICEARRIVAL, broadcast.Parameter()), 0);
        EXPECT_TRUE(TestSupport::NothingLogged());
        EXPECT_THAT(Calls(), IsEmpty());
    }
}

TEST_F(DeviceMessageTest, OtherEvents_AreIgnoredBeforeAnyLogging)
{
    g_bBillboardDevice = true;
    const Broadcast broadcast(DBT_DEVTYP_DEVICEINTERFACE, g_name);
    for (const WPARAM event : {WPARAM{0}, WPARAM{DBT_DEVNODES_CHANGED}, WPARAM{DBT_CONFIGCHANGED},
                               WPARAM{DBT_DEVICEQUERYREMOVE}, WPARAM{DBT_DEVICEREMOVEPENDING},
                               WPARAM{DBT_DEVICEREMOVECOMPLETE}, WPARAM{DBT_CUSTOMEVENT}, WPARAM{0x100008000}})
    {
        EXPECT_EQ(Send(WM_DEVICECHANGE, event, broadcast.Parameter()), 0);
        EXPECT_TRUE(TestSupport::NothingLogged());
        EXPECT_THAT(Calls(), IsEmpty());
        EXPECT_THAT(m_system.m_lstHandedOn, IsEmpty());
    }
}

TEST_F(DeviceMessageTest, NoStructure_IsIgnored)
{
    g_bBillboardDevice = true;
    EXPECT_EQ(Send(WM_DEVICECHANGE, DBT_DEVICEARRIVAL, 0), 0);
    EXPECT_TRUE(TestSupport::NothingLogged());
    EXPECT_THAT(Toasts(), IsEmpty());
}

TEST_F(DeviceMessageTest, TooShortForAName_IsDetectedUnderAnEmptyName)
{
    g_finds = Finds::Billboard;
    for (const DWORD size : {12u, 13u, 27u, 28u, 29u})
    {
        g_bBillboardDevice = false;
        const Broadcast broadcast(DBT_DEVTYP_DEVICEINTERFACE, size);
        EXPECT_EQ(Send(WM_DEVICECHANGE, DBT_DEVICEARRIVAL, broadcast.Parameter()), 0);
        EXPECT_TRUE(Logged(Level::Information, "CUsbDevice::Init", L"USB device inserted:  ")) << size;
        EXPECT_TRUE(WasDetected()) << size;
        EXPECT_THAT(LogLines("WndProc"), ElementsAre(g_billboard)) << size;
        EXPECT_THAT(ToastTexts(), ElementsAre(g_text)) << size;
    }
}

TEST_F(DeviceMessageTest, ShortestInterface_HasAnEmptyName)
{
    g_finds = Finds::Other;
    const Broadcast broadcast(DBT_DEVTYP_DEVICEINTERFACE, L"");
    EXPECT_EQ(Send(WM_DEVICECHANGE, DBT_DEVICEARRIVAL, broadcast.Parameter()), 0);
    EXPECT_TRUE(Logged(Level::Information, "CUsbDevice::Init", L"USB device inserted:  "));
}
