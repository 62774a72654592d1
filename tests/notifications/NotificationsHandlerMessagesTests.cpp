#include "res/Resource.h"
#include "shared/LogLevel.h"
#include "simulator/model/CallPlan.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/notifications/NotificationsMachine.h"
#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <tuple>

using Notifications::OrvikNotifications::CNotificationsHandler;
using Notifications::OrvikNotifications::UsbCMessageText;
using Notifications::OrvikNotifications::UsbCToastId;
using Simulator::CallPlan;
using Simulator::Facts;
using Simulator::Redirection;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::LogLines;

namespace
{
using NotificationsHandlerMessagesTest = NotificationsMachine;

struct Row
{
    int m_nMessageId;
    UINT m_nTextId;       // 0: none
    const char* m_pShown; // null: not shown
};
constexpr Row g_rows[] = {
    {-2147483647 - 1, 0, nullptr},
    {-1, 0, nullptr},
    {0, 0, nullptr},
    {1, 501, nullptr},
    {2, 517, "The device plugged into the USB-C port cannot charge your PC."},
    {3, 518, "USB device is requesting more power than system can provide."},
    {4, 519, "Charging from multiple USB ports may have limited support."},
    {5, 519, "Charging from multiple USB ports may have limited support."},
    {6, 520, "For full performance, connect higher capacity USB cable to dock."},
    {7, 521, "The power adapter is not compatible with this system."},
    {8, 0, nullptr},
    {9, 526, "Device mode is not supported. Check cable or system capabilities."},
    {10, 527, "Orvik recommends using an Orvik power source."},
    {11, 528,
     "The connected power source cannot fully power your device. For full performance, use a higher capacity power "
     "source."},
    {12, 509, "The connected device exceeds the power limit of the USB-C? port."},
    {13, 510, "The USB-C? port is not working. The connected device caused a power surge. Please disconnect."},
    {14, 511, "The system does not support one of the connected expansion modules."},
    {15, 512, "The system configuration exceeds the number of supported expansion modules."},
    {16, 513, "The Thunderbolt? module must be attached directly below the system module."},
    {17, 0, nullptr},
    {18, 0, nullptr},
    {256, 0, nullptr},
    {65538, 0, nullptr},
    {2147483647, 0, nullptr}};

constexpr const char* g_title = "USB Type-C? Connector";

using LoadedString = std::tuple<HINSTANCE, UINT, int>;
std::vector<LoadedString> g_lstLoaded;

// Behaves as the system does with a text of 600 characters under every id.
int WINAPI LoadLongStringW(HINSTANCE module, UINT id, LPWSTR buffer, int capacity)
{
    g_lstLoaded.emplace_back(module, id, capacity);
    const int length = std::min(600, capacity - 1);
    std::fill_n(buffer, length, L'x');
    buffer[length] = L'\0';
    return length;
}

int WINAPI LoadNoStringW(HINSTANCE, UINT, LPWSTR, int)
{
    SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
    return 0;
}

CNotificationsHandler* g_pHandler;
decltype(LoadStringW)* g_pfnLoadString;

// Before the first text is loaded a window message gets in that finds no messages any more.
int WINAPI LoadStringAfterReentryW(HINSTANCE module, UINT id, LPWSTR buffer, int capacity)
{
    if (CNotificationsHandler* const handler = std::exchange(g_pHandler, nullptr); handler != nullptr)
    {
        Facts::Instance().Set("/commands/Platform.USBC.Messages", {{"hr", "0x80004005"}});
        handler->ShowUsbCMessages(255);
    }
    return g_pfnLoadString(module, id, buffer, capacity);
}
} // namespace

TEST_F(NotificationsHandlerMessagesTest, Table_EveryRow_IsShownAsItSays)
{
    for (const Row& row : g_rows)
    {
        EXPECT_EQ(UsbCMessageText(row.m_nMessageId), row.m_nTextId) << row.m_nMessageId;
        StartOver();
        SetMessages({row.m_nMessageId});
        m_handler.ShowUsbCMessages(0);
        const std::vector<std::string> texts = ShownTexts();
        if (row.m_pShown == nullptr)
            EXPECT_THAT(texts, IsEmpty()) << row.m_nMessageId;
        else
            EXPECT_THAT(texts, ElementsAre(row.m_pShown)) << row.m_nMessageId;
    }
}

