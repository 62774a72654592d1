#include "platform/PlixCommand.h"
#include "simulator/model/CallPlan.h"
#include "simulator/model/Facts.h"
#include "simulator/model/LiveObjects.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/platform/MethodRedirection.h"
#include "tests/platform/PlatformMachine.h"
#include "tests/support/AllocationFault.h"
#include "tests/support/BstrLedger.h"

#include <gmock/gmock.h>

using Simulator::CallPlan;
using Simulator::Facts;

namespace
{
constexpr HRESULT g_hrPlanned = static_cast<HRESULT>(0x80041234);
constexpr HRESULT g_hrInvalid = static_cast<HRESULT>(0x80000003);

// Commands with one input value.
class PlixInputTest : public PlatformMachine
{
protected:
    PlixInputTest() { EXPECT_EQ(CreatePlixCommand(m_spCommand), S_OK); }

    static void Answer(const nlohmann::json& answer)
    {
        Facts::Instance().Set("/commands/Platform.USBC.Messages", {{"answer", answer}});
    }
    [[nodiscard]] _variant_t Execute(const VARIANT& input, HRESULT* result = nullptr) const
    {
        return ExecutePlixCommandWithInput(m_spCommand, L"Platform.USBC.Messages", input, result);
    }
    [[nodiscard]] static HRESULT CodeOf(IPlixCommand* command, HRESULT* result = nullptr)
    {
        return RaisedCode(
            [&]
            { (void)ExecutePlixCommandWithInput(command, L"Platform.USBC.Messages", _variant_t(BYTE{2}), result); });
    }

    IPlixCommandPtr m_spCommand;
};

// What the library gets, byte by byte.
VARIANT g_received;

HRESULT STDMETHODCALLTYPE KeepInput(IPlixCommand*, BSTR, VARIANT input, VARIANT*)
{
    g_received = input;
    return S_OK;
}
} // namespace

TEST_F(PlixInputTest, Execute_Always_SendsNameInputAndEmptyOutput)
{
    Answer({{"i4", 3}});
    StartJournal();
    (void)Execute(_variant_t(BYTE{2}));
    EXPECT_THAT(Calls(), testing::ElementsAre("IPlixCommand::ExecuteWithInput"));
    const nlohmann::json details = CallDetails("IPlixCommand::ExecuteWithInput");
    EXPECT_EQ(details["command"], "Platform.USBC.Messages");
    EXPECT_EQ(details["input"], (nlohmann::json{{"vt", VT_UI1}, {"value", 2}}));
    EXPECT_FALSE(details.contains("output-type-before"));
}

TEST_F(PlixInputTest, Execute_EachByte_ReachesTheLibraryAsItIs)
{
    const MethodRedirection redirection(m_spCommand.GetInterfacePtr(), &IPlixCommand::ExecuteWithInput, &KeepInput);
    for (int value = 0; value < 256; ++value)
    {
        VARIANT input{};
        input.vt = VT_UI1;
        input.bVal = static_cast<BYTE>(value);
        (void)Execute(input);
        EXPECT_EQ(g_received.vt, VT_UI1);
        EXPECT_EQ(g_received.bVal, value);
    }
}

// It is neither copied nor cleared.
TEST_F(PlixInputTest, Execute_TextAsInput_StaysTheCallers)
{
    const _variant_t input(L"the caller's");
    {
        const MethodRedirection redirection(m_spCommand.GetInterfacePtr(), &IPlixCommand::ExecuteWithInput, &KeepInput);
        (void)Execute(input);
    }
    EXPECT_EQ(g_received.vt, VT_BSTR);
    EXPECT_EQ(g_received.bstrVal, input.bstrVal);
    EXPECT_STREQ(input.bstrVal, L"the caller's");
}

