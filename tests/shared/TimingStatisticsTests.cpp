#include "shared/TimingStatistics.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace
{
using Orvik::Shared::TimingStatistics;

TEST(TimingStatistics, NothingAdded_IsEmpty)
{
    const TimingStatistics statistics;
    EXPECT_FALSE(statistics.Find("F"));
    EXPECT_EQ(statistics.LongestNameLength(), 0u);
}

TEST(TimingStatistics, ShorterName_LeavesTheLongest)
{
    TimingStatistics statistics;
    statistics.Add("12345", 1);
    statistics.Add("123", 1);
    EXPECT_EQ(statistics.LongestNameLength(), 5u);
    statistics.Add("123456", 1);
    EXPECT_EQ(statistics.LongestNameLength(), 6u);
}

TEST(TimingStatistics, ManyThreads_LoseNothing)
{
    constexpr int calls = 5000;
    TimingStatistics statistics;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
    {
        threads.emplace_back(
            [&statistics, t]
            {
                for (int i = 0; i < calls; ++i)
                {
                    statistics.Add("shared", 1);
                    statistics.Add("own " + std::to_string(t), 2);
                }
            });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(statistics.Find("shared")->m_nCalls, 4u * calls);
    EXPECT_DOUBLE_EQ(statistics.Find("shared")->m_totalMilliseconds, 4.0 * calls);
    for (int t = 0; t < 4; ++t)
        EXPECT_DOUBLE_EQ(statistics.Find("own " + std::to_string(t))->m_totalMilliseconds, 2.0 * calls);
}
} // namespace
