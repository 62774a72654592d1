#include "shared/LogLevel.h"
#include "simulator/model/CallPlan.h"
#include "simulator/model/LiveObjects.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/support/AllocationFault.h"
#include "tests/support/BstrLedger.h"
#include "tests/support/LogCapture.h"
#include "tests/usbc/BiosInfoMachine.h"
#include "tests/wmievents/EmptyHandedCommand.h"

#include <gmock/gmock.h>

using Simulator::CallPlan;
using Simulator::Facts;
using Simulator::LiveObjects;
using Simulator::Redirection;
using testing::ElementsAre;
using testing::IsEmpty;
using Tests::EmptyHandedCommand;
using TestSupport::LogLines;
namespace Level = Orvik::Shared::Level;

namespace
{
class UsbCBiosInfoCommandTest : public BiosInfoMachine
{
protected:
    // The fetch ends with that code, gives no text, and writes these lines behind the command's own.
    void ExpectNoText(HRESULT hr, const std::vector<std::wstring>& operational)
    {
        std::wstring xml = L"from before";
        TestSupport::ClearLog();
        EXPECT_EQ(m_info.GetMsgDataFromPlix(1, xml), hr);
        EXPECT_EQ(xml, L"");
        EXPECT_EQ(TestSupport::OperationalLines(), operational);
        EXPECT_EQ(LiveObjects::Count("PlixCommand"), 0);
    }
};

constexpr const wchar_t* g_prefix = L"Information|CUsbCBiosInfo::GetMsgDataFromPlix|";

BSTR WINAPI NoBstr(const OLECHAR*)
{
    return nullptr;
}
} // namespace

TEST_F(UsbCBiosInfoCommandTest, Fetch_Works_GivesTheTextAndTheseRecords)
{
    Answer(2, "<answer/>");
    std::wstring xml = L"from before";
    EXPECT_EQ(m_info.GetMsgDataFromPlix(2, xml), S_OK);
    EXPECT_EQ(xml, L"<answer/>");
    EXPECT_THAT(LogLines(Fetch),
                ElementsAre(L"TraceIn|", L"TraceIn|Calling Platform.USBC.Messages",
                            L"Verbose|Calling Platform.USBC.Messages passed.", L"TraceOut|hr: 0x00000000"));
    EXPECT_THAT(TestSupport::OperationalLines(),
                ElementsAre(L"Verbose|CUsbCBiosInfo::GetMsgDataFromPlix|Calling Platform.USBC.Messages passed."));
}

TEST_F(UsbCBiosInfoCommandTest, Fetch_SendsThePortAsOneByteByValue)
{
    const std::pair<int, int> ports[] = {{0, 0}, {1, 1}, {127, 127}, {128, 128}, {255, 255}, {256, 0}, {-1, 255}};
    for (const auto& [port, sent] : ports)
    {
        AnswerAny({{"answer", {{"bstr", "x"}}}});
        StartJournal();
        std::wstring xml;
        EXPECT_EQ(m_info.GetMsgDataFromPlix(port, xml), S_OK);
        EXPECT_THAT(Calls(), ElementsAre("CoCreateInstance", "OleRun", "IPlixCommand::ExecuteWithInput")) << port;
        const nlohmann::json details = CallDetails("IPlixCommand::ExecuteWithInput");
        EXPECT_EQ(details["command"], "Platform.USBC.Messages");
        EXPECT_EQ(details["input"], (nlohmann::json{{"vt", VT_UI1}, {"value", sent}})) << port;
        EXPECT_FALSE(details.contains("output-type-before"));
    }
}

TEST_F(UsbCBiosInfoCommandTest, Fetch_EachPort_GetsItsOwnAnswer)
{
    AnswerAny({{"answer", {{"bstr", "any"}}},
               {"by-input", {{"0", {{"answer", {{"bstr", "zero"}}}}}, {"2", {{"answer", {{"bstr", "two"}}}}}}}});
    std::wstring xml;
    EXPECT_EQ(m_info.GetMsgDataFromPlix(0, xml), S_OK);
    EXPECT_EQ(xml, L"zero");
    EXPECT_EQ(m_info.GetMsgDataFromPlix(2, xml), S_OK);
    EXPECT_EQ(xml, L"two");
    EXPECT_EQ(m_info.GetMsgDataFromPlix(3, xml), S_OK);
    EXPECT_EQ(xml, L"any");
}

TEST_F(UsbCBiosInfoCommandTest, Fetch_SuccessWithoutText_LeavesItEmptyAndSucceeds)
{
    for (const nlohmann::json& answer : std::vector<nlohmann::json>{{{"empty", true}},
                                                                    {{"null-bstr", true}},
                                                                    {{"bool", true}},
                                                                    {{"i4", 7}},
                                                                    {{"unknown", true}},
                                                                    {{"ui1-array", {1, 2}}},
                                                                    {{"bstr", ""}}})
    {
        AnswerAny({{"answer", answer}});
        std::wstring xml = L"from before";
        EXPECT_EQ(m_info.GetMsgDataFromPlix(1, xml), S_OK) << answer;
        EXPECT_EQ(xml, L"") << answer;
    }
    AnswerAny(nlohmann::json::object());
    std::wstring xml = L"from before";
    EXPECT_EQ(m_info.GetMsgDataFromPlix(1, xml), S_OK);
    EXPECT_EQ(xml, L"");
}

TEST_F(UsbCBiosInfoCommandTest, Fetch_TextWithAZeroInside_EndsThere)
{
    AnswerAny({{"answer", {{"utf16", {'a', 'b', 0, 'c'}}}}});
    std::wstring xml;
    EXPECT_EQ(m_info.GetMsgDataFromPlix(1, xml), S_OK);
    EXPECT_EQ(xml, L"ab");
}

