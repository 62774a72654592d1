#include "shared/OwnerTypes.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <string>

namespace
{
using Orvik::Shared::UniqueHandle;

constexpr DWORD g_success = 42;
constexpr DWORD g_timeOut = 20'000;

// Starts the program beside this one that logs while it ends; returns its exit code.
DWORD RunProcessEnd(const wchar_t* scene)
{
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring command(path);
    command.resize(command.rfind(L'\\') + 1);
    command = L"\"" + command + L"process_end.exe\" " + scene;

    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &started))
        return GetLastError();
    const UniqueHandle process(started.hProcess);
    const UniqueHandle thread(started.hThread);
    if (WaitForSingleObject(process.get(), g_timeOut) != WAIT_OBJECT_0)
    {
        TerminateProcess(process.get(), WAIT_TIMEOUT);
        return WAIT_TIMEOUT;
    }
    DWORD code = 0;
    GetExitCodeProcess(process.get(), &code);
    return code;
}

TEST(ProcessEnd, ThreadsThatGoOnLogging_WriteNothingOnceTheEndHasBegun)
{
    EXPECT_EQ(RunProcessEnd(L"while-ending"), g_success);
}

TEST(ProcessEnd, FirstRecordAtTheVeryEnd_MakesNoLogger)
{
    EXPECT_EQ(RunProcessEnd(L"first-at-the-end"), g_success);
}

TEST(ProcessEnd, ManyEndsInTheMiddleOfRecords_AreAllClean)
{
    for (int i = 0; i < 40; ++i)
        ASSERT_EQ(RunProcessEnd(L"race"), g_success) << i;
}
} // namespace
