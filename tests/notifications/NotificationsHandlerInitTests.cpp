#include "shared/LogLevel.h"
#include "simulator/doubles/JournalText.h"
#include "simulator/model/CallPlan.h"
#include "simulator/model/LiveObjects.h"
#include "tests/notifications/NotificationsMachine.h"
#include "tests/support/AllocationFault.h"
#include "tests/support/LogCapture.h"
#include "tests/support/PretendedModulePath.h"
#include "tests/wmievents/EmptyHandedCommand.h"

#include <gmock/gmock.h>

using Notifications::OrvikNotifications::CNotificationsHandler;
using Notifications::OrvikNotifications::GetConfigurationToolPath;
using Simulator::CallPlan;
using Simulator::Facts;
using Simulator::LiveObjects;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using TestSupport::LogLines;
using TestSupport::PretendedModulePath;

namespace
{
class NotificationsHandlerInitTest : public NotificationsMachine
{
protected:
    NotificationsHandlerInitTest()
    {
        Answer("Platform.MachineID", {{"bstr", "8042"}});
        Answer("Platform.USBC.Supported", {{"bool", true}});
    }

    static void Fail(const std::string& command, HRESULT hr)
    {
        Facts::Instance().Set("/commands/" + command, {{"hr", Simulator::HResultText(hr)}});
    }
};

std::wstring PathFor(const std::wstring& modulePath)
{
    const PretendedModulePath pretended(modulePath);
    return GetConfigurationToolPath();
}
} // namespace

TEST_F(NotificationsHandlerInitTest, New_KnowsNothing)
{
    StartOver();
    const CNotificationsHandler handler;
    EXPECT_FALSE(handler.IsUsingACPIUsbCEvent());
    EXPECT_FALSE(handler.IsUSBCSupported());
    EXPECT_EQ(handler.ConfigurationToolPath(), L"");
    EXPECT_EQ(handler.ToastImagePath(), L"");
    EXPECT_THAT(handler.PortMessages(), IsEmpty());
    EXPECT_THAT(Calls(), IsEmpty());
}

TEST_F(NotificationsHandlerInitTest, Works_AsksBothCommandsOfOneObjectAndGivesItBack)
{
    StartOver();
    m_handler.Init();
    EXPECT_THAT(Calls(), ElementsAre("CoCreateInstance", "OleRun", "IPlixCommand::Execute", "IPlixCommand::Execute"));
    EXPECT_THAT(DetailsOf("IPlixCommand::Execute", "command"),
                ElementsAre("Platform.MachineID", "Platform.USBC.Supported"));
    EXPECT_EQ(LiveObjects::Count("PlixCommand"), 0);
}

TEST_F(NotificationsHandlerInitTest, Works_WritesTheseRecords)
{
    m_handler.Init();
    EXPECT_TRUE(m_handler.IsUsingACPIUsbCEvent());
    EXPECT_TRUE(m_handler.IsUSBCSupported());
    EXPECT_THAT(LogLines(Initialise), ElementsAre(L"TraceIn|", L"TraceIn|Before Calling Platform.MachineID",
                                                  L"TraceOut|After Calling Platform.MachineID",
                                                  L"TraceIn|Before Calling Platform.USBC.Supported",
                                                  L"TraceOut|After Calling Platform.USBC.Supported",
                                                  L"Verbose|m_bUSBCSupported: 1", L"TraceOut|"));
}

TEST_F(NotificationsHandlerInitTest, Machine_AnyOther_DoesNotUseAcpi)
{
    for (const nlohmann::json& answer : std::vector<nlohmann::json>{{{"bstr", "08042"}},
                                                                    {{"bstr", "8042 "}},
                                                                    {{"bstr", " 8042"}},
                                                                    {{"bstr", "804"}},
                                                                    {{"bstr", "80420"}},
                                                                    {{"bstr", "8043"}},
                                                                    {{"bstr", ""}},
                                                                    {{"utf16", {'8', '0', '4', '2', ' ', 0}}},
                                                                    {{"utf16", {'8', '0', '4', 0, '2'}}},
                                                                    {{"utf16", {0, '8', '0', '4', '2'}}},
                                                                    {{"null-bstr", true}},
                                                                    {{"i4", 8042}},
                                                                    {{"empty", true}},
                                                                    {{"unknown", true}}})
    {
        Answer("Platform.MachineID", answer);
        m_handler.Init();
        EXPECT_FALSE(m_handler.IsUsingACPIUsbCEvent()) << answer;
        EXPECT_TRUE(m_handler.IsUSBCSupported()) << answer;
    }
    EXPECT_THAT(TestSupport::OperationalLines(), Not(testing::Contains(testing::HasSubstr(L"|Information|"))));
}

