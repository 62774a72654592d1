#include "app/StartUp.h"

#include "app/ProcessInstances.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/app/window/UserCalls.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

using Simulator::Redirection;
using testing::ElementsAre;
using Tests::UserCalls;

namespace
{
std::vector<std::tuple<HINSTANCE, UINT, int>> g_lstLoaded;

int WINAPI LoadLongStringW(HINSTANCE module, UINT id, LPWSTR buffer, int capacity)
{
    g_lstLoaded.emplace_back(module, id, capacity);
    std::fill_n(buffer, capacity - 1, L'x');
    buffer[capacity - 1] = L'\0';
    return capacity - 1;
}

UserCalls::Received Message(UINT message, HWND hwnd = nullptr, WPARAM wParam = 0)
{
    return {TRUE, {hwnd, message, wParam, 0, 0, {}}};
}

// The message as it was received.
auto Is(UINT message, HWND hwnd, WPARAM wParam)
{
    return testing::AllOf(testing::Field(&MSG::message, message), testing::Field(&MSG::hwnd, hwnd),
                          testing::Field(&MSG::wParam, wParam));
}

UserCalls::Received Quit(WPARAM code)
{
    return {FALSE, {nullptr, WM_QUIT, code, 0, 0, {}}};
}
} // namespace

TEST(StartUp, LoadProcessNames_TitleAndClass)
{
    LoadProcessNames(GetModuleHandleW(nullptr));
    EXPECT_STREQ(g_szTitle, L"Orvik Notifications");
    EXPECT_STREQ(g_szWindowClass, L"ORVIKNOTIFICATIONS");
}

TEST(StartUp, LoadProcessNames_AtMost100CharactersEach)
{
    g_lstLoaded.clear();
    const auto module = reinterpret_cast<HINSTANCE>(0x4321);
    const Redirection<decltype(LoadStringW)> longTexts("LoadStringW", &LoadLongStringW);
    LoadProcessNames(module);
    EXPECT_THAT(g_lstLoaded, ElementsAre(std::tuple(module, 500u, 100), std::tuple(module, 505u, 100)));
    EXPECT_EQ(std::wstring(g_szTitle).size(), 99u);
    EXPECT_EQ(std::wstring(g_szWindowClass).size(), 99u);
}

TEST(StartUp, TakeSessionMutex_UnderTheClassNameWithOwnership)
{
    LoadProcessNames(GetModuleHandleW(nullptr));
    UserCalls calls;
    const auto mutex = TakeSessionMutex();
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_TRUE(mutex);
    EXPECT_EQ(calls.m_strMutex, L"ORVIKNOTIFICATIONS");
    EXPECT_EQ(calls.m_bOwned, TRUE);
    EXPECT_EQ(calls.m_pMutexSecurity, nullptr);
}

TEST(StartUp, TakeSessionMutex_ExistsAlready_LastErrorTells)
{
    UserCalls calls;
    calls.m_dwMutexError = ERROR_ALREADY_EXISTS;
    const auto mutex = TakeSessionMutex();
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS));
}

TEST(StartUp, RunMessageLoop_ReturnsTheQuitCode)
{
    UserCalls calls;
    calls.m_lstMessages = {Quit(5)};
    EXPECT_EQ(RunMessageLoop(nullptr), 5);
    EXPECT_THAT(calls.m_lstCalls, ElementsAre("GetMessageW"));
}

TEST(StartUp, RunMessageLoop_MessageIsTranslatedAndDispatched)
{
    UserCalls calls;
    const auto hwnd = reinterpret_cast<HWND>(0x77);
    const auto accelerators = reinterpret_cast<HACCEL>(0x88);
    calls.m_lstMessages = {Message(WM_KEYDOWN, hwnd, 'A'), Quit(0)};
    EXPECT_EQ(RunMessageLoop(accelerators), 0);
    EXPECT_THAT(calls.m_lstCalls, ElementsAre("GetMessageW", "TranslateAcceleratorW", "TranslateMessage",
                                              "DispatchMessageW", "GetMessageW"));
    EXPECT_THAT(calls.m_lstAcceleratorWindows, ElementsAre(hwnd));
    EXPECT_EQ(calls.m_hAccelerators, accelerators);
    EXPECT_THAT(calls.m_lstOffered, ElementsAre(Is(WM_KEYDOWN, hwnd, 'A')));
    EXPECT_THAT(calls.m_lstTranslated, ElementsAre(Is(WM_KEYDOWN, hwnd, 'A')));
    EXPECT_THAT(calls.m_lstDispatched, ElementsAre(Is(WM_KEYDOWN, hwnd, 'A')));
}

TEST(StartUp, RunMessageLoop_LeavesNoMessageOut)
{
    UserCalls calls;
    calls.m_lstMessages = {Message(WM_KEYDOWN), Quit(0)};
    EXPECT_EQ(RunMessageLoop(nullptr), 0);
    const UserCalls::Filter none{nullptr, 0, 0};
    EXPECT_THAT(calls.m_lstFilters, ElementsAre(none, none));
}

TEST(StartUp, RunMessageLoop_AcceleratorIsNotDispatched)
{
    UserCalls calls;
    calls.m_lstMessages = {Message(WM_KEYDOWN), Quit(0)};
    calls.m_lstMessages[0].m_bAccelerator = TRUE;
    EXPECT_EQ(RunMessageLoop(nullptr), 0);
    EXPECT_THAT(calls.m_lstCalls, ElementsAre("GetMessageW", "TranslateAcceleratorW", "GetMessageW"));
}

TEST(StartUp, RunMessageLoop_FailedGetMessage_CountsAsAMessage)
{
    UserCalls calls;
    calls.m_lstMessages = {{-1, {}}, Quit(3)};
    EXPECT_EQ(RunMessageLoop(nullptr), 3);
    EXPECT_THAT(calls.m_lstCalls, ElementsAre("GetMessageW", "TranslateAcceleratorW", "TranslateMessage",
                                              "DispatchMessageW", "GetMessageW"));
}