TEST_F(PlixInputTest, Execute_LibraryAnswers_GivesTheVariantAsItIs)
{
    const _variant_t input(BYTE{2});
    Answer({{"i4", -7}});
    EXPECT_EQ(Execute(input).vt, VT_I4);
    EXPECT_EQ(Execute(input).lVal, -7);
    Answer({{"bool", true}});
    EXPECT_EQ(Execute(input).vt, VT_BOOL);
    EXPECT_EQ(Execute(input).boolVal, VARIANT_TRUE);
    Answer({{"bstr", "<xml/>"}});
    EXPECT_EQ(Execute(input).vt, VT_BSTR);
    EXPECT_STREQ(Execute(input).bstrVal, L"<xml/>");
    EXPECT_EQ(_bstr_t(Execute(input)), _bstr_t(L"<xml/>"));
    Answer({{"null-bstr", true}});
    EXPECT_EQ(Execute(input).vt, VT_BSTR);
    EXPECT_EQ(Execute(input).bstrVal, nullptr);
    Answer({{"ui1-array", {1, 2, 3}}});
    EXPECT_EQ(Execute(input).vt, VT_ARRAY | VT_UI1);
    Answer({{"unknown", true}});
    EXPECT_EQ(Execute(input).vt, VT_UNKNOWN);
}

TEST_F(PlixInputTest, Execute_LibraryWritesNothing_GivesEmptyVariantOfZero)
{
    Facts::Instance().Set("/commands/Platform.USBC.Messages", nlohmann::json::object());
    const _variant_t output = Execute(_variant_t(BYTE{2}));
    EXPECT_EQ(output.vt, VT_EMPTY);
    EXPECT_EQ(output.llVal, 0);
}

TEST_F(PlixInputTest, Execute_SuccessOtherThanOk_IsTheResult)
{
    Facts::Instance().Set("/commands/Platform.USBC.Messages", {{"answer", {{"i4", 5}}}, {"hr", "0x00000001"}});
    HRESULT hr = E_FAIL;
    EXPECT_EQ(Execute(_variant_t(BYTE{2}), &hr).lVal, 5);
    EXPECT_EQ(hr, S_FALSE);
}

TEST_F(PlixInputTest, Execute_LibraryFails_RaisesItsCodeAndLeavesTheResult)
{
    for (const HRESULT hr : {g_hrInvalid, E_INVALIDARG, E_FAIL, g_hrPlanned})
    {
        CallPlan::Instance().Reset();
        CallPlan::Instance().Fail("IPlixCommand::ExecuteWithInput", hr);
        HRESULT result = S_FALSE;
        EXPECT_EQ(CodeOf(m_spCommand, &result), hr);
        EXPECT_EQ(result, S_FALSE);
    }
}

TEST_F(PlixInputTest, Execute_UnknownCommand_RaisesInvalidCommand)
{
    EXPECT_EQ(CodeOf(m_spCommand), g_hrInvalid);
}

TEST_F(PlixInputTest, Execute_NullCommand_RaisesPointerError)
{
    EXPECT_EQ(CodeOf(nullptr), E_POINTER);
}

TEST_F(PlixInputTest, Execute_NameCannotBeAllocated_RaisesOutOfMemoryWithoutCall)
{
    StartJournal();
    {
        const Simulator::Redirection<decltype(SysAllocString)> noMemory("SysAllocString", &AllocateNoBstr);
        EXPECT_EQ(CodeOf(m_spCommand), E_OUTOFMEMORY);
    }
    {
        const AllocationFault noWrapper(1);
        EXPECT_EQ(CodeOf(m_spCommand), E_OUTOFMEMORY);
    }
    EXPECT_TRUE(Calls().empty());
}

TEST_F(PlixInputTest, Execute_Failure_CarriesLibrarysErrorInformation)
{
    Facts::Instance().Set("/platform/error-info", {{"source", "library"}, {"description", "no such port"}});
    ASSERT_EQ(CreatePlixCommand(m_spCommand), S_OK);
    try
    {
        (void)Execute(_variant_t(BYTE{2}));
        FAIL() << "nothing was raised";
    }
    catch (const _com_error& error)
    {
        EXPECT_EQ(error.Error(), g_hrInvalid);
        EXPECT_STREQ(error.Description(), L"no such port");
        EXPECT_STREQ(error.Source(), L"library");
    }
}

TEST_F(PlixInputTest, Execute_AnyOutcome_GivesEveryStringAndReferenceBack)
{
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
