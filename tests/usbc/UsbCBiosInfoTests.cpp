#include "shared/LogLevel.h"
#include "simulator/model/CallPlan.h"
#include "tests/platform/MethodRedirection.h"
#include "tests/support/BstrLedger.h"
#include "tests/support/LogCapture.h"
#include "tests/usbc/BiosInfoMachine.h"

#include <gmock/gmock.h>

using Simulator::CallPlan;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::Logged;
using TestSupport::LogLines;
namespace Level = Orvik::Shared::Level;

namespace
{
using UsbCBiosInfoTest = BiosInfoMachine;

HRESULT STDMETHODCALLTYPE RefuseSetting(IXMLDOMDocument*, VARIANT_BOOL)
{
    return E_FAIL;
}
} // namespace

TEST_F(UsbCBiosInfoTest, NewMessage_HasNoValues)
{
    const PortMessage message;
    for (const auto field :
         {&PortMessage::iMessageId, &PortMessage::iNormalPower, &PortMessage::iSuppliedPower,
          &PortMessage::iRequestedPower, &PortMessage::iMaxSuppliedPower, &PortMessage::iNeededVoltage,
          &PortMessage::iNeededCurrent, &PortMessage::iProvidedVoltage, &PortMessage::iProvidedCurrent,
          &PortMessage::iRequestedVoltage, &PortMessage::iRequestedCurrent})
        EXPECT_EQ(message.*field, -1);
    EXPECT_EQ(sizeof(message), 11 * sizeof(std::int32_t));
}

TEST_F(UsbCBiosInfoTest, Message_HoldsItsValuesInThisOrder)
{
    const PortMessage message{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11};
    EXPECT_EQ(message.iMessageId, 1);
    EXPECT_EQ(message.iNormalPower, 2);
    EXPECT_EQ(message.iSuppliedPower, 3);
    EXPECT_EQ(message.iRequestedPower, 4);
    EXPECT_EQ(message.iMaxSuppliedPower, 5);
    EXPECT_EQ(message.iNeededVoltage, 6);
    EXPECT_EQ(message.iNeededCurrent, 7);
    EXPECT_EQ(message.iProvidedVoltage, 8);
    EXPECT_EQ(message.iProvidedCurrent, 9);
    EXPECT_EQ(message.iRequestedVoltage, 10);
    EXPECT_EQ(message.iRequestedCurrent, 11);
}

TEST_F(UsbCBiosInfoTest, TwoMessages_SecondKeepsTheValuesOfTheFirst)
{
    EXPECT_THAT(
        MessagesOf(OnePort(2, R"(<Message0 MessageId="1" Valid="true" NormalPower="45" SuppliedPower="30"/>)"
                              R"(<Message1 MessageId="6" Valid="true" NeededVoltage="20" NeededCurrent="3"/>)")),
        ElementsAre(
            PortMessage{.iMessageId = 1, .iNormalPower = 45, .iSuppliedPower = 30},
            PortMessage{
                .iMessageId = 6, .iNormalPower = 45, .iSuppliedPower = 30, .iNeededVoltage = 20, .iNeededCurrent = 3}));
}

TEST_F(UsbCBiosInfoTest, Answer_WritesTheseRecords)
{
    Answer(7, OnePort(2, R"(<Message0 MessageId="1" Valid="TRUE" NormalPower="45" SuppliedPower="30"/>)"
                         R"(<Message1 MessageId="3" Valid="false" RequestedPower="9"/>)"));
    m_info.GetMessages(7);
    EXPECT_THAT(LogLines(Read),
                ElementsAre(L"TraceIn|", L"Verbose|portNumber = 7", L"Verbose|GetMsgDataFromPlix passed",
                            L"Verbose|Number Of Ports = 1", L"Verbose|Get info for port # 0.",
                            L"Verbose|Number Of Messages = 2.", L"Verbose|iMessageId = 1", L"Verbose|Valid = TRUE",
                            L"Verbose|portMessage.iNormalPower = 45", L"Verbose|portMessage.iSuppliedPower = 30",
                            L"Verbose|iMessageId = 3", L"TraceOut|"));
}

