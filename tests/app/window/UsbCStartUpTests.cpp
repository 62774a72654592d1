#include "app/UsbCStartUp.h"

#include "simulator/model/Facts.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/app/window/Broadcast.h"
#include "tests/app/window/WindowMessageTest.h"
#include "tests/support/LogCapture.h"
#include "usbc/AcpiUsbCMonitor.h"
#include "usbc/UsbCState.h"

#include <dbt.h>
#include <objbase.h>
#include <setupapi.h>

#include <gmock/gmock.h>

#include <cstdint>
#include <utility>
#include <vector>

using Simulator::Redirection;
using testing::ElementsAre;
using testing::IsEmpty;
using Tests::DoneCalls;
using TestSupport::LogLines;

namespace
{
constexpr const char* g_usbCQuery = "SELECT * FROM orvikBEvnt WHERE EventID = 131073";
constexpr const wchar_t* g_acpi = L"Verbose|IsUsingACPIUsbCEvent returns true";
constexpr const wchar_t* g_before = L"Verbose|Get message that might be on system before the app is running";

std::vector<HINSTANCE> g_lstModules;

int WINAPI NotedLoadStringW(HINSTANCE module, UINT, LPWSTR buffer, int)
{
    g_lstModules.push_back(module);
    *buffer = L'\0';
    return 0;
}

bool g_areMessagesWaiting = false;
const void* g_pHandlerMeanwhile = nullptr;
std::vector<LRESULT> g_lstResults;
decltype(OleRun)* g_pfnOleRun = nullptr;

// Window messages that get in while the handler asks the platform.
HRESULT WINAPI LetMessagesIn(LPUNKNOWN object)
{
    if (std::exchange(g_areMessagesWaiting, false))
    {
        g_pHandlerMeanwhile = g_pNotificationsHandler.Get();
        const Tests::Broadcast arrival(DBT_DEVTYP_DEVICEINTERFACE, L"");
        g_lstResults = {WndProc(g_hwndMain, WM_NOTIFY_ACPI_USB_C, 0, 0),
                        WndProc(g_hwndMain, WM_POWERBROADCAST, PBT_APMRESUMEAUTOMATIC, 0),
                        WndProc(g_hwndMain, WM_WTSSESSION_CHANGE, WTS_SESSION_UNLOCK, 1),
                        WndProc(g_hwndMain, WM_DEVICECHANGE, DBT_DEVICEARRIVAL, arrival.Parameter())};
    }
    return g_pfnOleRun(object);
}

HDEVINFO WINAPI NoDevices(const GUID*, PCWSTR, HWND, DWORD)
{
    return INVALID_HANDLE_VALUE;
}

class UsbCStartUpTest : public Tests::WindowMessageTest
{
protected:
    UsbCStartUpTest()
    {
        Version("10.0.19045");
        g_hwndMain = m_hwnd;
    }
    ~UsbCStartUpTest() override
    {
        g_hwndMain = nullptr;
        g_hUsbDeviceNotification = nullptr;
        g_hUsbHubNotification = nullptr;
        g_dwAcpiMonitorThreadId = 0;
    }

    static void Version(const char* version)
    {
        Simulator::Facts::Instance().Set("/wmi/os/version", {{"bstr", version}});
    }

    static void Start(const char* machineId, bool isSupported)
    {
        MakeHandler(machineId, isSupported);
        StartWatching();
        StartUsbCEvents("wWinMain", L"C:\\icon.ico");
    }
};
} // namespace

TEST_F(UsbCStartUpTest, CreateNotificationsHandler_MakesInitialisesAndGivesTheImage)
{
    Answer("Platform.MachineID", {{"bstr", "8042"}});
    Answer("Platform.USBC.Supported", {{"bool", true}});
    StartWatching();
    CreateNotificationsHandler("wWinMain", L"C:\\image.ico");
    const auto* const handler = g_pNotificationsHandler.Get();
    ASSERT_NE(handler, nullptr);
    EXPECT_THAT(DoneCalls(), ElementsAre("CoInitialize", "Platform.MachineID", "Platform.USBC.Supported"));
    EXPECT_EQ(Details("CoInitialize"), (nlohmann::json{{"reserved", false}}));
    EXPECT_TRUE(handler->IsUsingACPIUsbCEvent());
    EXPECT_TRUE(handler->IsUSBCSupported());
    EXPECT_EQ(handler->ToastImagePath(), L"C:\\image.ico");
    EXPECT_THAT(LogLines("wWinMain"), IsEmpty());
    CoUninitialize();
}

