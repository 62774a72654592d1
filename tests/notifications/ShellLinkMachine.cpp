#include "tests/notifications/ShellLinkMachine.h"

#include "simulator/model/CallPlan.h"
#include "simulator/model/Facts.h"
#include "simulator/model/Journal.h"
#include "simulator/model/LiveObjects.h"
#include "tests/support/LogCapture.h"

using Simulator::CallPlan;
using Simulator::Facts;
using Simulator::Journal;

ShellLinkMachine::ShellLinkMachine()
{
    Facts::Instance().Clear();
    StartOver();
}

ShellLinkMachine::~ShellLinkMachine()
{
    EXPECT_EQ(Simulator::LiveObjects::Count(), 0);
    CallPlan::Instance().Reset();
    Facts::Instance().Clear();
}

void ShellLinkMachine::StartOver()
{
    CallPlan::Instance().Reset();
    Journal::Instance().Clear();
    TestSupport::ClearLog();
}

std::vector<std::string> ShellLinkMachine::Calls()
{
    return Journal::Instance().Subjects("call");
}

nlohmann::json ShellLinkMachine::Details(const char* call)
{
    for (const Simulator::JournalEntry& entry : Journal::Instance().Entries())
    {
        if (entry.m_strSubject == call)
            return entry.m_details;
    }
    return nullptr;
}
