#include "simulator/redirect/ImportRedirection.h"
#include "tests/notifications/NotificationsMachine.h"

#include <windows.h>

#include <shellapi.h>

#include <gmock/gmock.h>

#include <mutex>
#include <string>
#include <tuple>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
// Owner, verb, file, whether there are parameters or a folder, how it is shown.
using Started = std::tuple<HWND, std::wstring, std::wstring, bool, bool, int>;
std::mutex g_lock;
std::vector<Started> g_lstStarted;

HINSTANCE WINAPI NotedShellExecute(HWND owner, LPCWSTR verb, LPCWSTR file, LPCWSTR parameters, LPCWSTR folder, INT show)
{
    const std::lock_guard lock(g_lock);
    g_lstStarted.emplace_back(owner, verb, file, parameters != nullptr, folder != nullptr, show);
    return reinterpret_cast<HINSTANCE>(INT_PTR{42});
}

// What a click on a toast of the handler starts.
class NotificationsHandlerClickTest : public NotificationsMachine
{
protected:
    NotificationsHandlerClickTest()
    {
        g_lstStarted.clear();
        // The configuration tool's path is there, and carried along to the toast.
        Answer("Platform.MachineID", {{"bstr", "8A11"}});
        Answer("Platform.USBC.Supported", {{"bool", true}});
        m_handler.Init();
        EXPECT_TRUE(m_handler.ConfigurationToolPath().ends_with(L"\\OrvikUsbCConfiguration.exe"));
        EXPECT_FALSE(m_handler.ConfigurationToolPath().ends_with(L"\\\\OrvikUsbCConfiguration.exe"));
    }

    // The one toast that is on the screen is clicked.
    void ClickTheToast()
    {
        ASSERT_EQ(m_desktop.Visible().size(), 1u);
        EXPECT_EQ(m_desktop.Click(m_desktop.Visible().front()), S_OK);
        m_desktop.WaitForEvents();
    }

    const Started m_expected{
        nullptr, L"open", L"C:\\Program Files (x86)\\Orvik\\Orvik Notifications\\orvikSmartAdapterHelp.exe",
        false,   false,   SW_SHOW};

private:
    Simulator::Redirection<decltype(ShellExecuteW)> m_shell{"ShellExecuteW", &NotedShellExecute};
};
} // namespace

TEST_F(NotificationsHandlerClickTest, OneEightTwo_OneToastWhoseClickStartsTheHelpProgram)
{
    SetMessages({1, 8, 2});
    m_handler.ShowUsbCMessages(0);
    EXPECT_THAT(ShownTexts(), ElementsAre("The device plugged into the USB-C port cannot charge your PC."));
    EXPECT_THAT(g_lstStarted, IsEmpty());
    ClickTheToast();
    EXPECT_THAT(g_lstStarted, ElementsAre(m_expected));
}

TEST_F(NotificationsHandlerClickTest, Billboard_ClickStartsTheHelpProgram)
{
    m_handler.ShowBillboardMessage();
    EXPECT_THAT(ShownTexts(), ElementsAre("Device mode is not supported. Check cable or system capabilities."));
    ClickTheToast();
    EXPECT_THAT(g_lstStarted, ElementsAre(m_expected));
}
