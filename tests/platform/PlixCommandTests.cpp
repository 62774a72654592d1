#include "platform/PlixCommand.h"

#include "simulator/model/CallPlan.h"
#include "simulator/model/Facts.h"
#include "simulator/model/LiveObjects.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/platform/MethodRedirection.h"
#include "tests/platform/PlatformMachine.h"
#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>

#include <thread>

using Simulator::CallPlan;
using Simulator::Facts;
using Simulator::LiveObjects;
using testing::ElementsAre;

namespace
{
constexpr HRESULT g_hrPlanned = static_cast<HRESULT>(0x80041234);

using QueryFunction = HRESULT STDMETHODCALLTYPE(IUnknown*, REFIID, void**);
QueryFunction* g_query = nullptr;

HRESULT STDMETHODCALLTYPE NoCommandInterface(IUnknown* object, REFIID iid, void** result)
{
    if (!IsEqualIID(iid, __uuidof(IPlixCommand)))
        return g_query(object, iid, result);
    *result = nullptr;
    return S_OK;
}

// Creation of the command object, and its two trace records.
class PlixCommandTest : public PlatformMachine
{
};
} // namespace

TEST_F(PlixCommandTest, Create_Always_AsksForUnknownWithoutAggregationInAnyContext)
{
    IPlixCommandPtr spCommand;
    EXPECT_EQ(CreatePlixCommand(spCommand), S_OK);
    EXPECT_TRUE(spCommand);
    const nlohmann::json details = CallDetails("CoCreateInstance");
    EXPECT_EQ(details["clsid"], "{CA490AE1-8C69-45D5-9533-D4692726F2FB}");
    EXPECT_EQ(details["iid"], "{00000000-0000-0000-C000-000000000046}");
    EXPECT_EQ(details["context"], 23);
    EXPECT_EQ(details["aggregated"], false);
}

TEST_F(PlixCommandTest, Create_Always_RunsObjectThenAsksForCommandInterface)
{
    IPlixCommandPtr spCommand;
    EXPECT_EQ(CreatePlixCommand(spCommand), S_OK);
    EXPECT_THAT(Calls(), ElementsAre("CoCreateInstance", "OleRun"));
    EXPECT_THAT(CallsAndReferences(), testing::IsSupersetOf({"IRunnableObject::Run", "PlixCommand::QueryInterface"}));
    EXPECT_THAT(
        CallsAndReferences(),
        testing::ResultOf([](const auto& all) { return std::vector(all.end() - 3, all.end()); },
                          ElementsAre("PlixCommand::QueryInterface", "PlixCommand::AddRef", "PlixCommand::Release")));
}

TEST_F(PlixCommandTest, Create_SlotHoldsInterface_ReleasesItFirst)
{
    IPlixCommandPtr spCommand;
    ASSERT_EQ(CreatePlixCommand(spCommand), S_OK);
    StartJournal();
    ASSERT_EQ(CreatePlixCommand(spCommand), S_OK);
    EXPECT_EQ(CallsAndReferences().at(0), "PlixCommand::Release");
    EXPECT_EQ(CallsAndReferences().at(1), "CoCreateInstance");
    EXPECT_EQ(LiveObjects::Count("PlixCommand"), 1);
}

TEST_F(PlixCommandTest, Create_LibraryNotRegistered_GivesThatCodeAndNullSlot)
{
    IPlixCommandPtr spCommand;
    ASSERT_EQ(CreatePlixCommand(spCommand), S_OK);
    Facts::Instance().Set("/platform/registered", false);
    EXPECT_EQ(CreatePlixCommand(spCommand), REGDB_E_CLASSNOTREG);
    EXPECT_FALSE(spCommand);
    EXPECT_EQ(LiveObjects::Count("PlixCommand"), 0);
}

TEST_F(PlixCommandTest, Create_AStepFails_GivesItsCodeNullSlotAndNoReference)
{
    for (const char* step : {"CoCreateInstance", "OleRun", "PlixCommand::QueryInterface"})
    {
        IPlixCommandPtr spCommand;
        CallPlan::Instance().Reset();
        // OleRun asks for the running interface before the command interface is asked for.
        CallPlan::Instance().Fail(step, g_hrPlanned, std::string(step) == "PlixCommand::QueryInterface" ? 2 : 1);
        EXPECT_EQ(CreatePlixCommand(spCommand), g_hrPlanned) << step;
        EXPECT_FALSE(spCommand) << step;
        EXPECT_EQ(LiveObjects::Count(), 0) << step;
    }
}

TEST_F(PlixCommandTest, Create_ServerGivesNoObject_FailsBeforeItIsRun)
{
    IPlixCommandPtr spCommand;
    ASSERT_EQ(CreatePlixCommand(spCommand), S_OK);
    const Simulator::Redirection<decltype(CoCreateInstance)> redirection("CoCreateInstance", &CreateNoObject);
    StartJournal();
    EXPECT_EQ(CreatePlixCommand(spCommand), E_POINTER);
    EXPECT_FALSE(spCommand);
    EXPECT_TRUE(Calls().empty());
}

TEST_F(PlixCommandTest, Create_ObjectGivesNoInterface_SucceedsWithNullSlot)
{
    IPlixCommandPtr spCommand;
    ASSERT_EQ(CreatePlixCommand(spCommand), S_OK);
    const MethodRedirection redirection(spCommand.GetInterfacePtr(), QueryInterfaceMethod, &NoCommandInterface);
    g_query = redirection.Original<QueryFunction>();
    EXPECT_EQ(CreatePlixCommand(spCommand), S_OK);
    EXPECT_FALSE(spCommand);
    EXPECT_EQ(LiveObjects::Count(), 0);
}

TEST_F(PlixCommandTest, Create_AfterFailure_Works)
{
    IPlixCommandPtr spCommand;
    CallPlan::Instance().Fail("OleRun", g_hrPlanned);
    EXPECT_EQ(CreatePlixCommand(spCommand), g_hrPlanned);
    EXPECT_EQ(CreatePlixCommand(spCommand), S_OK);
    EXPECT_TRUE(spCommand);
}

TEST_F(PlixCommandTest, Create_OnThreadWithoutApartment_GivesThatCode)
{
    HRESULT hr = S_OK;
    std::thread(
        [&]
        {
            IPlixCommandPtr spCommand;
            hr = CreatePlixCommand(spCommand);
        })
        .join();
    EXPECT_EQ(hr, CO_E_NOTINITIALIZED);
}

TEST_F(PlixCommandTest, Create_AnyOutcome_TracesEntryAndResult)
{
    IPlixCommandPtr spCommand;
    ASSERT_EQ(CreatePlixCommand(spCommand), S_OK);
    Facts::Instance().Set("/platform/registered", false);
    ASSERT_EQ(CreatePlixCommand(spCommand), REGDB_E_CLASSNOTREG);
    EXPECT_THAT(TestSupport::LogLines(),
                ElementsAre(L"TraceIn|CreatePlixCommand|", L"TraceOut|CreatePlixCommand|hr: 0x00000000",
                            L"TraceIn|CreatePlixCommand|", L"TraceOut|CreatePlixCommand|hr: 0x80040154"));
}
