#include "app/UsbCMessages.h"

#include "app/MainWindow.h"
#include "tests/app/window/WindowMessageTest.h"
#include "tests/support/LogCapture.h"
#include "usbc/AcpiUsbCMonitor.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;
using Tests::DoneCalls;
using TestSupport::LogLines;

namespace
{
constexpr const wchar_t* g_got = L"Verbose|Got WM_NOTIFY_ACPI_USB_C";

class UsbCMessageTest : public Tests::WindowMessageTest
{
protected:
    // What DisplayExistingMessages alone does.
    static void Display()
    {
        StartWatching();
        DisplayExistingMessages();
    }
};
} // namespace

static_assert(WM_NOTIFY_ACPI_USB_C == 1278);
static_assert(WM_NOTIFY_ACPI_USB_C == WM_USER + 254);

TEST_F(UsbCMessageTest, DisplayExistingMessages_AcpiMachine_AsksForPortZero)
{
    MakeHandler("8042", false);
    Display();
    EXPECT_THAT(DoneCalls(), ElementsAre("Platform.USBC.Messages 0"));
    EXPECT_THAT(LogLines("DisplayExistingMessages"), ElementsAre(L"TraceIn|", L"TraceOut|"));
}

TEST_F(UsbCMessageTest, DisplayExistingMessages_AcpiMachineWithSupport_AsksForPortZeroOnly)
{
    MakeHandler("8042", true);
    Display();
    EXPECT_THAT(DoneCalls(), ElementsAre("Platform.USBC.Messages 0"));
}

TEST_F(UsbCMessageTest, DisplayExistingMessages_Supported_AsksForAllPorts)
{
    MakeHandler("08042", true);
    Display();
    EXPECT_THAT(DoneCalls(), ElementsAre("Platform.USBC.Messages 255"));
}

TEST_F(UsbCMessageTest, DisplayExistingMessages_NeitherSource_DoesNothing)
{
    MakeHandler("8A11", false);
    Display();
    EXPECT_THAT(Calls(), IsEmpty());
}

TEST_F(UsbCMessageTest, DisplayExistingMessages_NoHandler_DoesNothing)
{
    Display();
    EXPECT_THAT(Calls(), IsEmpty());
}

TEST_F(UsbCMessageTest, AcpiMessage_IsLoggedThenShown)
{
    MakeHandler("8042", false);
    EXPECT_EQ(Send(WM_NOTIFY_ACPI_USB_C), 0);
    EXPECT_THAT(LogLines("WndProc"), ElementsAre(g_got));
    EXPECT_THAT(DoneCalls(), ElementsAre("Platform.USBC.Messages 0"));
    EXPECT_THAT(ToastTexts(), ElementsAre(MessageOfAcpi));
    EXPECT_THAT(m_system.m_lstHandedOn, IsEmpty());
}

TEST_F(UsbCMessageTest, AcpiMessage_EachIsHandledOnce)
{
    MakeHandler("8042", false);
    for (int round = 0; round < 3; ++round)
    {
        Send(WM_NOTIFY_ACPI_USB_C);
        EXPECT_THAT(ToastTexts(), ElementsAre(MessageOfAcpi));
    }
}

TEST_F(UsbCMessageTest, AcpiMessage_PolicyValues_SilenceAfterTheLine)
{
    MakeHandler("8042", true);
    for (const wchar_t* const value : {L"SuppressAllNotifications", L"SuppressUsbCNotifications"})
    {
        const TestSupport::SuppressPolicy suppress(value);
        EXPECT_EQ(Send(WM_NOTIFY_ACPI_USB_C), 0);
        EXPECT_THAT(LogLines("WndProc"), ElementsAre(g_got));
        EXPECT_THAT(Calls(), IsEmpty());
        EXPECT_THAT(Toasts(), IsEmpty());
    }
}

TEST_F(UsbCMessageTest, AcpiMessage_OtherPolicyValues_DoNotSilence)
{
    MakeHandler("8042", true);
    for (const wchar_t* const value : {L"SuppressUsbCBiosNotifications", L"SuppressSmartAdapterNotifications"})
    {
        const TestSupport::SuppressPolicy suppress(value);
        Send(WM_NOTIFY_ACPI_USB_C);
        EXPECT_THAT(ToastTexts(), ElementsAre(MessageOfAcpi));
    }
}

TEST_F(UsbCMessageTest, AcpiMessage_BeforeTheHandlerExists_IsLoggedOnly)
{
    EXPECT_EQ(Send(WM_NOTIFY_ACPI_USB_C), 0);
    EXPECT_THAT(LogLines("WndProc"), ElementsAre(g_got));
    EXPECT_THAT(Calls(), IsEmpty());
}