TEST_F(NotificationsHandlerMessagesTest, Table_AllAtOnce_ToastsInTheOrderOfTheList)
{
    SetMessages({16, 8, 2, 1, 17, 9, 2});
    m_handler.ShowUsbCMessages(0);
    EXPECT_THAT(ShownTexts(), ElementsAre("The Thunderbolt? module must be attached directly below the system module.",
                                          "The device plugged into the USB-C port cannot charge your PC.",
                                          "Device mode is not supported. Check cable or system capabilities.",
                                          "The device plugged into the USB-C port cannot charge your PC."));
    for (const nlohmann::json& toast : Shown())
        EXPECT_EQ(toast["title"], g_title);
}

TEST_F(NotificationsHandlerMessagesTest, List_OneEightTwo_ShowsTheThirdUnderItsOwnToastId)
{
    SetMessages({1, 8, 2});
    m_handler.ShowUsbCMessages(2);
    EXPECT_THAT(ShownTexts(), ElementsAre("The device plugged into the USB-C port cannot charge your PC."));
    EXPECT_EQ(UsbCToastId(2), 343u);
    EXPECT_EQ(UsbCToastId(0), 341u);
    EXPECT_THAT(LogLines(ShowAll), ElementsAre(L"TraceIn|portNumber = 2", L"Verbose|message #0, message id = 1",
                                               L"Verbose|message #1, message id = 8",
                                               L"Verbose|message #2, message id = 2", L"TraceOut|"));
    EXPECT_THAT(
        LogLines(ShowOne),
        ElementsAre(L"TraceIn|", L"Verbose|Call Windows Toaster Message", L"Verbose|Title: USB Type-C? Connector",
                    L"Verbose|Text: The device plugged into the USB-C port cannot charge your PC.", L"TraceOut|"));
}

TEST_F(NotificationsHandlerMessagesTest, Texts_TitleOnceThenOneForEachMessageThatHasOne)
{
    SetMessages({1, 8, 2});
    auto* const module = reinterpret_cast<HINSTANCE>(std::uintptr_t{0x1230000});
    CNotificationsHandler handler(module);
    g_lstLoaded.clear();
    const Redirection<decltype(LoadStringW)> loads("LoadStringW", &LoadLongStringW);
    handler.ShowUsbCMessages(0);
    // The text of message 1 is loaded and not shown.
    EXPECT_THAT(g_lstLoaded, ElementsAre(LoadedString(module, IDS_USBC_TITLE, 128),
                                         LoadedString(module, IDS_ADAPTER_HIGHER_CAPACITY, 520),
                                         LoadedString(module, IDS_USBC_CANNOT_CHARGE, 520)));
    ASSERT_EQ(Shown().size(), 1u);
    EXPECT_EQ(Shown()[0]["texts"], (nlohmann::json{std::string(127, 'x'), std::string(519, 'x'), ""}));
}

TEST_F(NotificationsHandlerMessagesTest, Texts_Missing_ToastIsEmpty)
{
    SetMessages({2});
    const Redirection<decltype(LoadStringW)> noTexts("LoadStringW", &LoadNoStringW);
    m_handler.ShowUsbCMessages(0);
    ASSERT_EQ(Shown().size(), 1u);
    EXPECT_EQ(Shown()[0]["texts"], (nlohmann::json{"", "", ""}));
}

TEST_F(NotificationsHandlerMessagesTest, List_Empty_SaysSoAndLoadsNothing)
{
    SetMessages({});
    g_lstLoaded.clear();
    const Redirection<decltype(LoadStringW)> loads("LoadStringW", &LoadLongStringW);
    m_handler.ShowUsbCMessages(255);
    EXPECT_THAT(LogLines(ShowAll), ElementsAre(L"TraceIn|portNumber = 255",
                                               L"Verbose|There is no USB Type -C messages to show.", L"TraceOut|"));
    EXPECT_THAT(g_lstLoaded, IsEmpty());
    EXPECT_THAT(LogLines(ShowOne), IsEmpty());
}

