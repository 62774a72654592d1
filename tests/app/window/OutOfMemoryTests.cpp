#include "app/FirmwareStartUp.h"
#include "app/MainWindow.h"
#include "app/ProcessInstances.h"
#include "app/UsbCStartUp.h"
#include "shared/LogLevel.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/app/window/Broadcast.h"
#include "tests/support/LogCapture.h"
#include "tests/wmievents/SmallMachine.h"
#include "usbc/AcpiUsbCMonitor.h"
#include "usbc/UsbCState.h"
#include "wmievents/AuditLogScan.h"
#include "wmievents/VeritorThreads.h"

#include <dbt.h>
#include <objbase.h>
#include <setupapi.h>

#include <gmock/gmock.h>

#include <new>
#include <string>

using Simulator::Redirection;
using testing::ElementsAre;
using Tests::SmallMachine;
using Tests::SweepAllocations;
using TestSupport::LogLines;

// Want of memory in start-up and in the window procedure.
namespace
{
const std::wstring g_imagePath = L"C:\\Program Files\\Orvik\\Orvik Notifications\\Orvik.ico";
constexpr const wchar_t* g_ended = L"Error|A step ended with an exception.";

bool g_raisesInSleep;

void WINAPI PassAtOnce(DWORD)
{
    if (g_raisesInSleep)
        throw std::bad_alloc();
}

WINBOOL WINAPI StayBehind(HWND)
{
    return TRUE;
}

HDEVNOTIFY WINAPI RefuseRegistration(HANDLE, LPVOID, DWORD)
{
    return nullptr;
}

// The detection's first call to Windows: a billboard device was found.
HDEVINFO WINAPI FindBillboard(const GUID*, PCWSTR, HWND, DWORD)
{
    g_bBillboardDevice = true;
    return INVALID_HANDLE_VALUE;
}

decltype(CreateThread)* g_pfnCreateThread = nullptr;

// The threads of the firmware's protection would outlive the test.
HANDLE WINAPI StartNoProtection(LPSECURITY_ATTRIBUTES security, SIZE_T stackSize, LPTHREAD_START_ROUTINE start,
                                LPVOID argument, DWORD flags, LPDWORD threadId)
{
    using namespace Notifications::OrvikWmiEvents;
    if (start == &ThreadProcVeritorLogging || start == &ThreadProcCreateHashKeysForVeritorEventLogs)
        return nullptr;
    return g_pfnCreateThread(security, stackSize, start, argument, flags, threadId);
}

class OutOfMemoryTest : public testing::Test
{
protected:
    OutOfMemoryTest()
    {
        EXPECT_EQ(CoInitialize(nullptr), S_OK);
        g_hInstance = GetModuleHandleW(nullptr);
        g_bResumeHandled = false;
        g_raisesInSleep = false;
        g_pfnCreateThread = m_thread.Original();
    }
    ~OutOfMemoryTest() override
    {
        g_pNotificationsHandler.Destroy();
        g_pWmiHandler.Destroy();
        g_bBillboardDevice = false;
        CoUninitialize();
    }

    static void MakeInstances()
    {
        g_pWmiHandler.Create();
        g_pNotificationsHandler.Create(g_hInstance).Init();
        ASSERT_TRUE(g_pNotificationsHandler.Get()->IsUSBCSupported());
    }

    // Each allocation fails in turn: the message is answered with 0 each time, and shows all its toasts once there is
    // memory again.
    void SweepMessage(UINT message, WPARAM wParam, LPARAM lParam, unsigned toasts)
    {
        LRESULT result = -1;
        const auto send = [&]
        {
            g_bResumeHandled = false;
            result = WndProc(m_hwnd, message, wParam, lParam);
        };
        unsigned lost = 0;
        // What runs for the first time is not counted.
        send();
        static_cast<void>(SmallMachine::TakeToasts());
        static_cast<void>(SweepAllocations(send,
                                           [&]
                                           {
                                               EXPECT_EQ(result, 0) << message;
                                               lost += SmallMachine::TakeToasts() < toasts;
                                           }));
        EXPECT_EQ(result, 0) << message;
        EXPECT_EQ(SmallMachine::TakeToasts(), toasts) << message;
        EXPECT_GT(lost, 0u) << message;
    }

    HWND m_hwnd = reinterpret_cast<HWND>(0x4444);
    SmallMachine m_machine;
    Redirection<decltype(Sleep)> m_sleep{"Sleep", &PassAtOnce};
    Redirection<decltype(CreateThread)> m_thread{"CreateThread", &StartNoProtection};
    Redirection<decltype(SetForegroundWindow)> m_foreground{"SetForegroundWindow", &StayBehind};
    Redirection<decltype(RegisterDeviceNotificationW)> m_register{"RegisterDeviceNotificationW", &RefuseRegistration};
    Redirection<decltype(SetupDiGetClassDevsW)> m_devices{"SetupDiGetClassDevsW", &FindBillboard};
};
} // namespace