TEST_F(NotificationsHandlerInitTest, Machine_WithPaddingZeros_UsesAcpi)
{
    for (const nlohmann::json& answer : std::vector<nlohmann::json>{{{"bstr", "8042"}},
                                                                    {{"utf16", {'8', '0', '4', '2', 0}}},
                                                                    {{"utf16", {'8', '0', '4', '2', 0, 0, 0, 0}}},
                                                                    {{"utf16", {'8', '0', '4', '2', 0, 'x'}}}})
    {
        Answer("Platform.MachineID", answer);
        m_handler.Init();
        EXPECT_TRUE(m_handler.IsUsingACPIUsbCEvent()) << answer;
    }
}

TEST_F(NotificationsHandlerInitTest, Machine_CommandFails_IsLoggedAndTheOtherIsAsked)
{
    Fail("Platform.MachineID", static_cast<HRESULT>(0x80000003));
    m_handler.Init();
    EXPECT_FALSE(m_handler.IsUsingACPIUsbCEvent());
    EXPECT_TRUE(m_handler.IsUSBCSupported());
    EXPECT_THAT(LogLines(Initialise),
                ElementsAre(L"TraceIn|", L"TraceIn|Before Calling Platform.MachineID",
                            L"Information|Exception occurred when calling Platform.MachineID, [hr:0x80000003]",
                            L"TraceIn|Before Calling Platform.USBC.Supported",
                            L"TraceOut|After Calling Platform.USBC.Supported", L"Verbose|m_bUSBCSupported: 1",
                            L"TraceOut|"));
}

TEST_F(NotificationsHandlerInitTest, Supported_IsWhenTheSixteenBitsAreTrue_WhateverTheirType)
{
    const std::pair<nlohmann::json, bool> answers[] = {
        {{{"bool", true}}, true},       {{{"bool", false}}, false}, {{{"i2", -1}}, true},
        {{{"ui2", 0xFFFF}}, true},      {{{"i4", -1}}, true},       {{{"i4", 0xFFFF}}, true},
        {{{"i4", 0x7FFF0000}}, false},  {{{"i4", 1}}, false},       {{{"raw", {{"vt", VT_BOOL}, {"value", 1}}}}, false},
        {{{"null-bstr", true}}, false}, {{{"empty", true}}, false}};
    for (const auto& [answer, supported] : answers)
    {
        Answer("Platform.USBC.Supported", answer);
        StartOver();
        m_handler.Init();
        EXPECT_EQ(m_handler.IsUSBCSupported(), supported) << answer;
        EXPECT_THAT(LogLines(Initialise),
                    testing::Contains(supported ? L"Verbose|m_bUSBCSupported: 1" : L"Verbose|m_bUSBCSupported: 0"));
    }
}

TEST_F(NotificationsHandlerInitTest, Supported_LibraryAnswersNothing_IsFalse)
{
    Facts::Instance().Set("/commands/Platform.USBC.Supported", nlohmann::json::object());
    for (int i = 0; i < 5; ++i)
    {
        m_handler.Init();
        EXPECT_FALSE(m_handler.IsUSBCSupported());
    }
}

TEST_F(NotificationsHandlerInitTest, Supported_CommandFails_IsLoggedAndFalse)
{
    Fail("Platform.USBC.Supported", E_FAIL);
    m_handler.Init();
    EXPECT_TRUE(m_handler.IsUsingACPIUsbCEvent());
    EXPECT_FALSE(m_handler.IsUSBCSupported());
    EXPECT_THAT(LogLines(Initialise),
                ElementsAre(L"TraceIn|", L"TraceIn|Before Calling Platform.MachineID",
                            L"TraceOut|After Calling Platform.MachineID",
                            L"TraceIn|Before Calling Platform.USBC.Supported",
                            L"Verbose|Failed to get Platform.USBC.Supported, [hr:0x80004005]",
                            L"Information|Exception occurred when calling Platform.USBC.Supported, [hr:0x80004005]",
                            L"Verbose|m_bUSBCSupported: 0", L"TraceOut|"));
}

