#include "tests/app/window/WindowMessageTest.h"

#include "simulator/model/Facts.h"
#include "simulator/toasts/ToastDesktop.h"

#include <objbase.h>

namespace Tests
{
namespace
{
// The platform's answer: one port with one message.
nlohmann::json OneMessage(int messageId)
{
    const std::string xml = R"(<GetUsbCMessagesOutput><Output><Data NumberOfPorts="1"><Port0 NumberOfMessages="1">)"
                            R"(<Message0 MessageId=")" +
                            std::to_string(messageId) + R"(" Valid="true"/></Port0></Data></Output>)" +
                            "</GetUsbCMessagesOutput>";
    return {{"answer", {{"bstr", xml}}}};
}
} // namespace

WindowMessageTest::WindowMessageTest()
{
    Simulator::Facts::Instance().Set("/commands/Platform.USBC.Messages",
                                     {{"by-input", {{"0", OneMessage(2)}, {"255", OneMessage(3)}}}});
    Answer("SmartAdapter.Status", {{"i4", 1}});
    EXPECT_EQ(CoInitialize(nullptr), S_OK);
    g_hInstance = GetModuleHandleW(nullptr);
    g_bResumeHandled = false;
    StartWatching();
}

WindowMessageTest::~WindowMessageTest()
{
    Simulator::ToastDesktop::Instance().Reset();
    g_pNotificationsHandler.Destroy();
    g_pWmiHandler.Destroy();
    CoUninitialize();
}

void WindowMessageTest::MakeHub()
{
    g_pWmiHandler.Create();
}

void WindowMessageTest::MakeHandler(const char* machineId, bool isSupported)
{
    Answer("Platform.MachineID", {{"bstr", machineId}});
    Answer("Platform.USBC.Supported", {{"bool", isSupported}});
    g_pNotificationsHandler.Create(g_hInstance).Init();
}

LRESULT WindowMessageTest::Send(UINT message, WPARAM wParam, LPARAM lParam)
{
    StartWatching();
    m_system.m_lstHandedOn.clear();
    return WndProc(m_hwnd, message, wParam, lParam);
}

std::vector<std::string> WindowMessageTest::ToastTexts()
{
    std::vector<std::string> texts;
    for (const std::vector<std::string>& toast : Toasts())
        texts.push_back(toast.at(1));
    return texts;
}
} // namespace Tests