TEST_F(UsbCStartUpTest, CreateNotificationsHandler_TextsAreThoseOfTheModule)
{
    g_hInstance = reinterpret_cast<HINSTANCE>(std::uintptr_t{0x1230000});
    g_lstModules.clear();
    CreateNotificationsHandler("wWinMain", L"");
    ASSERT_NE(g_pNotificationsHandler.Get(), nullptr);
    const Redirection<decltype(LoadStringW)> noted("LoadStringW", &NotedLoadStringW);
    g_pNotificationsHandler.Get()->ShowBillboardMessage();
    EXPECT_THAT(g_lstModules, ElementsAre(g_hInstance, g_hInstance));
    CoUninitialize();
}

TEST_F(UsbCStartUpTest, CreateNotificationsHandler_MessagesMeanwhileFindNoHandler)
{
    Answer("Platform.MachineID", {{"bstr", "8042"}});
    Answer("Platform.USBC.Supported", {{"bool", true}});
    StartWatching();
    // A billboard device is there, so that each of the messages would show a toast.
    g_bBillboardDevice = true;
    g_areMessagesWaiting = true;
    g_lstResults.clear();
    {
        const Redirection<decltype(SetupDiGetClassDevsW)> noDevices("SetupDiGetClassDevsW", &NoDevices);
        const Redirection<decltype(OleRun)> run("OleRun", &LetMessagesIn);
        g_pfnOleRun = run.Original();
        CreateNotificationsHandler("wWinMain", L"C:\\image.ico");
    }
    EXPECT_FALSE(g_areMessagesWaiting);
    EXPECT_EQ(g_pHandlerMeanwhile, nullptr);
    EXPECT_THAT(g_lstResults, ElementsAre(0, 0, 0, 0));
    EXPECT_THAT(Toasts(), IsEmpty());
    EXPECT_FALSE(WasCalled("IPlixCommand::ExecuteWithInput"));
    const auto* const handler = g_pNotificationsHandler.Get();
    ASSERT_NE(handler, nullptr);
    EXPECT_TRUE(handler->IsUsingACPIUsbCEvent() && handler->IsUSBCSupported());
    EXPECT_EQ(handler->ToastImagePath(), L"C:\\image.ico");
    g_bBillboardDevice = false;
    CoUninitialize();
}

TEST_F(UsbCStartUpTest, WmiMachine_RegistersThenShowsAllPorts)
{
    MakeHub();
    Start("8A11", true);
    EXPECT_THAT(LogLines("wWinMain"), ElementsAre(g_before));
    EXPECT_THAT(DoneCalls(), ElementsAre(g_usbCQuery, "Platform.USBC.Messages 255"));
    EXPECT_THAT(ToastTexts(), ElementsAre(MessageOfWmi));
}

TEST_F(UsbCStartUpTest, WmiMachine_RegistrationFails_ShowsAllTheSame)
{
    MakeHub();
    MakeHandler("8A11", true);
    StartWatching();
    Simulator::CallPlan::Instance().Fail("IWbemServices::ExecNotificationQueryAsync", E_FAIL);
    StartUsbCEvents("wWinMain", L"");
    EXPECT_THAT(LogLines("wWinMain"), ElementsAre(g_before));
    EXPECT_THAT(ToastTexts(), ElementsAre(MessageOfWmi));
}

TEST_F(UsbCStartUpTest, WmiMachineWithoutHub_ShowsAllTheSame)
{
    Start("8A11", true);
    EXPECT_THAT(LogLines("wWinMain"), ElementsAre(g_before));
    EXPECT_THAT(DoneCalls(), ElementsAre("Platform.USBC.Messages 255"));
}

