#include "tests/faults/FaultSweep.h"

#include "simulator/model/LiveObjects.h"

#include <comdef.h>

#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <memory>

using Simulator::CallPlan;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// The sweep is tested on operations of known faults: it must find them, and find nothing where there is none.
namespace
{
HRESULT g_hrResult = S_OK;

HRESULT TwoCalls()
{
    if (const HRESULT hr = CallPlan::Instance().Enter("first"); FAILED(hr))
        return hr;
    return CallPlan::Instance().Enter("second");
}

FaultSweep SweepOf(std::function<void()> operation)
{
    FaultSweep sweep;
    sweep.m_operation = std::move(operation);
    sweep.m_checkFailure = [](const FaultStep& step) { EXPECT_EQ(g_hrResult, step.m_hr); };
    sweep.m_checkSuccess = [] { EXPECT_EQ(g_hrResult, S_OK); };
    sweep.m_lstCodes = {E_FAIL};
    return sweep;
}
// What the sweep reported, without failing this test.
std::vector<std::string> ReportsOf(FaultSweep& sweep)
{
    testing::TestPartResultArray results;
    {
        const testing::ScopedFakeTestPartResultReporter reporter(
            testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &results);
        sweep.Run();
    }
    std::vector<std::string> reports;
    for (int i = 0; i < results.size(); ++i)
        reports.emplace_back(results.GetTestPartResult(i).message());
    return reports;
}
} // namespace

TEST(FaultSweep, Run_FaultlessOperation_FailsEachCallOnceAndFromThereOn)
{
    std::vector<std::string> steps;
    FaultSweep sweep = SweepOf([] { g_hrResult = TwoCalls(); });
    sweep.m_checkFailure = [&](const FaultStep& step) { steps.push_back(step.Description()); };
    EXPECT_THAT(sweep.Run(), ElementsAre("first", "second"));
    EXPECT_THAT(steps,
                ElementsAre("call 1, first, fails once with 0x80004005", "call 2, second, fails once with 0x80004005",
                            "call 1, first, and all that follow fail with 0x80004005",
                            "call 2, second, and all that follow fail with 0x80004005"));
}

TEST(FaultSweep, Run_StringAllocation_IsACallThatFails)
{
    FaultSweep sweep = SweepOf(
        []
        {
            const _bstr_t text(SysAllocString(L"text"), false);
            g_hrResult = !text ? E_FAIL : S_OK;
        });
    EXPECT_THAT(sweep.Run(), ElementsAre("SysAllocString"));
}

TEST(FaultSweep, Run_FaultlessOperation_ReportsNothing)
{
    FaultSweep sweep = SweepOf([] { g_hrResult = TwoCalls(); });
    EXPECT_THAT(ReportsOf(sweep), IsEmpty());
}

TEST(FaultSweep, Run_IgnoredFailure_IsReported)
{
    FaultSweep sweep = SweepOf(
        []
        {
            (void)TwoCalls();
            g_hrResult = S_OK;
        });
    EXPECT_THAT(ReportsOf(sweep), Contains(HasSubstr("call 2, second, fails once with 0x80004005")));
}

TEST(FaultSweep, Run_ObjectLeftOver_IsReported)
{
    std::vector<std::unique_ptr<Simulator::LiveObject>> leaked;
    FaultSweep sweep = SweepOf(
        [&]
        {
            g_hrResult = TwoCalls();
            if (FAILED(g_hrResult))
                leaked.push_back(std::make_unique<Simulator::LiveObject>("Leaked"));
        });
    EXPECT_THAT(ReportsOf(sweep), Contains(HasSubstr("Leaked")));
}

TEST(FaultSweep, Run_StringLeftOver_IsReported)
{
    FaultSweep sweep = SweepOf(
        []
        {
            _bstr_t text(SysAllocString(L"a lost text"), false);
            g_hrResult = !text ? E_FAIL : TwoCalls();
            if (FAILED(g_hrResult))
                text.Detach();
        });
    EXPECT_THAT(ReportsOf(sweep), Contains(HasSubstr("a lost text")));
}

TEST(FaultSweep, Run_HandleLeftOver_IsReported)
{
    FaultSweep sweep = SweepOf(
        []
        {
            g_hrResult = TwoCalls();
            if (FAILED(g_hrResult))
                CreateEventW(nullptr, TRUE, FALSE, nullptr);
        });
    EXPECT_THAT(ReportsOf(sweep), Contains(HasSubstr("m_nHandles")));
}

TEST(FaultSweep, Run_OperationBrokenForGood_IsReported)
{
    bool isBroken = false;
    FaultSweep sweep = SweepOf(
        [&]
        {
            g_hrResult = isBroken ? E_UNEXPECTED : TwoCalls();
            isBroken = FAILED(g_hrResult);
        });
    EXPECT_THAT(ReportsOf(sweep), Contains(HasSubstr("after call 1, first, fails once")));
}

TEST(FaultSweep, Run_NothingToFail_IsReported)
{
    FaultSweep sweep = SweepOf([] { g_hrResult = S_OK; });
    EXPECT_THAT(ReportsOf(sweep), Contains(HasSubstr("no call could be made to fail")));
}