TEST_F(NotificationsHandlerMessagesTest, Port_IsWhatTheFirmwareIsAsked)
{
    SetMessages({});
    for (const unsigned port : {0u, 2u, 255u})
    {
        StartOver();
        m_handler.ShowUsbCMessages(port);
        EXPECT_THAT(DetailsOf("IPlixCommand::ExecuteWithInput", "input"),
                    ElementsAre(nlohmann::json{{"vt", VT_UI1}, {"value", port}}));
    }
}

TEST_F(NotificationsHandlerMessagesTest, List_IsReplacedByEachReading)
{
    SetMessages({2, 3});
    m_handler.ShowUsbCMessages(0);
    EXPECT_THAT(m_handler.PortMessages(), ElementsAre(PortMessage{.iMessageId = 2}, PortMessage{.iMessageId = 3}));
    StartOver();
    SetMessages({4});
    m_handler.ShowUsbCMessages(0);
    EXPECT_THAT(ShownTexts(), ElementsAre("Charging from multiple USB ports may have limited support."));
    EXPECT_THAT(m_handler.PortMessages(), ElementsAre(PortMessage{.iMessageId = 4}));
    StartOver();
    Facts::Instance().Set("/commands/Platform.USBC.Messages", {{"hr", "0x80004005"}});
    m_handler.ShowUsbCMessages(0);
    EXPECT_THAT(ShownTexts(), IsEmpty());
    EXPECT_THAT(m_handler.PortMessages(), IsEmpty());
    EXPECT_THAT(LogLines(ShowAll), ElementsAre(L"TraceIn|portNumber = 0",
                                               L"Verbose|There is no USB Type -C messages to show.", L"TraceOut|"));
}

TEST_F(NotificationsHandlerMessagesTest, List_ReadAnewWhileItIsShown_IsShownToItsEnd)
{
    SetMessages({2, 3, 4});
    g_pHandler = &m_handler;
    const Redirection<decltype(LoadStringW)> reentered("LoadStringW", &LoadStringAfterReentryW);
    g_pfnLoadString = reentered.Original();
    m_handler.ShowUsbCMessages(0);
    EXPECT_EQ(g_pHandler, nullptr);
    EXPECT_EQ(ShownTexts().size(), 3u);
}

TEST_F(NotificationsHandlerMessagesTest, Billboard_ShowsItsMessage)
{
    m_handler.ShowBillboardMessage();
    ASSERT_EQ(Shown().size(), 1u);
    EXPECT_EQ(Shown()[0]["texts"],
              (nlohmann::json{g_title, "Device mode is not supported. Check cable or system capabilities.", ""}));
    EXPECT_EQ(Notifications::OrvikNotifications::g_nBillboardToastId, 440u);
    EXPECT_THAT(DetailsOf("IPlixCommand::ExecuteWithInput", "command"), IsEmpty());
    EXPECT_THAT(LogLines("Notifications::OrvikNotifications::CNotificationsHandler::ShowBillboardMessage"),
                ElementsAre(L"TraceIn|", L"TraceOut|"));
}

TEST_F(NotificationsHandlerMessagesTest, Billboard_TextsAreCutToTheirBuffers)
{
    g_lstLoaded.clear();
    const Redirection<decltype(LoadStringW)> loads("LoadStringW", &LoadLongStringW);
    m_handler.ShowBillboardMessage();
    EXPECT_THAT(g_lstLoaded, ElementsAre(LoadedString(nullptr, IDS_USBC_TITLE, 128),
                                         LoadedString(nullptr, IDS_USBC_MODE_NOT_SUPPORTED, 520)));
}

TEST_F(NotificationsHandlerMessagesTest, AcpiEvent_ShowsTheMessagesOfPortZero)
{
    SetMessages({12});
    EXPECT_EQ(m_handler.HandleACPIUSbCEvent(), 0);
    EXPECT_THAT(ShownTexts(), ElementsAre("The connected device exceeds the power limit of the USB-C? port."));
    EXPECT_THAT(DetailsOf("IPlixCommand::ExecuteWithInput", "input"),
                ElementsAre(nlohmann::json{{"vt", VT_UI1}, {"value", 0}}));
    EXPECT_THAT(LogLines("Notifications::OrvikNotifications::CNotificationsHandler::HandleACPIUSbCEvent"),
                ElementsAre(L"TraceIn|", L"TraceOut|0"));
}
