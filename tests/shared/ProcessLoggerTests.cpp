#include "shared/Log.h"

#include "simulator/redirect/ImportRedirection.h"
#include "tests/support/AllocationFault.h"
#include "tests/support/EventLogCapture.h"
#include "tests/support/LogCapture.h"
#include "tests/support/PolicyKey.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace
{
using namespace Orvik::Shared;
using namespace TestSupport;
using testing::ElementsAre;
using testing::IsEmpty;

// Tests of the first record of a process: CTest runs each in a process of its own. The logger that they make stays, so
// they are not run before others either.
class FirstRecord : public testing::Test
{
protected:
    void SetUp() override
    {
        if (g_enabledLevels != ~0u || testing::UnitTest::GetInstance()->test_to_run_count() != 1)
            GTEST_SKIP() << "needs a process of its own; run this test alone";
    }
};

decltype(RegOpenKeyExW)* g_realOpen;
decltype(RegisterEventSourceW)* g_realRegister;

LSTATUS WINAPI DisturbingOpen(HKEY parent, LPCWSTR path, DWORD options, REGSAM access, PHKEY key)
{
    const LSTATUS status = g_realOpen(parent, path, options, access, key);
    SetLastError(ERROR_INVALID_DATA);
    return status;
}

HANDLE WINAPI DisturbingRegister(LPCWSTR server, LPCWSTR source)
{
    const HANDLE handle = g_realRegister(server, source);
    SetLastError(ERROR_ACCESS_DENIED);
    return handle;
}

// Every call by which the logger is made leaves another last-error code behind. Errors alone are enabled.
class FirstRecordAfterAFailure : public FirstRecord
{
protected:
    static DWORD LastErrorAfter(int level)
    {
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, LoggingKey);
        const Simulator::Redirection<decltype(RegOpenKeyExW)> open("RegOpenKeyExW", &DisturbingOpen);
        const Simulator::Redirection<decltype(RegisterEventSourceW)> source("RegisterEventSourceW",
                                                                            &DisturbingRegister);
        g_realOpen = open.Original();
        g_realRegister = source.Original();
        SetLastError(ERROR_FILE_NOT_FOUND);
        Log(level, "F", L"x");
        return GetLastError();
    }
};

TEST_F(FirstRecordAfterAFailure, LastErrorAtAnEnabledLevel_Survives)
{
    EXPECT_EQ(LastErrorAfter(Level::Error), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_THAT(LogLines(), ElementsAre(L"Error|F|x"));
}

TEST_F(FirstRecordAfterAFailure, LastErrorAtADisabledLevel_Survives)
{
    EXPECT_EQ(LastErrorAfter(Level::Verbose), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_TRUE(NothingLogged());
    EXPECT_FALSE(IsLevelEnabled(Level::Verbose));
}

TEST_F(FirstRecord, NoPolicy_LetsErrorsThrough)
{
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, LoggingKey);
    EXPECT_TRUE(IsLevelEnabled(Level::TraceIn));
    Log(Level::TraceIn, "F", L"x");
    EXPECT_EQ(g_enabledLevels, 1u << Level::Error);
    for (const int level : {-1, 0, 1, 2, 3, 4, 6, 7, 31, 99})
        Log(level, "F", L"level %d", level);
    Log(Level::Error, "F", L"error");
    EXPECT_THAT(LogLines(), ElementsAre(L"Error|F|error"));
    EXPECT_EQ(EventLogCapture::Events().at(0).m_wType, EVENTLOG_ERROR_TYPE);
    EXPECT_EQ(EventLogCapture::Events().at(0).m_dwEventId, 5u);
}

TEST_F(FirstRecord, DisabledRecord_ReadsPolicyToo)
{
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, LoggingKey);
    Log(Level::Verbose, "F", L"x");
    EXPECT_THAT(EventLogCapture::OpenSources(), ElementsAre(L"shared_tests"));
}