TEST_F(UsbCBiosInfoTest, Message_NotValid_ChangesOnlyItsNumber)
{
    const std::string first = R"(<Message0 MessageId="3" Valid="true" RequestedPower="5" MaxSuppliedPower="6"/>)";
    for (const char* valid : {R"(Valid="false")", R"(Valid="")", R"(Valid="1")", R"(Valid="true ")", ""})
    {
        const std::string second =
            std::string("<Message1 MessageId=\"1\" NormalPower=\"45\" SuppliedPower=\"30\" ") + valid + "/>";
        EXPECT_THAT(MessagesOf(OnePort(2, first + second)),
                    ElementsAre(PortMessage{.iMessageId = 3, .iRequestedPower = 5, .iMaxSuppliedPower = 6},
                                PortMessage{.iMessageId = 1, .iRequestedPower = 5, .iMaxSuppliedPower = 6}))
            << valid;
    }
}

TEST_F(UsbCBiosInfoTest, ValidOneThenInvalidThree_SecondHasOnlyAnotherNumber)
{
    EXPECT_THAT(
        MessagesOf(OnePort(2, R"(<Message0 MessageId="1" Valid="true" NormalPower="45" SuppliedPower="30"/>)"
                              R"(<Message1 MessageId="3" Valid="false" RequestedPower="60" MaxSuppliedPower="15"/>)")),
        ElementsAre(PortMessage{1, 45, 30, -1, -1, -1, -1, -1, -1, -1, -1},
                    PortMessage{3, 45, 30, -1, -1, -1, -1, -1, -1, -1, -1}));
}

TEST_F(UsbCBiosInfoTest, Valid_InAnyCase_Counts)
{
    for (const char* valid : {"true", "TRUE", "True", "tRuE"})
    {
        EXPECT_THAT(MessagesOf(OnePort(1, std::string("<Message0 MessageId=\"6\" NeededVoltage=\"20\" Valid=\"") +
                                              valid + "\"/>")),
                    ElementsAre(PortMessage{.iMessageId = 6, .iNeededVoltage = 20}));
    }
}

TEST_F(UsbCBiosInfoTest, EachMessageNumber_ReadsItsOwnAttributes)
{
    const std::string values =
        R"( Valid="true" NormalPower="10" SuppliedPower="11" RequestedPower="12" MaxSuppliedPower="13" )"
        R"(NeededVoltage="14" NeededCurrent="15" ProvidedVoltage="16" ProvidedCurrent="17" )"
        R"(RequestedVoltage="18" RequestedCurrent="19"/>)";
    for (int id = 1; id <= 20; ++id)
    {
        PortMessage expected{.iMessageId = id};
        if (id == 1)
            expected = {.iMessageId = 1, .iNormalPower = 10, .iSuppliedPower = 11};
        else if (id == 3)
            expected = {.iMessageId = 3, .iRequestedPower = 12, .iMaxSuppliedPower = 13};
        else if (id == 6)
            expected = {.iMessageId = 6, .iNeededVoltage = 14, .iNeededCurrent = 15};
        else if (id == 7)
            expected = {.iMessageId = 7,
                        .iProvidedVoltage = 16,
                        .iProvidedCurrent = 17,
                        .iRequestedVoltage = 18,
                        .iRequestedCurrent = 19};
        EXPECT_THAT(MessagesOf(OnePort(1, "<Message0 MessageId=\"" + std::to_string(id) + "\"" + values)),
                    ElementsAre(expected))
            << id;
    }
}

TEST_F(UsbCBiosInfoTest, MessageNumber_BelowOne_IsNotListed)
{
    for (const char* id : {"0", "-1", "-2147483648", "x", "", "-99999999999"})
    {
        const std::string message = std::string("<Message0 Valid=\"true\" MessageId=\"") + id + "\"/>";
        EXPECT_THAT(MessagesOf(OnePort(1, message)), IsEmpty()) << id;
    }
    EXPECT_TRUE(Logged(Level::Verbose, Read, L"iMessageId = -2147483648"));
}

TEST_F(UsbCBiosInfoTest, MessageNumber_HoweverLarge_IsListed)
{
    for (const auto& [id, expected] : {std::pair("17", 17), std::pair("2147483647", 2147483647),
                                       std::pair("99999999999", 2147483647), std::pair(" 9 volts", 9)})
        EXPECT_THAT(MessagesOf(OnePort(1, std::string("<Message0 MessageId=\"") + id + "\"/>")),
                    ElementsAre(PortMessage{.iMessageId = expected}))
            << id;
}

