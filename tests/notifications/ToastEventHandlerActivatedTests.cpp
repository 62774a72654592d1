#include "notifications/ToastEventHandler.h"

#include "simulator/redirect/ImportRedirection.h"
#include "tests/support/LogCapture.h"

#include <windows.h>

#include <shellapi.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

using namespace ToastAbi;
using testing::ElementsAre;

namespace
{
// The last call of ShellExecuteW, and what it answers.
struct ShellCall
{
    std::atomic<int> m_nCalls = 0;
    HWND m_hwndOwner = nullptr;
    std::wstring m_strVerb;
    std::wstring m_strFile;
    const wchar_t* m_pParameters = nullptr;
    const wchar_t* m_pFolder = nullptr;
    int m_nShow = -1;
    INT_PTR m_nAnswer = 42;
};
ShellCall g_shell;
std::atomic<int> g_callsFromThreads;

HINSTANCE WINAPI RecordedShellExecute(HWND owner, LPCWSTR verb, LPCWSTR file, LPCWSTR parameters, LPCWSTR folder,
                                      INT show)
{
    ++g_shell.m_nCalls;
    g_shell.m_hwndOwner = owner;
    g_shell.m_strVerb = verb;
    g_shell.m_strFile = file;
    g_shell.m_pParameters = parameters;
    g_shell.m_pFolder = folder;
    g_shell.m_nShow = show;
    return reinterpret_cast<HINSTANCE>(g_shell.m_nAnswer);
}

HINSTANCE WINAPI CountedShellExecute(HWND, LPCWSTR, LPCWSTR, LPCWSTR, LPCWSTR, INT)
{
    ++g_callsFromThreads;
    return reinterpret_cast<HINSTANCE>(INT_PTR{42});
}

class ToastEventHandlerActivatedTest : public testing::Test
{
protected:
    ToastEventHandlerActivatedTest()
    {
        g_shell.m_nCalls = 0;
        g_shell.m_nAnswer = 42;
        g_callsFromThreads = 0;
    }

    [[nodiscard]] HRESULT Click() { return m_spHandler->Invoke(nullptr, nullptr); }

    // Both windows are known to the handler, so that a wrong owner would be seen.
    IToastActivatedHandlerPtr m_spHandler{
        new ToastEventHandler(reinterpret_cast<HWND>(0x10010), reinterpret_cast<HWND>(0x20020)), false};
    Simulator::Redirection<decltype(ShellExecuteW)> m_redirection{"ShellExecuteW", &RecordedShellExecute};
};
} // namespace

TEST_F(ToastEventHandlerActivatedTest, Invoke_Click_StartsTheHelpProgramAtItsFixedPath)
{
    EXPECT_EQ(Click(), S_OK);
    EXPECT_EQ(g_shell.m_nCalls, 1);
    EXPECT_EQ(g_shell.m_strFile, L"C:\\Program Files (x86)\\Orvik\\Orvik Notifications\\orvikSmartAdapterHelp.exe");
    EXPECT_EQ(g_shell.m_strVerb, L"open");
    EXPECT_EQ(g_shell.m_hwndOwner, nullptr);
    EXPECT_EQ(g_shell.m_pParameters, nullptr);
    EXPECT_EQ(g_shell.m_pFolder, nullptr);
    EXPECT_EQ(g_shell.m_nShow, 5);
}

TEST_F(ToastEventHandlerActivatedTest, Invoke_Click_WritesTraceRecordsOnly)
{
    EXPECT_EQ(Click(), S_OK);
    EXPECT_THAT(TestSupport::LogLines(), ElementsAre(L"TraceIn|ToastEventHandler::Invoke|",
                                                     L"TraceOut|ToastEventHandler::Invoke|hr: 0x00000000"));
}

TEST_F(ToastEventHandlerActivatedTest, Invoke_ProgramCannotBeStarted_FailsAndDoesNothingElse)
{
    // No memory, no such file, access denied, no program for it, the greatest error number.
    for (const INT_PTR answer : {0, 2, 5, 31, 32})
    {
        TestSupport::ClearLog();
        g_shell.m_nCalls = 0;
        g_shell.m_nAnswer = answer;
        EXPECT_EQ(Click(), E_FAIL) << answer;
        EXPECT_EQ(g_shell.m_nCalls, 1) << answer;
        EXPECT_THAT(TestSupport::LogLines(), ElementsAre(L"TraceIn|ToastEventHandler::Invoke|",
                                                         L"TraceOut|ToastEventHandler::Invoke|hr: 0x80004005"));
    }
}

TEST_F(ToastEventHandlerActivatedTest, Invoke_ProgramStarted_SucceedsWhateverTheNumber)
{
    for (const INT_PTR answer : {INT_PTR{33}, INT_PTR{42}, INTPTR_MAX})
    {
        g_shell.m_nAnswer = answer;
        EXPECT_EQ(Click(), S_OK) << answer;
    }
}

TEST_F(ToastEventHandlerActivatedTest, Invoke_ClickAfterAFailure_TriesAgain)
{
    g_shell.m_nAnswer = 2;
    EXPECT_EQ(Click(), E_FAIL);
    g_shell.m_nAnswer = 42;
    EXPECT_EQ(Click(), S_OK);
    EXPECT_EQ(g_shell.m_nCalls, 2);
}

TEST_F(ToastEventHandlerActivatedTest, Invoke_FromManyThreads_StartsItEachTime)
{
    const Simulator::Redirection<decltype(ShellExecuteW)> counting("ShellExecuteW", &CountedShellExecute);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
    {
        threads.emplace_back(
            [this]
            {
                for (int n = 0; n < 50; ++n)
                    EXPECT_EQ(Click(), S_OK);
            });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(g_callsFromThreads, 200);
    EXPECT_EQ(TestSupport::LogCount(Orvik::Shared::Level::TraceIn, "ToastEventHandler::Invoke", L""), 200u);
    EXPECT_EQ(TestSupport::LogCount(Orvik::Shared::Level::TraceOut, "ToastEventHandler::Invoke", L"hr: 0x00000000"),
              200u);
}

// The shell of Windows itself, on a machine without the help program.
TEST(ToastEventHandlerShell, Invoke_HelpProgramIsMissing_Fails)
{
    constexpr wchar_t program[] = L"C:\\Program Files (x86)\\Orvik\\Orvik Notifications\\orvikSmartAdapterHelp.exe";
    if (GetFileAttributesW(program) != INVALID_FILE_ATTRIBUTES)
        GTEST_SKIP() << "the help program is installed on this machine";
    const IToastActivatedHandlerPtr spHandler(new ToastEventHandler(nullptr, nullptr), false);
    EXPECT_EQ(spHandler->Invoke(nullptr, nullptr), E_FAIL);
}