TEST_F(FirstRecord, PolicyChangedLater_IsNotRead)
{
    PolicyKey key(LoggingKey);
    key.Text(L"MinLogLevel", L"Warning");
    Log(Level::Warning, "F", L"first");
    key.Text(L"MinLogLevel", L"TraceIn");
    Log(Level::Verbose, "F", L"second");
    key.Text(L"MinLogLevel", L"Never");
    Log(Level::Warning, "F", L"third");
    EXPECT_THAT(LogLines(), ElementsAre(L"Warning|F|first", L"Warning|F|third"));
}

TEST_F(FirstRecord, SilencedByPolicy_NothingIsEnabled)
{
    PolicyKey key(LoggingKey);
    key.Text(L"MinLogLevel", L"Never");
    Log(Level::Error, "F", L"x");
    EXPECT_EQ(g_enabledLevels, 0u);
    EXPECT_TRUE(NothingLogged());
}

TEST_F(FirstRecord, LevelsWithoutName_PassWhenTheMaximumIsUnknown)
{
    PolicyKey key(LoggingKey);
    key.Text(L"MaxLogLevel", L"everything").Text(L"LoggingType", L"DEBUG");
    Log(Level::Error, "F", L"x");
    EXPECT_TRUE(IsLevelEnabled(7));
    EXPECT_TRUE(IsLevelEnabled(31));
    EXPECT_TRUE(IsLevelEnabled(-1)) << "all numbers without a bit of their own share one";
    EXPECT_FALSE(IsLevelEnabled(Level::Warning));
}

TEST_F(FirstRecord, ManyThreadsAtOnce_MakeOneLogger)
{
    constexpr int count = 16;
    std::atomic<int> ready{0};
    std::atomic<bool> go{false};
    std::vector<CLogger*> loggers(count);
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i)
    {
        threads.emplace_back(
            [&, i]
            {
                ++ready;
                while (!go)
                    std::this_thread::yield();
                Log(Level::Error, "F", L"from thread %d", i);
                loggers[static_cast<std::size_t>(i)] = &CLogger::Instance();
            });
    }
    while (ready != count)
        std::this_thread::yield();
    go = true;
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_THAT(loggers, testing::Each(&CLogger::Instance()));
    EXPECT_THAT(EventLogCapture::OpenSources(), ElementsAre(L"shared_tests"));
    EXPECT_EQ(LogRecords().size(), static_cast<std::size_t>(count));
}

TEST_F(FirstRecord, NoMemoryForTheLogger_ProcessLivesOnWithoutALog)
{
    {
        const AllocationFault fault(1);
        Log(Level::Error, "F", L"x");
        EXPECT_TRUE(AllocationFault::HasBitten());
    }
    Log(Level::Error, "F", L"x");
    EXPECT_TRUE(NothingLogged());
    EXPECT_EQ(g_enabledLevels, 0u);
}

TEST(ProcessLogger, Instance_IsAlwaysTheSame)
{
    EXPECT_EQ(&CLogger::Instance(), &CLogger::Instance());
}

TEST(ProcessLogger, RecordsOfManyThreads_ArriveWhole)
{
    constexpr int records = 500;
    CLogger::Instance();
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
    {
        threads.emplace_back(
            [t]
            {
                for (int i = 0; i < records; ++i)
                    Log(Level::Information, "N::C::F", L"thread %d record %d", t, i);
            });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(LogRecords().size(), 4u * records);
    for (int t = 0; t < 4; ++t)
    {
        for (int i = 0; i < records; i += 50)
        {
            const std::wstring text = L"thread " + std::to_wstring(t) + L" record " + std::to_wstring(i);
            EXPECT_EQ(LogCount(Level::Information, "N::C::F", text), 1u) << text;
        }
    }
}

TEST(ProcessLogger, Record_CarriesTheThreadThatWroteIt)
{
    DWORD threadId = 0;
    std::thread(
        [&threadId]
        {
            threadId = GetCurrentThreadId();
            Log(Level::Error, "F", L"there");
        })
        .join();
    Log(Level::Error, "F", L"here");
    ASSERT_EQ(LogRecords().size(), 2u);
    EXPECT_EQ(LogRecords()[0].m_dwThreadId, threadId);
    EXPECT_EQ(LogRecords()[1].m_dwThreadId, GetCurrentThreadId());
}
} // namespace
