#pragma once

#include "tests/auditlog/AuditLogTest.h"
#include "tests/auditlog/ThreadCalls.h"

namespace Tests
{
// The threads of the firmware's protection in a machine whose firmware holds an audit log of one entry, Entry(0).
class VeritorTest : public AuditLogTest
{
protected:
    VeritorTest()
    {
        FirmwareHas(LogXml({Entry()}));
        StartWatching();
    }
    ~VeritorTest() override { Settle(); }

    // Lets calls that hang go and waits for every thread.
    void Settle()
    {
        Simulator::CallPlan::Instance().ReleaseHung();
        m_threads.WaitForAll();
    }

    // Waits until such a call was made so many times.
    static void WaitForCall(const char* call, unsigned times = 1)
    {
        while (Simulator::CallPlan::Instance().CallCount(call) < times)
            Sleep(1);
    }

    ThreadCalls m_calls;
};
} // namespace Tests