TEST_F(UsbCStartUpTest, WmiMachineBeforeWindows10_RegistersDevicesThenHubs)
{
    Version("6.3.9600");
    Start("8A11", true);
    EXPECT_THAT(DoneCalls(), ElementsAre("Platform.USBC.Messages 255", "RegisterDeviceNotificationW",
                                         "RegisterDeviceNotificationW"));
    const auto wanted = [](const char* interfaceClass)
    { return nlohmann::json{{"class", interfaceClass}, {"size", 32}, {"type", 5}, {"flags", 0}}; };
    EXPECT_EQ(Details("RegisterDeviceNotificationW", 1), wanted("{A5DCBF10-6530-11D2-901F-00C04FB951ED}"));
    EXPECT_EQ(Details("RegisterDeviceNotificationW", 2), wanted("{F18A0E88-C30C-11D0-8815-00A0C906BED8}"));
    EXPECT_THAT(m_system.m_lstRecipients, ElementsAre(m_hwnd, m_hwnd));
    EXPECT_EQ(g_hUsbDeviceNotification, reinterpret_cast<HDEVNOTIFY>(0x10));
    EXPECT_EQ(g_hUsbHubNotification, reinterpret_cast<HDEVNOTIFY>(0x20));
}

TEST_F(UsbCStartUpTest, DeviceRegistrationsFail_LeaveNullAndLogNothing)
{
    Version("6.1.7601");
    g_hUsbDeviceNotification = reinterpret_cast<HDEVNOTIFY>(1);
    g_hUsbHubNotification = reinterpret_cast<HDEVNOTIFY>(1);
    m_system.m_bRefusesRegistration = true;
    Start("8A11", true);
    EXPECT_EQ(m_system.m_lstRecipients.size(), 2u);
    EXPECT_EQ(g_hUsbDeviceNotification, nullptr);
    EXPECT_EQ(g_hUsbHubNotification, nullptr);
    EXPECT_THAT(LogLines("wWinMain"), ElementsAre(g_before));
}

TEST_F(UsbCStartUpTest, AcpiMachine_StartsTheMonitorThenShowsPortZero)
{
    MakeHub();
    Version("6.3.9600");
    Start("8042", true);
    EXPECT_THAT(LogLines("wWinMain"), ElementsAre(g_acpi, g_before));
    // Neither a subscription nor device notifications, though USB-C is supported and Windows is old.
    EXPECT_THAT(DoneCalls(), ElementsAre("CreateThread", "Platform.USBC.Messages 0"));
    EXPECT_EQ(Details("CreateThread"),
              (nlohmann::json{{"security", false}, {"stack-size", 0}, {"argument", false}, {"flags", 0}}));
    EXPECT_EQ(g_dwAcpiMonitorThreadId, 4711u);
    EXPECT_THAT(ToastTexts(), ElementsAre(MessageOfAcpi));
}

TEST_F(UsbCStartUpTest, AcpiMachine_NoThread_ShowsAllTheSame)
{
    m_system.m_bRefusesThread = true;
    Start("8042", false);
    EXPECT_THAT(LogLines("wWinMain"), ElementsAre(g_acpi, g_before));
    EXPECT_THAT(DoneCalls(), ElementsAre("CreateThread", "Platform.USBC.Messages 0"));
    EXPECT_EQ(g_dwAcpiMonitorThreadId, 0u);
}

TEST_F(UsbCStartUpTest, NeitherSource_SkipsAll)
{
    MakeHub();
    Version("6.3.9600");
    Start("8A11", false);
    EXPECT_THAT(LogLines(), IsEmpty());
    EXPECT_THAT(Calls(), IsEmpty());
}

TEST_F(UsbCStartUpTest, NoHandler_SkipsAll)
{
    StartWatching();
    StartUsbCEvents("wWinMain", L"");
    EXPECT_TRUE(TestSupport::NothingLogged());
    EXPECT_THAT(Calls(), IsEmpty());
}

TEST_F(UsbCStartUpTest, SuppressedByPolicy_ShowsAtStartAllTheSame)
{
    for (const wchar_t* const value : {L"SuppressAllNotifications", L"SuppressUsbCNotifications"})
    {
        const TestSupport::SuppressPolicy suppress(value);
        Start("8A11", true);
        EXPECT_THAT(ToastTexts(), ElementsAre(MessageOfWmi));
        Start("8042", true);
        EXPECT_THAT(ToastTexts(), ElementsAre(MessageOfAcpi));
    }
}
