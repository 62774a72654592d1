#include "shared/ElapsedTimer.h"

#include "simulator/redirect/ImportRedirection.h"
#include "tests/shared/ListenerDouble.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <type_traits>
#include <vector>

namespace
{
using namespace Orvik::Shared;
using testing::ElementsAre;

static_assert(std::is_nothrow_constructible_v<CElapsedTimer, CLogger&, const char*>);

std::deque<ULONGLONG> g_ticks;

WINBOOL WINAPI TicksOfTheTest(PULONGLONG ticks)
{
    *ticks = g_ticks.front();
    g_ticks.pop_front();
    return TRUE;
}

class ElapsedTimer : public testing::Test
{
protected:
    void SetUp() override
    {
        CLogger::Listeners listeners;
        listeners[0] = ListenerDouble::Make(L"TraceIn", L"Diag",
                                            [this](const COrvikLogListener::LogData& data)
                                            {
                                                m_lstLevels.push_back(data.Level());
                                                m_lstFunctions.push_back(data.FunctionName());
                                                m_lstMessages.push_back(data.Message());
                                            });
        m_pLogger = std::make_unique<CLogger>(std::move(listeners));
    }

    void Time(ULONGLONG start, ULONGLONG end, const char* functionName = "N::C::F")
    {
        g_ticks = {start, end};
        const CElapsedTimer timer(*m_pLogger, functionName);
    }

    std::vector<int> m_lstLevels;
    std::vector<std::string> m_lstFunctions;
    std::vector<std::wstring> m_lstMessages;
    std::unique_ptr<CLogger> m_pLogger;
    Simulator::Redirection<decltype(QueryUnbiasedInterruptTime)> m_ticks{"QueryUnbiasedInterruptTime", &TicksOfTheTest};
};

TEST_F(ElapsedTimer, ShortTime_IsLoggedInMilliseconds)
{
    Time(1'000'000, 1'000'000 + 123'456);
    EXPECT_THAT(m_lstMessages, ElementsAre(L"Elapsed time =    12.3 ms."));
    EXPECT_THAT(m_lstLevels, ElementsAre(6));
    EXPECT_THAT(m_lstFunctions, ElementsAre("N::C::F"));
}

TEST_F(ElapsedTimer, NoTime_IsLoggedAsZero)
{
    Time(5, 5);
    EXPECT_THAT(m_lstMessages, ElementsAre(L"Elapsed time =     0.0 ms."));
}

TEST_F(ElapsedTimer, JustBelowAMillionMilliseconds_StaysInMilliseconds)
{
    Time(0, 9'999'999'999);
    EXPECT_THAT(m_lstMessages, ElementsAre(L"Elapsed time = 1000000.0 ms."));
    m_lstMessages.clear();
    Time(0, 9'999'990'000);
    EXPECT_THAT(m_lstMessages, ElementsAre(L"Elapsed time = 999999.0 ms."));
}

TEST_F(ElapsedTimer, MillionMilliseconds_AreLoggedInSeconds)
{
    Time(0, 10'000'000'000);
    EXPECT_THAT(m_lstMessages, ElementsAre(L"Elapsed time =  1000.0 s."));
}

TEST_F(ElapsedTimer, ClockThatPassesItsEnd_GivesTheDifference)
{
    Time(~0ull - 9'999, 10'000);
    EXPECT_THAT(m_lstMessages, ElementsAre(L"Elapsed time =     2.0 ms."));
}

TEST_F(ElapsedTimer, Times_AreSummedByName)
{
    Time(0, 10'000, "A");
    Time(0, 25'000, "A");
    Time(0, 20'000'000'000, "LongerName");
    const auto a = m_pLogger->Statistics().Find("A");
    ASSERT_TRUE(a);
    EXPECT_DOUBLE_EQ(a->m_totalMilliseconds, 3.5);
    EXPECT_EQ(a->m_nCalls, 2u);
    const auto b = m_pLogger->Statistics().Find("LongerName");
    ASSERT_TRUE(b);
    EXPECT_DOUBLE_EQ(b->m_totalMilliseconds, 2'000'000.0);
    EXPECT_EQ(b->m_nCalls, 1u);
    EXPECT_EQ(m_pLogger->Statistics().LongestNameLength(), 10u);
}

TEST_F(ElapsedTimer, LastError_SurvivesTheRecord)
{
    g_ticks = {0, 10'000};
    {
        const CElapsedTimer timer(*m_pLogger, "F");
        SetLastError(ERROR_FILE_NOT_FOUND);
    }
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
}

TEST_F(ElapsedTimer, NullName_CountsAsEmpty)
{
    Time(0, 10'000, nullptr);
    EXPECT_THAT(m_lstFunctions, ElementsAre(""));
    EXPECT_EQ(m_pLogger->Statistics().Find("")->m_nCalls, 1u);
}

TEST_F(ElapsedTimer, LoggerThatDoesNotTakeDiag_StillCounts)
{
    CLogger silent{CLogger::Listeners{}};
    g_ticks = {0, 10'000};
    {
        const CElapsedTimer timer(silent, "F");
    }
    EXPECT_EQ(silent.Statistics().Find("F")->m_nCalls, 1u);
}
} // namespace