TEST_F(UsbCBiosInfoTest, Attribute_Missing_LeavesTheFieldAsItWas)
{
    EXPECT_THAT(MessagesOf(OnePort(3, R"(<Message0 MessageId="1" Valid="true" NormalPower="45"/>)"
                                      R"(<Message1 MessageId="1" Valid="true" SuppliedPower="30"/>)"
                                      R"(<Message2 Valid="true" SuppliedPower="31"/>)")),
                ElementsAre(PortMessage{.iMessageId = 1, .iNormalPower = 45},
                            PortMessage{.iMessageId = 1, .iNormalPower = 45, .iSuppliedPower = 30},
                            PortMessage{.iMessageId = 1, .iNormalPower = 45, .iSuppliedPower = 31}));
    EXPECT_TRUE(Logged(Level::Verbose, Read, L"portMessage.iSuppliedPower = -1"));
}

TEST_F(UsbCBiosInfoTest, MessageNumber_NeverGiven_IsNotListed)
{
    EXPECT_THAT(MessagesOf(OnePort(1, R"(<Message0 Valid="true" NormalPower="45"/>)")), IsEmpty());
    EXPECT_TRUE(Logged(Level::Verbose, Read, L"iMessageId = -1"));
}

TEST_F(UsbCBiosInfoTest, Value_ThatIsNoNumber_IsZero)
{
    EXPECT_THAT(MessagesOf(OnePort(1, R"(<Message0 MessageId="1" Valid="true" NormalPower="lots" SuppliedPower=""/>)")),
                ElementsAre(PortMessage{.iMessageId = 1, .iNormalPower = 0, .iSuppliedPower = 0}));
}

TEST_F(UsbCBiosInfoTest, Message_Missing_NextOneIsRead)
{
    EXPECT_THAT(MessagesOf(OnePort(3, R"(<Message0 MessageId="2"/><Message2 MessageId="4"/>)")),
                ElementsAre(PortMessage{.iMessageId = 2}, PortMessage{.iMessageId = 4}));
}

TEST_F(UsbCBiosInfoTest, Messages_BeyondTheirNumber_AreNotRead)
{
    EXPECT_THAT(MessagesOf(OnePort(1, R"(<Message0 MessageId="2"/><Message1 MessageId="4"/>)")),
                ElementsAre(PortMessage{.iMessageId = 2}));
}

TEST_F(UsbCBiosInfoTest, Ports_AreReadInOrderEachWithAFreshRecord)
{
    const std::string ports =
        R"(<Port1 NumberOfMessages="1"><Message0 MessageId="9" Valid="true"/></Port1>)"
        R"(<Port0 NumberOfMessages="1"><Message0 MessageId="3" Valid="true" RequestedPower="5"/></Port0>)";
    EXPECT_THAT(MessagesOf(Output("NumberOfPorts=\"2\"", ports)),
                ElementsAre(PortMessage{.iMessageId = 3, .iRequestedPower = 5}, PortMessage{.iMessageId = 9}));
}

TEST_F(UsbCBiosInfoTest, Port_Missing_NextOneIsRead)
{
    const std::string ports = R"(<Port2 NumberOfMessages="1"><Message0 MessageId="9"/></Port2>)";
    EXPECT_THAT(MessagesOf(Output("NumberOfPorts=\"3\"", ports)), ElementsAre(PortMessage{.iMessageId = 9}));
    EXPECT_THAT(LogLines(Read),
                ElementsAre(L"TraceIn|", L"Verbose|portNumber = 1", L"Verbose|GetMsgDataFromPlix passed",
                            L"Verbose|Number Of Ports = 3", L"Verbose|Get info for port # 0.",
                            L"Verbose|Get info for port # 1.", L"Verbose|Get info for port # 2.",
                            L"Verbose|Number Of Messages = 1.", L"Verbose|iMessageId = 9", L"TraceOut|"));
}

TEST_F(UsbCBiosInfoTest, Port_WithoutMessages_AddsNothing)
{
    for (const char* attribute :
         {R"(NumberOfMessages="0")", R"(NumberOfMessages="-5")", R"(NumberOfMessages="many")", ""})
        EXPECT_THAT(MessagesOf(Output("NumberOfPorts=\"1\"",
                                      std::string("<Port0 ") + attribute + "><Message0 MessageId=\"2\"/></Port0>")),
                    IsEmpty())
            << attribute;
    EXPECT_THAT(LogLines(Read), testing::Contains(L"Verbose|Number Of Messages = -1."));
}

