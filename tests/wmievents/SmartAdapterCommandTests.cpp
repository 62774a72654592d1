#include "shared/LogLevel.h"
#include "simulator/model/Facts.h"
#include "simulator/model/LiveObjects.h"
#include "tests/support/BstrLedger.h"
#include "tests/support/LogCapture.h"
#include "tests/wmievents/EmptyHandedCommand.h"
#include "tests/wmievents/FailingBstr.h"
#include "tests/wmievents/SmartAdapterTest.h"

#include <gmock/gmock.h>

#include <utility>

using Simulator::CallPlan;
using Simulator::Facts;
using Simulator::LiveObjects;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::Logged;
using TestSupport::LogLines;
namespace Level = Orvik::Shared::Level;

namespace
{
// What the handler asks of the platform, and what becomes of the answer.
class SmartAdapterCommandTest : public Tests::SmartAdapterTest
{
protected:
    // Records of everybody but the look-up of policies.
    static std::vector<std::wstring> LinesBesidePolicies()
    {
        auto lines = TestSupport::OperationalLines();
        std::erase_if(lines, [](const std::wstring& line)
                      { return line.find(L"|CSettingsControl::GetRegistrySetting|") != std::wstring::npos; });
        return lines;
    }

    // The handler gets no command object: this is the only line.
    static void ExpectOnlyCreationFailed(const std::wstring& code)
    {
        EXPECT_THAT(
            LogLines(Handler),
            ElementsAre(L"TraceIn|", L"Information|Create Plix instance cmd failed.  HR=0X" + code, L"TraceOut|"));
        EXPECT_EQ(LinesBesidePolicies().size(), 1u);
        EXPECT_THAT(Commands(), IsEmpty());
        EXPECT_THAT(Toasts(), IsEmpty());
    }
};

HRESULT STDMETHODCALLTYPE FillAndFail(IPlixCommand*, BSTR, VARIANT* output)
{
    output->vt = VT_BSTR;
    output->bstrVal = SysAllocString(L"3");
    return E_FAIL;
}
} // namespace

TEST_F(SmartAdapterCommandTest, NoPlatformLibrary_OnlyThatLine)
{
    Facts::Instance().Set("/platform/registered", false);
    m_hub.ProcessSmartAdapterEvent();
    ExpectOnlyCreationFailed(L"80040154");
}

TEST_F(SmartAdapterCommandTest, NoApartment_CodeHasSmallLetters)
{
    CallPlan::Instance().Fail("CoCreateInstance", CO_E_NOTINITIALIZED);
    m_hub.ProcessSmartAdapterEvent();
    ExpectOnlyCreationFailed(L"800401f0");
}

TEST_F(SmartAdapterCommandTest, SuccessWithoutACommandObject_IsAFailure)
{
    const Tests::EmptyHandedCommand emptyHanded;
    StartWatching();
    m_hub.ProcessSmartAdapterEvent();
    ExpectOnlyCreationFailed(L"0");
}

TEST_F(SmartAdapterCommandTest, NameCannotBeAllocated_LogsOutOfMemoryAndSendsNothing)
{
    const Tests::FailingBstr noMemory(1);
    m_hub.ProcessSmartAdapterEvent();
    EXPECT_THAT(LogLines(Handler),
                ElementsAre(L"TraceIn|", Before,
                            L"Information|Exception occurred when calling SmartAdapter.Status, [hr:0x8007000E]",
                            L"TraceOut|"));
    EXPECT_THAT(Commands(), IsEmpty());
    EXPECT_THAT(Toasts(), IsEmpty());
}

TEST_F(SmartAdapterCommandTest, CommandObject_IsGivenBackBeforeTheComponentIsLookedUp)
{
    m_hub.ProcessSmartAdapterEvent();
    std::vector<std::string> order;
    for (const auto& entry : Simulator::Journal::Instance().Entries())
    {
        if (entry.m_strSubject == "CLSIDFromProgID" ||
            (entry.m_strSubject == "PlixCommand::Release" && entry.m_details.at("count") == 0))
            order.push_back(entry.m_strSubject);
    }
    EXPECT_THAT(order, ElementsAre("PlixCommand::Release", "CLSIDFromProgID"));
}

