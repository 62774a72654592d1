#include "tests/platform/PlatformMachine.h"

#include "simulator/model/CallPlan.h"
#include "simulator/model/Facts.h"
#include "simulator/model/Journal.h"
#include "simulator/model/LiveObjects.h"

using Simulator::CallPlan;
using Simulator::Facts;
using Simulator::Journal;
using Simulator::LiveObjects;

HRESULT WINAPI CreateNoObject(REFCLSID, LPUNKNOWN, DWORD, REFIID, LPVOID* object)
{
    *object = nullptr;
    return S_OK;
}

BSTR WINAPI AllocateNoBstr(const OLECHAR*)
{
    return nullptr;
}

PlatformMachine::PlatformMachine()
{
    CallPlan::Instance().Reset();
    Facts::Instance().Clear();
    StartJournal();
}

PlatformMachine::~PlatformMachine()
{
    EXPECT_EQ(LiveObjects::Count(), 0) << nlohmann::json(LiveObjects::All()).dump();
    CallPlan::Instance().Reset();
    Facts::Instance().Clear();
}

void PlatformMachine::StartJournal()
{
    Journal::Instance().Clear();
}

std::vector<std::string> PlatformMachine::Calls()
{
    return Journal::Instance().Subjects("call");
}

std::vector<std::string> PlatformMachine::CallsAndReferences()
{
    std::vector<std::string> subjects;
    for (const Simulator::JournalEntry& entry : Journal::Instance().Entries())
        subjects.push_back(entry.m_strSubject);
    return subjects;
}

nlohmann::json PlatformMachine::CallDetails(const std::string& call, std::size_t n)
{
    for (const Simulator::JournalEntry& entry : Journal::Instance().Entries())
    {
        if (entry.m_strSubject == call && n-- == 0)
            return entry.m_details;
    }
    ADD_FAILURE() << "no such call: " << call;
    return nlohmann::json::object();
}