TEST_F(UsbCBiosInfoTest, Ports_None_SaysSoAndAddsNothing)
{
    const std::pair<const char*, const wchar_t*> counts[] = {
        {"NumberOfPorts=\"0\"", L"0"}, {"NumberOfPorts=\"-3\"", L"-3"}, {"NumberOfPorts=\"none\"", L"0"}, {"", L"-1"}};
    for (const auto& [attribute, count] : counts)
    {
        TestSupport::ClearLog();
        EXPECT_THAT(MessagesOf(Output(attribute, R"(<Port0 NumberOfMessages="1"><Message0 MessageId="2"/></Port0>)")),
                    IsEmpty());
        EXPECT_THAT(LogLines(Read),
                    ElementsAre(L"TraceIn|", L"Verbose|portNumber = 1", L"Verbose|GetMsgDataFromPlix passed",
                                std::wstring(L"Verbose|Number Of Ports = ") + count, L"Verbose|no usb-c ports, quit.",
                                L"TraceOut|"));
    }
}

TEST_F(UsbCBiosInfoTest, List_IsAppendedToAndNeverEmptied)
{
    Answer(1, OnePort(1, R"(<Message0 MessageId="2"/>)"));
    m_info.GetMessages(1);
    m_info.GetMessages(1);
    AnswerAny({{"hr", "0x80004005"}});
    m_info.GetMessages(1);
    Answer(1, "no XML");
    m_info.GetMessages(1);
    EXPECT_THAT(m_info.Messages(), ElementsAre(PortMessage{.iMessageId = 2}, PortMessage{.iMessageId = 2}));
}

TEST_F(UsbCBiosInfoTest, Command_Fails_SaysSoAndAddsNothing)
{
    CallPlan::Instance().Fail("IPlixCommand::ExecuteWithInput", E_FAIL);
    m_info.GetMessages(1);
    EXPECT_THAT(m_info.Messages(), IsEmpty());
    EXPECT_THAT(LogLines(Read), ElementsAre(L"TraceIn|", L"Verbose|portNumber = 1",
                                            L"Information|GetMsgDataFromPlix failed", L"TraceOut|"));
}

TEST_F(UsbCBiosInfoTest, Document_CannotBeHad_SaysSoAndAddsNothing)
{
    Answer(1, OnePort(1, R"(<Message0 MessageId="2"/>)"));
    // The command object is the first.
    CallPlan::Instance().Fail("CoCreateInstance", REGDB_E_CLASSNOTREG, 2);
    m_info.GetMessages(1);
    EXPECT_THAT(m_info.Messages(), IsEmpty());
    EXPECT_THAT(LogLines(Read),
                ElementsAre(L"TraceIn|", L"Verbose|portNumber = 1", L"Verbose|GetMsgDataFromPlix passed",
                            L"Information|xml.GetDocument() failed", L"TraceOut|"));
}

// It is held all the same, without nodes.
TEST_F(UsbCBiosInfoTest, Document_RefusesASetting_HasNoPortsAndTheNextIsRead)
{
    Answer(1, OnePort(1, R"(<Message0 MessageId="2"/>)"));
    {
        XmlDocument sample;
        ASSERT_EQ(sample.Load(_bstr_t(L"<a/>")), S_OK);
        const MethodRedirection redirection(sample.GetDocument(), &IXMLDOMDocument::put_async, &RefuseSetting);
        m_info.GetMessages(1);
    }
    EXPECT_THAT(m_info.Messages(), IsEmpty());
    EXPECT_THAT(LogLines(Read),
                ElementsAre(L"TraceIn|", L"Verbose|portNumber = 1", L"Verbose|GetMsgDataFromPlix passed",
                            L"Verbose|Number Of Ports = -1", L"Verbose|no usb-c ports, quit.", L"TraceOut|"));
    m_info.GetMessages(1);
    EXPECT_THAT(m_info.Messages(), ElementsAre(PortMessage{.iMessageId = 2}));
}

TEST_F(UsbCBiosInfoTest, Calls_CommandThenDocument)
{
    Answer(1, OnePort(1, R"(<Message0 MessageId="2"/>)"));
    m_info.GetMessages(1);
    EXPECT_THAT(Calls(),
                ElementsAre("CoCreateInstance", "OleRun", "IPlixCommand::ExecuteWithInput", "CoCreateInstance"));
    EXPECT_EQ(CallDetails("CoCreateInstance", 1)["clsid"], "{F5078F32-C551-11D3-89B9-0000F81FE221}");
}

TEST_F(UsbCBiosInfoTest, Reading_FreesEveryText)
{
    Answer(1, OnePort(20, R"(<Message0 MessageId="1" Valid="true" NormalPower="45"/>)"));
    const TestSupport::BstrLedger ledger({L"msxml3.dll"});
    m_info.GetMessages(1);
    EXPECT_GT(ledger.Allocations(), 20u);
    EXPECT_THAT(ledger.LiveTexts(), IsEmpty());
}