TEST_F(SmartAdapterCommandTest, Command_Fails_LogsByItsCode)
{
    const std::pair<HRESULT, const wchar_t*> failures[] = {
        {static_cast<HRESULT>(0x80000003), L"Invalid Command SmartAdapter.Status. hr = 0x80000003"},
        {E_INVALIDARG, L"Exception occurred when calling SmartAdapter.Status, [hr:0x80070057]"},
        {E_OUTOFMEMORY, L"Exception occurred when calling SmartAdapter.Status, [hr:0x8007000E]"},
        {E_FAIL, L"Exception occurred when calling SmartAdapter.Status, [hr:0x80004005]"}};
    for (const auto& [hr, line] : failures)
    {
        StartWatching();
        Fail("SmartAdapter.Status", hr);
        m_hub.ProcessSmartAdapterEvent();
        EXPECT_THAT(LogLines(Handler),
                    ElementsAre(L"TraceIn|", Before, std::wstring(L"Information|") + line, L"TraceOut|"));
        EXPECT_THAT(Toasts(), IsEmpty());
    }
    EXPECT_THAT(LiveObjects::All(), IsEmpty());
}

TEST_F(SmartAdapterCommandTest, Command_AnswersAnotherNumericType_IsConverted)
{
    for (const nlohmann::json& answer :
         std::vector<nlohmann::json>{{{"i2", 3}}, {{"ui4", 3}}, {{"int", 3}}, {{"r8", 3.0}}, {{"bstr", "3"}}})
    {
        StartWatching();
        Process(answer);
        EXPECT_TRUE(Logged(Level::Verbose, Handler, L"SmartAdapterData: 3")) << answer;
        EXPECT_EQ(Toasts().size(), 1u) << answer;
    }
}

TEST_F(SmartAdapterCommandTest, Command_AnswersNothing_IsStatusZero)
{
    Process({{"empty", true}});
    EXPECT_TRUE(Logged(Level::Verbose, Handler, L"SmartAdapterData: 0"));
    EXPECT_THAT(Toasts(), IsEmpty());
}

TEST_F(SmartAdapterCommandTest, Command_AnswersWhatIsNoNumber_LogsTheConversionsCode)
{
    const std::pair<nlohmann::json, const wchar_t*> answers[] = {
        {{{"unknown", true}}, L"0x80020005"},     {{{"bstr", "three"}}, L"0x80020005"},
        {{{"ui1-array", {1, 2}}}, L"0x80020005"}, {{{"r8", 1e300}}, L"0x8002000A"},
        {{{"i8", 4294967295}}, L"0x8002000A"},
    };
    for (const auto& [answer, code] : answers)
    {
        StartWatching();
        Process(answer);
        EXPECT_THAT(LogLines(Handler),
                    ElementsAre(L"TraceIn|", Before, After,
                                L"Information|Exception occurred when calling SmartAdapter.Status, [hr:" +
                                    std::wstring(code) + L"]",
                                L"TraceOut|"))
            << answer;
        EXPECT_THAT(Toasts(), IsEmpty());
    }
    EXPECT_THAT(LiveObjects::All(), IsEmpty());
}

// Systems differ in whether this number is too large or -1.
TEST_F(SmartAdapterCommandTest, Command_AnswersTheLargestUnsignedNumber_ShowsNothing)
{
    Process({{"ui4", 4294967295}});
    EXPECT_THAT(LogLines(Handler).at(3),
                testing::AnyOf(L"Verbose|SmartAdapterData: -1",
                               L"Information|Exception occurred when calling SmartAdapter.Status, [hr:0x8002000A]"));
    EXPECT_THAT(Toasts(), IsEmpty());
}

TEST_F(SmartAdapterCommandTest, Command_FailsWithItsOutputFilled_OutputIsFreed)
{
    IPlixCommandPtr spSample;
    ASSERT_EQ(CreatePlixCommand(spSample), S_OK);
    const MethodRedirection filling(spSample.GetInterfacePtr(), &IPlixCommand::Execute, &FillAndFail);
    const TestSupport::BstrLedger ledger;
    m_hub.ProcessSmartAdapterEvent();
    EXPECT_TRUE(
        Logged(Level::Information, Handler, L"Exception occurred when calling SmartAdapter.Status, [hr:0x80004005]"));
    EXPECT_EQ(ledger.Allocations(), 2u);
    EXPECT_THAT(ledger.LiveTexts(), IsEmpty());
}