TEST_F(OutOfMemoryTest, CreateNotificationsHandler_EachAllocationFails_LetsNothingOut)
{
    unsigned missing = 0;
    unsigned withoutImage = 0;
    SweepAllocations(
        []
        {
            g_pNotificationsHandler.Destroy();
            CreateNotificationsHandler("wWinMain", g_imagePath);
            CoUninitialize();
        },
        [&]
        {
            const auto* const handler = g_pNotificationsHandler.Get();
            missing += handler == nullptr;
            withoutImage += handler != nullptr && handler->ToastImagePath().empty();
            const bool isWhole = handler != nullptr && !handler->ToastImagePath().empty();
            EXPECT_EQ(LogLines("wWinMain").size(), isWhole ? 0u : 1u);
        });
    EXPECT_EQ(missing, 1u);
    EXPECT_EQ(withoutImage, 1u);
    const auto* const handler = g_pNotificationsHandler.Get();
    ASSERT_NE(handler, nullptr);
    EXPECT_TRUE(handler->IsUSBCSupported());
    EXPECT_EQ(handler->ToastImagePath(), g_imagePath);
}

TEST_F(OutOfMemoryTest, StartUsbCEvents_EachAllocationFails_LetsNothingOutAndARegistrationWithoutMemoryShowsAllTheSame)
{
    MakeInstances();
    static_cast<void>(SmallMachine::TakeToasts());
    unsigned lost = 0;
    unsigned unregistered = 0;
    SweepAllocations([] { StartUsbCEvents("wWinMain", g_imagePath); },
                     [&]
                     {
                         const unsigned toasts = SmallMachine::TakeToasts();
                         lost += toasts == 0;
                         unregistered += toasts == 1 && TestSupport::LogCount(Orvik::Shared::Level::Error, "wWinMain",
                                                                              L"A step ended with an exception.") == 1;
                     });
    EXPECT_EQ(SmallMachine::TakeToasts(), 1u);
    EXPECT_GT(lost, 0u);
    EXPECT_GT(unregistered, 0u);
}

TEST_F(OutOfMemoryTest, RegisterFirmwareEvents_EachAllocationFails_LetsNothingOutAndTakesTheLastStep)
{
    MakeInstances();
    unsigned ended = 0;
    SweepAllocations([] { RegisterFirmwareEvents("wWinMain", *g_pWmiHandler.Get()); },
                     [&]
                     {
                         ended += TestSupport::LogCount(Orvik::Shared::Level::Error, "wWinMain",
                                                        L"A step ended with an exception.") == 1;
                         const auto last =
                             LogLines("Notifications::OrvikWmiEvents::COrvikWmiEvents::RegisterGPIOWMIEvent");
                         EXPECT_FALSE(last.empty());
                     });
    // Each subscription's own memory, at least.
    EXPECT_GE(ended, 5u);
}

TEST_F(OutOfMemoryTest, WndProc_EachAllocationFails_AnswersZeroAndTheNextMessageIsHandled)
{
    MakeInstances();
    const Tests::Broadcast arrival(DBT_DEVTYP_DEVICEINTERFACE, L"\\\\?\\USB#VID_1D6B&PID_0011#1#{class}");
    SweepMessage(WM_NOTIFY_ACPI_USB_C, 0, 0, 1);
    SweepMessage(WM_DEVICECHANGE, DBT_DEVICEARRIVAL, arrival.Parameter(), 1);
    // The message of USB-C and the one of the smart adapter.
    SweepMessage(WM_POWERBROADCAST, PBT_APMRESUMESUSPEND, 0, 2);
    SweepMessage(WM_WTSSESSION_CHANGE, WTS_SESSION_UNLOCK, 1, 2);
}

TEST_F(OutOfMemoryTest, WndProc_Raises_AnswersZeroAndTheNextMessageIsHandled)
{
    MakeInstances();
    static_cast<void>(SmallMachine::TakeToasts());
    g_raisesInSleep = true;
    LRESULT result = -1;
    EXPECT_NO_THROW(result = WndProc(m_hwnd, WM_POWERBROADCAST, PBT_APMRESUMESUSPEND, 0));
    EXPECT_EQ(result, 0);
    EXPECT_THAT(LogLines("WndProc"), ElementsAre(L"Verbose|WM_POWERBROADCAST wParam: 7", g_ended));
    EXPECT_EQ(SmallMachine::TakeToasts(), 0u);
    EXPECT_EQ(WndProc(m_hwnd, WM_NOTIFY_ACPI_USB_C, 0, 0), 0);
    EXPECT_EQ(SmallMachine::TakeToasts(), 1u);
}
