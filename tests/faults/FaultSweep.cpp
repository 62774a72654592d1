#include "tests/faults/FaultSweep.h"

#include "simulator/doubles/JournalText.h"
#include "simulator/model/Journal.h"
#include "simulator/model/LiveObjects.h"
#include "tests/faults/FaultableFunction.h"
#include "tests/support/BstrLedger.h"
#include "tests/support/HandleCount.h"
#include "tests/support/LogCapture.h"

#include <oleauto.h>

#include <gtest/gtest.h>

#include <map>
#include <memory>

using Simulator::CallPlan;
using Simulator::Journal;
using Simulator::LiveObjects;
using Simulator::Repeat;

namespace
{
// No operation of the agent makes that many calls: a sweep that gets there does not end.
constexpr unsigned g_nMostCalls = 500;
// So often a run may leave over what the process makes once; what is left over every time is a leak.
constexpr int g_nOneTimeMakings = 3;

// The automation functions of the program may fail; they lie above the ledger, which redirects the same ones and counts
// what is allocated nevertheless.
struct FaultableAutomation
{
    FaultableFunction<struct AllocTag, decltype(SysAllocString)> m_alloc{"SysAllocString", nullptr};
    FaultableFunction<struct AllocLenTag, decltype(SysAllocStringLen)> m_allocLen{"SysAllocStringLen", nullptr};
    FaultableFunction<struct AllocByteLenTag, decltype(SysAllocStringByteLen)> m_allocByteLen{"SysAllocStringByteLen",
                                                                                              nullptr};
    FaultableFunction<struct ChangeTypeTag, decltype(VariantChangeType)> m_changeType{"VariantChangeType",
                                                                                      E_OUTOFMEMORY};
};

TestSupport::BstrLedger* g_pLedger = nullptr;

void StartRun()
{
    CallPlan::Instance().Reset();
    Journal::Instance().Clear();
    TestSupport::ClearLog();
}

// Fills in which call it was; false when none failed.
bool FindFailedCall(FaultStep& step)
{
    for (const Simulator::JournalEntry& entry : Journal::Instance().Entries())
    {
        if (entry.m_details.contains("planned-failure"))
        {
            step.m_strCall = entry.m_strSubject;
            step.m_details = entry.m_details;
            return true;
        }
    }
    return false;
}
} // namespace

struct FaultSweep::Balance
{
    bool operator==(const Balance&) const = default;

    std::map<std::string, long> m_mapObjects = LiveObjects::All();
    std::vector<std::wstring> m_lstTexts = g_pLedger->LiveTexts();
    unsigned m_nHandles = TestSupport::OpenHandleCount();
};

// The balance once it is the expected one, or after a while: a thread of a double may hold a handle for a moment
// longer.
FaultSweep::Balance FaultSweep::Settled(const Balance& expected)
{
    Balance now;
    for (int i = 0; i < 20 && now != expected; ++i)
    {
        Sleep(5);
        now = Balance();
    }
    return now;
}

std::string FaultStep::Description() const
{
    return "call " + std::to_string(m_nCall) + ", " + m_strCall +
           (m_repeat == Repeat::Once ? ", fails once with " : ", and all that follow fail with ") +
           Simulator::HResultText(m_hr);
}

std::vector<std::string> FaultSweep::Run()
{
    TestSupport::BstrLedger ledger;
    g_pLedger = &ledger;
    const FaultableAutomation automation;
    // The first runs make what the process keeps for good.
    for (int i = 0; i < 2; ++i)
    {
        StartRun();
        m_operation();
        m_cleanUp();
    }
    RunClean("before any failure");

    std::vector<std::string> reached;
    for (const HRESULT hr : m_lstCodes)
    {
        for (const Repeat repeat : {Repeat::Once, Repeat::Always})
        {
            reached.clear();
            FaultStep step{hr, 1, repeat, {}, {}};
            for (; step.m_nCall <= g_nMostCalls && RunFailing(step); ++step.m_nCall)
                reached.push_back(step.m_strCall);
            EXPECT_GT(step.m_nCall, 1u) << "no call could be made to fail";
            EXPECT_LE(step.m_nCall, g_nMostCalls) << "the sweep does not end";
        }
    }
    g_pLedger = nullptr;
    return reached;
}

bool FaultSweep::RunFailing(FaultStep& step)
{
    bool failed = false;
    ExpectBalanced(
        [&]
        {
            StartRun();
            CallPlan::Instance().FailAny(step.m_hr, step.m_nCall, step.m_repeat);
            m_operation();
            CallPlan::Instance().Reset();
            failed = FindFailedCall(step);
            const testing::ScopedTrace trace(__FILE__, __LINE__, step.Description());
            if (failed)
                m_checkFailure(step);
            m_cleanUp();
            return step.Description();
        });
    RunClean("after " + step.Description());
    return failed;
}

void FaultSweep::RunClean(const std::string& description)
{
    ExpectBalanced(
        [&]
        {
            StartRun();
            m_operation();
            const testing::ScopedTrace trace(__FILE__, __LINE__, description);
            m_checkSuccess();
            m_cleanUp();
            return description;
        });
}

void FaultSweep::ExpectBalanced(const std::function<std::string()>& run)
{
    Balance before;
    std::string description = run();
    Balance after = Settled(before);
    // What the process makes once and keeps, for its first exception or for one more thread of the pool, is not left
    // over each time.
    for (int again = 0; again < g_nOneTimeMakings && after != before; ++again)
    {
        before = Balance();
        description = run();
        after = Settled(before);
    }
    EXPECT_EQ(after.m_mapObjects, before.m_mapObjects) << description;
    EXPECT_EQ(after.m_lstTexts, before.m_lstTexts) << description;
    EXPECT_EQ(after.m_nHandles, before.m_nHandles) << description;
}
