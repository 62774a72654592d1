#include "simulator/model/CallPlan.h"
#include "simulator/model/Journal.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace
{
using Simulator::CallPlan;
using Simulator::Journal;
using Simulator::Repeat;

class CallPlanTest : public testing::Test
{
public:
    void SetUp() override
    {
        m_plan.Reset();
        Journal::Instance().Clear();
    }
    void TearDown() override { m_plan.Reset(); }

    // Results of that many calls of one name, as text: "." for success, "F" for E_FAIL, "A" for E_ABORT.
    std::string Calls(int count, const char* name = "A::B")
    {
        std::string results;
        for (int i = 0; i < count; ++i)
        {
            const HRESULT hr = m_plan.Enter(name);
            results.push_back(hr == S_OK ? '.' : hr == E_FAIL ? 'F' : hr == E_ABORT ? 'A' : '?');
        }
        return results;
    }

    CallPlan& m_plan = CallPlan::Instance();
};

TEST_F(CallPlanTest, NoRule_EveryCallWorks)
{
    EXPECT_EQ(Calls(3), "...");
    EXPECT_EQ(m_plan.CallCount(), 3u);
    EXPECT_EQ(m_plan.FailedCount(), 0u);
}

TEST_F(CallPlanTest, NextCall_FailsOnce)
{
    m_plan.Fail("A::B", E_FAIL);
    EXPECT_EQ(Calls(3), "F..");
    EXPECT_EQ(m_plan.FailedCount(), 1u);
}

TEST_F(CallPlanTest, NthCall_FailsOnceOrFromThereOn)
{
    m_plan.Fail("A::B", E_FAIL, 3);
    EXPECT_EQ(Calls(5), "..F..");
    m_plan.Fail("A::B", E_ABORT, 2, Repeat::Always);
    EXPECT_EQ(Calls(5), ".AAAA");
}

TEST_F(CallPlanTest, RuleOfOneName_LeavesOthersAlone)
{
    m_plan.Fail("A::B", E_FAIL, 1, Repeat::Always);
    EXPECT_EQ(Calls(2, "A::C"), "..");
    EXPECT_EQ(Calls(2, "A::"), "..");
    EXPECT_EQ(Calls(2), "FF");
}

TEST_F(CallPlanTest, AnyName_CountsEveryCall)
{
    m_plan.FailAny(E_FAIL, 3, Repeat::Once);
    EXPECT_EQ(Calls(1, "A"), ".");
    EXPECT_EQ(Calls(1, "B"), ".");
    EXPECT_EQ(Calls(1, "C"), "F");
    EXPECT_EQ(Calls(1, "D"), ".");
    m_plan.Reset();
    m_plan.FailAny(E_FAIL, 2, Repeat::Always);
    EXPECT_EQ(Calls(1, "A"), ".");
    EXPECT_EQ(Calls(1, "B"), "F");
    EXPECT_EQ(Calls(1, "C"), "F");
}

TEST_F(CallPlanTest, SeveralRules_CountOnTheirOwnAndTheFirstGivesTheResult)
{
    m_plan.Fail("A::B", E_FAIL, 2);
    m_plan.Fail("A::B", E_ABORT, 2);
    m_plan.Fail("A::B", E_ABORT, 4);
    EXPECT_EQ(Calls(5), ".F.A.");
}

TEST_F(CallPlanTest, RuleMadeBetweenCalls_CountsFromThere)
{
    Calls(5);
    m_plan.Fail("A::B", E_FAIL, 2);
    EXPECT_EQ(Calls(3), ".F.");
}

TEST_F(CallPlanTest, Counts_AreKeptByName)
{
    Calls(3, "A");
    Calls(2, "B");
    EXPECT_EQ(m_plan.CallCount("A"), 3u);
    EXPECT_EQ(m_plan.CallCount("B"), 2u);
    EXPECT_EQ(m_plan.CallCount("C"), 0u);
    EXPECT_EQ(m_plan.CallCount(), 5u);
}

TEST_F(CallPlanTest, Reset_ForgetsRulesAndCounts)
{
    m_plan.Fail("A::B", E_FAIL, 1, Repeat::Always);
    m_plan.Delay("A::B", 60'000);
    Calls(0);
    m_plan.Reset();
    EXPECT_EQ(Calls(2), "..");
    EXPECT_EQ(m_plan.CallCount(), 2u);
    EXPECT_EQ(m_plan.FailedCount(), 0u);
}

TEST_F(CallPlanTest, EveryCall_IsJournalled)
{
    m_plan.Fail("B", E_FAIL);
    EXPECT_EQ(m_plan.Enter("A", {{"text", "x"}}), S_OK);
    EXPECT_EQ(m_plan.Enter("B"), E_FAIL);
    const auto entries = Journal::Instance().Entries();
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].m_strKind, "call");
    EXPECT_EQ(entries[0].m_strSubject, "A");
    EXPECT_EQ(entries[0].m_details, nlohmann::json({{"text", "x"}}));
    EXPECT_EQ(entries[1].m_details, nlohmann::json({{"planned-failure", 0x80004005u}}));
}

TEST_F(CallPlanTest, DelayedCall_TakesItsTime)
{
    m_plan.Delay("A::B", 60);
    const ULONGLONG start = GetTickCount64();
    Calls(1);
    EXPECT_GE(GetTickCount64() - start, 40u);
    const ULONGLONG other = GetTickCount64();
    Calls(1, "A::C");
    EXPECT_LT(GetTickCount64() - other, 40u);
}

TEST_F(CallPlanTest, HangingCalls_WaitUntilTheyAreReleased)
{
    m_plan.Hang("A::B");
    std::atomic<int> returned{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i)
        threads.emplace_back(
            [&]
            {
                (void)m_plan.Enter("A::B");
                ++returned;
            });
    EXPECT_EQ(Calls(1, "A::C"), ".");
    while (m_plan.CallCount("A::B") != 2)
        Sleep(1);
    Sleep(50);
    EXPECT_EQ(returned, 0);
    m_plan.ReleaseHung();
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(Calls(1), ".");
}

TEST_F(CallPlanTest, Reset_LetsHangingCallsGo)
{
    m_plan.Hang("A::B");
    std::thread thread([&] { (void)m_plan.Enter("A::B"); });
    while (m_plan.CallCount("A::B") != 1)
        Sleep(1);
    m_plan.Reset();
    thread.join();
}

TEST_F(CallPlanTest, HangAfterRelease_HangsAgain)
{
    m_plan.Hang("A::B");
    m_plan.ReleaseHung();
    m_plan.Hang("A::C");
    std::atomic<bool> returned{false};
    std::thread thread(
        [&]
        {
            (void)m_plan.Enter("A::C");
            returned = true;
        });
    Sleep(50);
    EXPECT_FALSE(returned);
    m_plan.ReleaseHung();
    thread.join();
}

TEST_F(CallPlanTest, ManyThreads_EachCallIsCountedAndOneFails)
{
    constexpr int calls = 500;
    m_plan.FailAny(E_FAIL, 777, Repeat::Once);
    std::atomic<int> failures{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back(
            [&]
            {
                for (int i = 0; i < calls; ++i)
                    failures += FAILED(m_plan.Enter("A::B")) ? 1 : 0;
            });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(m_plan.CallCount("A::B"), 4u * calls);
    EXPECT_EQ(failures, 1);
}
} // namespace
