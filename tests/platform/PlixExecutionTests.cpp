#include "platform/PlixCommand.h"
#include "simulator/model/CallPlan.h"
#include "simulator/model/Facts.h"
#include "simulator/model/LiveObjects.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/platform/PlatformMachine.h"
#include "tests/support/BstrLedger.h"
#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>

using Orvik::Shared::TraceScope;
using Simulator::CallPlan;
using Simulator::Facts;

namespace
{
constexpr HRESULT g_hrPlanned = static_cast<HRESULT>(0x80041234);

class PlixExecutionTest : public PlatformMachine
{
protected:
    PlixExecutionTest() { EXPECT_EQ(CreatePlixCommand(m_spCommand), S_OK); }

    static void Answer(const nlohmann::json& answer)
    {
        Facts::Instance().Set("/commands/SmartAdapter.Status", {{"answer", answer}});
    }
    [[nodiscard]] _variant_t Execute() const { return ExecutePlixCommand(m_spCommand, L"SmartAdapter.Status"); }
    [[nodiscard]] static HRESULT CodeOf(IPlixCommand* command)
    {
        return RaisedCode([&] { (void)ExecutePlixCommand(command, L"SmartAdapter.Status"); });
    }

    IPlixCommandPtr m_spCommand;
};
} // namespace

TEST_F(PlixExecutionTest, Execute_Always_SendsNameAndEmptyOutput)
{
    Answer({{"i4", 3}});
    const _variant_t output = Execute();
    const nlohmann::json details = CallDetails("IPlixCommand::Execute");
    EXPECT_EQ(details["command"], "SmartAdapter.Status");
    EXPECT_FALSE(details.contains("output-type-before"));
}

TEST_F(PlixExecutionTest, Execute_LibraryAnswers_GivesTheVariantAsItIs)
{
    Answer({{"i4", -7}});
    EXPECT_EQ(Execute().vt, VT_I4);
    EXPECT_EQ(Execute().lVal, -7);
    Answer({{"bool", true}});
    EXPECT_EQ(Execute().vt, VT_BOOL);
    EXPECT_EQ(Execute().boolVal, VARIANT_TRUE);
    Answer({{"bstr", "<xml/>"}});
    EXPECT_EQ(Execute().vt, VT_BSTR);
    EXPECT_STREQ(Execute().bstrVal, L"<xml/>");
    Answer({{"null-bstr", true}});
    EXPECT_EQ(Execute().vt, VT_BSTR);
    EXPECT_EQ(Execute().bstrVal, nullptr);
    Answer({{"ui1-array", {1, 2, 3}}});
    EXPECT_EQ(Execute().vt, VT_ARRAY | VT_UI1);
    Answer({{"unknown", true}});
    EXPECT_EQ(Execute().vt, VT_UNKNOWN);
}

TEST_F(PlixExecutionTest, Execute_LibraryAnswersNothing_GivesEmptyVariant)
{
    Facts::Instance().Set("/commands/SmartAdapter.Status", nlohmann::json::object());
    EXPECT_EQ(Execute().vt, VT_EMPTY);
}

TEST_F(PlixExecutionTest, Execute_LibraryFails_RaisesItsCode)
{
    for (const HRESULT hr : {static_cast<HRESULT>(0x80000003), E_INVALIDARG, E_FAIL, g_hrPlanned})
    {
        CallPlan::Instance().Reset();
        CallPlan::Instance().Fail("IPlixCommand::Execute", hr);
        EXPECT_EQ(CodeOf(m_spCommand), hr);
    }
}

TEST_F(PlixExecutionTest, Execute_SuccessOtherThanOk_RaisesNothing)
{
    Facts::Instance().Set("/commands/SmartAdapter.Status", {{"answer", {{"i4", 5}}}, {"hr", "0x00000001"}});
    EXPECT_EQ(Execute().lVal, 5);
}

TEST_F(PlixExecutionTest, Execute_NullCommand_RaisesPointerError)
{
    EXPECT_EQ(CodeOf(nullptr), E_POINTER);
}

TEST_F(PlixExecutionTest, Execute_NameCannotBeAllocated_RaisesOutOfMemoryWithoutCall)
{
    const Simulator::Redirection<decltype(SysAllocString)> noMemory("SysAllocString", &AllocateNoBstr);
    StartJournal();
    EXPECT_EQ(CodeOf(m_spCommand), E_OUTOFMEMORY);
    EXPECT_TRUE(Calls().empty());
}

TEST_F(PlixExecutionTest, Execute_Failure_CarriesLibrarysErrorInformation)
{
    Facts::Instance().Set("/platform/error-info", {{"source", "library"}, {"description", "no such adapter"}});
    ASSERT_EQ(CreatePlixCommand(m_spCommand), S_OK);
    try
    {
        (void)Execute();
        FAIL() << "nothing was raised";
    }
    catch (const _com_error& error)
    {
        EXPECT_EQ(error.Error(), static_cast<HRESULT>(0x80000003));
        EXPECT_STREQ(error.Description(), L"no such adapter");
        EXPECT_STREQ(error.Source(), L"library");
    }
}

TEST_F(PlixExecutionTest, Execute_AnyOutcome_GivesEveryStringAndReferenceBack)
{
    Facts::Instance().Set("/platform/error-info", {{"source", "library"}, {"description", "no such adapter"}});
    ASSERT_EQ(CreatePlixCommand(m_spCommand), S_OK);
    const TestSupport::BstrLedger ledger;
    for (const nlohmann::json& answer : {nlohmann::json{{"bstr", "text"}}, nlohmann::json{{"unknown", true}},
                                         nlohmann::json{{"hr", "0x80004005"}}, nlohmann::json{{"i4", 1}}})
    {
        Answer(answer);
        (void)CodeOf(m_spCommand);
    }
    EXPECT_GT(ledger.Allocations(), 0u);
    EXPECT_THAT(ledger.LiveTexts(), testing::IsEmpty());
    EXPECT_EQ(Simulator::LiveObjects::Count("UnknownValue"), 0);
}

TEST(CommandFailure, Log_OldInvalidArgument_IsInvalidCommand)
{
    const TraceScope trace("A::Caller");
    EXPECT_EQ(LogCommandFailure(trace, _com_error(static_cast<HRESULT>(0x80000003)), L"invalid 0x%X", L"other 0x%X"),
              static_cast<HRESULT>(0x80000003));
    EXPECT_THAT(TestSupport::OperationalLines(), testing::ElementsAre(L"Information|A::Caller|invalid 0x80000003"));
}

TEST(CommandFailure, Log_AnyOtherCode_IsOtherFailure)
{
    const TraceScope trace("A::Caller");
    for (const HRESULT hr : {E_INVALIDARG, static_cast<HRESULT>(0x80000002), static_cast<HRESULT>(0x80000004), E_FAIL})
        EXPECT_EQ(LogCommandFailure(trace, _com_error(hr), L"invalid 0x%X", L"other [hr:0x%08X]"), hr);
    EXPECT_THAT(TestSupport::OperationalLines(), testing::ElementsAre(L"Information|A::Caller|other [hr:0x80070057]",
                                                                      L"Information|A::Caller|other [hr:0x80000002]",
                                                                      L"Information|A::Caller|other [hr:0x80000004]",
                                                                      L"Information|A::Caller|other [hr:0x80004005]"));
}