TEST_F(NotificationsHandlerInitTest, Library_Missing_IsOneLineAndThePathIsThere)
{
    Facts::Instance().Set("/platform/registered", false);
    m_handler.Init();
    EXPECT_FALSE(m_handler.IsUsingACPIUsbCEvent());
    EXPECT_FALSE(m_handler.IsUSBCSupported());
    EXPECT_THAT(LogLines(Initialise),
                ElementsAre(L"TraceIn|", L"Information|Create Plix instance cmd failed.  HR=0X80040154", L"TraceOut|"));
    EXPECT_EQ(m_handler.ConfigurationToolPath(), GetConfigurationToolPath());
    EXPECT_NE(m_handler.ConfigurationToolPath(), L"");
}

TEST_F(NotificationsHandlerInitTest, Library_GivesNoObject_IsOneLine)
{
    const Tests::EmptyHandedCommand emptyHanded;
    StartOver();
    m_handler.Init();
    EXPECT_FALSE(m_handler.IsUsingACPIUsbCEvent());
    EXPECT_THAT(LogLines(Initialise),
                ElementsAre(L"TraceIn|", L"Information|Create Plix instance cmd failed.  HR=0X0", L"TraceOut|"));
    EXPECT_THAT(DetailsOf("IPlixCommand::Execute", "command"), IsEmpty());
}

TEST_F(NotificationsHandlerInitTest, Again_ForgetsTheFlags)
{
    m_handler.Init();
    ASSERT_TRUE(m_handler.IsUsingACPIUsbCEvent() && m_handler.IsUSBCSupported());
    Fail("Platform.MachineID", E_FAIL);
    Fail("Platform.USBC.Supported", E_FAIL);
    m_handler.Init();
    EXPECT_FALSE(m_handler.IsUsingACPIUsbCEvent());
    EXPECT_FALSE(m_handler.IsUSBCSupported());
    Answer("Platform.MachineID", {{"bstr", "8042"}});
    Answer("Platform.USBC.Supported", {{"bool", true}});
    m_handler.Init();
    Facts::Instance().Set("/platform/registered", false);
    m_handler.Init();
    EXPECT_FALSE(m_handler.IsUsingACPIUsbCEvent());
    EXPECT_FALSE(m_handler.IsUSBCSupported());
}

TEST_F(NotificationsHandlerInitTest, ToolPath_LiesBesideTheProgramWithOneBackslash)
{
    EXPECT_EQ(PathFor(L"C:\\Program Files\\Orvik\\OrvikNotifications.exe"),
              L"C:\\Program Files\\Orvik\\OrvikUsbCConfiguration.exe");
    EXPECT_EQ(PretendedModulePath::AskedModule(), nullptr);
    EXPECT_EQ(PretendedModulePath::AskedCapacity(), 260u);
    EXPECT_EQ(PathFor(L"C:\\OrvikNotifications.exe"), L"C:\\OrvikUsbCConfiguration.exe");
}

TEST_F(NotificationsHandlerInitTest, ToolPath_OfAnOverlongPath_IsCutToTheBuffer)
{
    const std::wstring folder = L"C:\\" + std::wstring(240, L'f');
    EXPECT_EQ(PathFor(folder + L"\\" + std::wstring(100, L'n') + L".exe"), folder + L"\\OrvikUsbCConfiguration.exe");
    EXPECT_EQ(PathFor(L""), L"\\OrvikUsbCConfiguration.exe");
}

TEST_F(NotificationsHandlerInitTest, ToolPath_NoMemory_IsEmptyAndTheFlagsAreThere)
{
    const PretendedModulePath pretended(L"C:\\" + std::wstring(240, L'f') + L"\\agent.exe");
    m_handler.Init();
    ASSERT_NE(m_handler.ConfigurationToolPath(), L"");
    // Nothing else of that size is allocated once the machine was asked.
    Facts::Instance().Set("/platform/registered", false);
    bool wasEmpty = false;
    for (std::size_t nth = 1; nth < 100 && !wasEmpty; ++nth)
    {
        const AllocationFault fault(nth, 400);
        EXPECT_NO_THROW(m_handler.Init());
        if (!AllocationFault::HasBitten())
            break;
        wasEmpty = m_handler.ConfigurationToolPath().empty();
    }
    EXPECT_TRUE(wasEmpty);
    m_handler.Init();
    EXPECT_NE(m_handler.ConfigurationToolPath(), L"");
}

TEST_F(NotificationsHandlerInitTest, ToastImage_IsWhatStartUpSets)
{
    m_handler.SetToastImagePath(L"C:\\Orvik.ico");
    m_handler.Init();
    EXPECT_EQ(m_handler.ToastImagePath(), L"C:\\Orvik.ico");
}