TEST_F(UsbCBiosInfoCommandTest, Fetch_SuccessOtherThanOk_IsTheResult)
{
    AnswerAny({{"answer", {{"bstr", "text"}}}, {"hr", "0x00000001"}});
    std::wstring xml;
    EXPECT_EQ(m_info.GetMsgDataFromPlix(1, xml), S_FALSE);
    EXPECT_EQ(xml, L"text");
}

TEST_F(UsbCBiosInfoCommandTest, Fetch_CommandUnknown_IsAnInvalidCommand)
{
    ExpectNoText(static_cast<HRESULT>(0x80000003),
                 {std::wstring(g_prefix) + L"Platform.USBC.Messages failed. hr = 0x80000003",
                  std::wstring(g_prefix) + L"Invalid Command Platform.USBC.Messages. hr = 0x80000003"});
    EXPECT_THAT(LogLines(Fetch).back(), L"TraceOut|hr: 0x80000003");
}

TEST_F(UsbCBiosInfoCommandTest, Fetch_CommandFailsOtherwise_IsAnException)
{
    const std::pair<HRESULT, const wchar_t*> codes[] = {
        {E_INVALIDARG, L"0x80070057"}, {E_FAIL, L"0x80004005"}, {static_cast<HRESULT>(0x80000002), L"0x80000002"}};
    for (const auto& [hr, text] : codes)
    {
        CallPlan::Instance().Fail("IPlixCommand::ExecuteWithInput", hr);
        ExpectNoText(hr, {std::wstring(g_prefix) + L"Platform.USBC.Messages failed. hr = " + text,
                          std::wstring(g_prefix) + L"Exception occurred during Platform.USBC.Messages. hr = " + text});
    }
}

TEST_F(UsbCBiosInfoCommandTest, Fetch_NoLibrary_IsOneLineAndTheCreationsResult)
{
    Facts::Instance().Set("/platform/registered", false);
    ExpectNoText(REGDB_E_CLASSNOTREG, {std::wstring(g_prefix) + L"Create Plix instance cmd failed.  HR=0X80040154"});
    EXPECT_THAT(Calls(), ElementsAre("CoCreateInstance"));
}

TEST_F(UsbCBiosInfoCommandTest, Fetch_LibraryGivesNoObject_SucceedsWithoutTextAndAsksNothing)
{
    Answer(1, "<answer/>");
    const EmptyHandedCommand emptyHanded;
    StartJournal();
    ExpectNoText(S_OK, {std::wstring(g_prefix) + L"Create Plix instance cmd failed.  HR=0X0"});
    EXPECT_THAT(LogLines(Fetch).back(), L"TraceOut|hr: 0x00000000");
    EXPECT_THAT(Calls(), ElementsAre("CoCreateInstance", "OleRun"));
}

TEST_F(UsbCBiosInfoCommandTest, Fetch_NameCannotBeAllocated_IsOutOfMemory)
{
    Answer(1, "<answer/>");
    const Redirection<decltype(SysAllocString)> noMemory("SysAllocString", &NoBstr);
    ExpectNoText(E_OUTOFMEMORY,
                 {std::wstring(g_prefix) + L"Platform.USBC.Messages failed. hr = 0x8007000E",
                  std::wstring(g_prefix) + L"Exception occurred during Platform.USBC.Messages. hr = 0x8007000E"});
    EXPECT_THAT(Calls(), testing::Not(testing::Contains("IPlixCommand::ExecuteWithInput")));
}

TEST_F(UsbCBiosInfoCommandTest, Fetch_NoRoomForTheText_IsOutOfMemory)
{
    // Longer than everything else that is allocated on the way.
    constexpr std::size_t length = 100'000;
    Answer(1, std::string(length, 'x'));
    std::wstring xml;
    HRESULT hr = S_OK;
    bool bitten = false;
    for (std::size_t nth = 1; nth < 50; ++nth)
    {
        TestSupport::ClearLog();
        const AllocationFault fault(nth, length * sizeof(wchar_t));
        hr = m_info.GetMsgDataFromPlix(1, xml);
        bitten = AllocationFault::HasBitten();
        if (!bitten || hr == E_OUTOFMEMORY)
            break;
    }
    ASSERT_TRUE(bitten);
    EXPECT_EQ(hr, E_OUTOFMEMORY);
    EXPECT_EQ(xml, L"");
    EXPECT_TRUE(TestSupport::Logged(Level::Information, Fetch,
                                    L"Exception occurred during Platform.USBC.Messages. hr = 0x8007000E"));
}

TEST_F(UsbCBiosInfoCommandTest, Fetch_AnyOutcome_LeavesNothing)
{
    const TestSupport::BstrLedger ledger;
    std::wstring xml;
    Answer(1, "<answer/>");
    EXPECT_EQ(m_info.GetMsgDataFromPlix(1, xml), S_OK);
    AnswerAny({{"answer", {{"unknown", true}}}});
    EXPECT_EQ(m_info.GetMsgDataFromPlix(1, xml), S_OK);
    AnswerAny({{"hr", "0x80004005"}});
    EXPECT_EQ(m_info.GetMsgDataFromPlix(1, xml), E_FAIL);
    EXPECT_GT(ledger.Allocations(), 0u);
    EXPECT_THAT(ledger.LiveTexts(), IsEmpty());
    EXPECT_THAT(LiveObjects::All(), IsEmpty());
}
