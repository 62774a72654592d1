#include "wmievents/PublicWMIEventSink.h"

#include "platform/WmiQuery.h"
#include "shared/LogLevel.h"
#include "simulator/doubles/WbemClassObjectDouble.h"
#include "simulator/doubles/WmiDelivery.h"
#include "tests/support/BstrLedger.h"
#include "tests/support/LogCapture.h"
#include "tests/wmievents/FailingBstr.h"
#include "tests/wmievents/MachineTest.h"

#include <comdef.h>

#include <gmock/gmock.h>

using Notifications::OrvikWmiEvents::PublicWMIEventSink;
using testing::ElementsAre;
using testing::IsEmpty;
using Tests::HubProbe;
using TestSupport::LogCount;
using TestSupport::LogLines;
namespace Level = Orvik::Shared::Level;

namespace
{
constexpr const char* Indicate = "Notifications::OrvikWmiEvents::PublicWMIEventSink::Indicate";
constexpr const char* SetStatus = "Notifications::OrvikWmiEvents::PublicWMIEventSink::SetStatus";
constexpr const char* Destructor = "Notifications::OrvikWmiEvents::PublicWMIEventSink::~PublicWMIEventSink";
constexpr const char* EventClass = "OrvikBIOS_BIOSEvent";

class PublicWMIEventSinkTest : public Tests::HubTest
{
protected:
    ~PublicWMIEventSinkTest() override
    {
        m_pPlain->Release();
        m_pWithParams->Release();
    }

    static HRESULT Deliver(PublicWMIEventSink* sink, const std::vector<nlohmann::json>& objects)
    {
        return Simulator::Indicate(*sink, EventClass, objects);
    }

    // The code of the error that a delivery to the sink raises.
    static HRESULT RaisedBy(PublicWMIEventSink* sink, const nlohmann::json& properties)
    {
        try
        {
            Deliver(sink, {properties});
        }
        catch (const _com_error& error)
        {
            return error.Error();
        }
        return S_OK;
    }

    PublicWMIEventSink* m_pPlain = new PublicWMIEventSink(&m_hub, HubProbe::PlainHandler());
    PublicWMIEventSink* m_pWithParams = new PublicWMIEventSink(&m_hub, HubProbe::PublicHandler());
};
} // namespace

TEST_F(PublicWMIEventSinkTest, Indicate_WithParams_GetsClassAndDescription)
{
    EXPECT_EQ(Deliver(m_pWithParams, {{{"Description", "Lid opened"}}}), WBEM_S_NO_ERROR);
    const auto calls = m_hub.Calls();
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_EQ(calls[0].m_strHandler, "public");
    EXPECT_EQ(calls[0].m_strEventClass, L"OrvikBIOS_BIOSEvent");
    EXPECT_EQ(calls[0].m_vt, VT_BSTR);
    EXPECT_EQ(calls[0].m_strValue, L"Lid opened");
}

TEST_F(PublicWMIEventSinkTest, Indicate_OneObject_WritesTheseRecords)
{
    Deliver(m_pWithParams, {{{"Description", "Lid opened"}}});
    EXPECT_THAT(LogLines(Indicate),
                ElementsAre(L"TraceIn|", L"Verbose|Event occured", L"Verbose|Event Name : OrvikBIOS_BIOSEvent",
                            L"Verbose|Event data/Description : Lid opened", L"TraceOut|hr: 0x00000000"));
}

TEST_F(PublicWMIEventSinkTest, Indicate_ReadsClassThenDescriptionAndNothingElse)
{
    Deliver(m_pWithParams, {{{"Description", "Lid opened"}, {"EventData", 7}}});
    EXPECT_EQ(Details("IWbemClassObject::Get", 1)["property"], "__Class");
    EXPECT_EQ(Details("IWbemClassObject::Get", 2)["property"], "Description");
    EXPECT_EQ(Calls().size(), 2u);
}

TEST_F(PublicWMIEventSinkTest, Indicate_Batch_EveryEntryIsReportedWithTheFirstOnesValues)
{
    Deliver(m_pWithParams, {{{"__Class", "First"}, {"Description", "one"}},
                            {{"__Class", "Second"}, {"Description", "two"}},
                            {{"__Class", "Third"}, {"Description", "three"}}});
    const auto calls = m_hub.Calls();
    ASSERT_EQ(calls.size(), 3u);
    for (const auto& call : calls)
    {
        EXPECT_EQ(call.m_strEventClass, L"First");
        EXPECT_EQ(call.m_strValue, L"one");
    }
    EXPECT_EQ(LogCount(Level::Verbose, Indicate, L"Event Name : First"), 3u);
    EXPECT_EQ(LogCount(Level::Verbose, Indicate, L"Event data/Description : one"), 3u);
}

TEST_F(PublicWMIEventSinkTest, Indicate_NoDescription_ReachesPlainOnly)
{
    EXPECT_EQ(Deliver(m_pWithParams, {nlohmann::json::object()}), WBEM_S_NO_ERROR);
    EXPECT_THAT(m_hub.Calls(), IsEmpty());
    Deliver(m_pPlain, {nlohmann::json::object()});
    EXPECT_EQ(m_hub.Calls().size(), 1u);
}

TEST_F(PublicWMIEventSinkTest, Indicate_ClassUnreadable_NameIsEmpty)
{
    Deliver(m_pWithParams, {{{"__Class", {{"hr", "0x80041001"}}}, {"Description", "text"}}});
    ASSERT_EQ(m_hub.Calls().size(), 1u);
    EXPECT_EQ(m_hub.Calls()[0].m_strEventClass, L"");
    EXPECT_THAT(LogLines(Indicate), ElementsAre(L"TraceIn|", L"Verbose|Event occured",
                                                L"Verbose|Event data/Description : text", L"TraceOut|hr: 0x00000000"));
}

TEST_F(PublicWMIEventSinkTest, Indicate_ClassOfAnotherType_IsConverted)
{
    Deliver(m_pWithParams, {{{"__Class", 42}, {"Description", "text"}}});
    ASSERT_EQ(m_hub.Calls().size(), 1u);
    EXPECT_EQ(m_hub.Calls()[0].m_strEventClass, L"42");
}

TEST_F(PublicWMIEventSinkTest, Indicate_ClassDoesNotConvert_RaisesTheConversionsCode)
{
    for (PublicWMIEventSink* sink : {m_pWithParams, m_pPlain})
    {
        StartWatching();
        EXPECT_EQ(RaisedBy(sink, {{"__Class", {{"unknown", true}}}, {"Description", "text"}}), DISP_E_TYPEMISMATCH);
        EXPECT_THAT(m_hub.Calls(), IsEmpty());
        EXPECT_THAT(LogLines(Indicate), ElementsAre(L"TraceIn|", L"Verbose|Event occured", L"TraceOut|"));
    }
}

TEST_F(PublicWMIEventSinkTest, Indicate_DescriptionDoesNotCopy_RaisesTheCopysCode)
{
    for (PublicWMIEventSink* sink : {m_pWithParams, m_pPlain})
    {
        StartWatching();
        EXPECT_EQ(RaisedBy(sink, {{"Description", {{"raw", {{"vt", 4242}, {"value", 7}}}}}}), DISP_E_BADVARTYPE);
        EXPECT_THAT(m_hub.Calls(), IsEmpty());
        EXPECT_THAT(LogLines(Indicate), ElementsAre(L"TraceIn|", L"Verbose|Event occured",
                                                    L"Verbose|Event Name : OrvikBIOS_BIOSEvent", L"TraceOut|"));
    }
}

TEST_F(PublicWMIEventSinkTest, Indicate_DescriptionOfAnotherType_IsHandedOnAndShownEmpty)
{
    Deliver(m_pWithParams, {{{"Description", {{"i4", 3}}}}});
    ASSERT_EQ(m_hub.Calls().size(), 1u);
    EXPECT_EQ(m_hub.Calls()[0].m_vt, VT_I4);
    EXPECT_EQ(m_hub.Calls()[0].m_nValue, 3);
    EXPECT_EQ(LogCount(Level::Verbose, Indicate, L"Event data/Description : "), 1u);
}

TEST_F(PublicWMIEventSinkTest, Indicate_NullDescriptionText_IsShownEmpty)
{
    Deliver(m_pWithParams, {{{"Description", {{"null-bstr", true}}}}});
    EXPECT_EQ(m_hub.Calls().size(), 1u);
    EXPECT_EQ(LogCount(Level::Verbose, Indicate, L"Event data/Description : "), 1u);
}

TEST_F(PublicWMIEventSinkTest, Indicate_LongDescription_RecordIsCutDataIsNot)
{
    const std::string text(10'000, 'x');
    Deliver(m_pWithParams, {{{"Description", text}}});
    ASSERT_EQ(m_hub.Calls().size(), 1u);
    EXPECT_EQ(m_hub.Calls()[0].m_strValue.size(), text.size());
    const auto records = TestSupport::LogRecords();
    EXPECT_TRUE(std::any_of(records.begin(), records.end(),
                            [](const auto& record)
                            {
                                return record.m_strMessage.starts_with(L"Event data/Description : xxx") &&
                                       record.m_strMessage.size() == 511;
                            }));
}

TEST_F(PublicWMIEventSinkTest, Indicate_NullEntry_CallsWithNothingAfterASuccess)
{
    EXPECT_EQ(Deliver(m_pWithParams, {{{"Description", "one"}}, nullptr}), WBEM_S_NO_ERROR);
    const auto calls = m_hub.Calls();
    ASSERT_EQ(calls.size(), 2u);
    EXPECT_EQ(calls[1].m_strEventClass, L"");
    EXPECT_EQ(calls[1].m_vt, VT_EMPTY);
    EXPECT_EQ(Simulator::CallPlan::Instance().CallCount("IWbemClassObject::Get"), 2u);
    EXPECT_EQ(LogCount(Level::Verbose, Indicate, L"Event occured"), 2u);
    EXPECT_EQ(TestSupport::OperationalLines().size(), 4u);
}

TEST_F(PublicWMIEventSinkTest, Indicate_NullEntryFirst_CountsAsSuccess)
{
    Deliver(m_pWithParams, {nullptr});
    ASSERT_EQ(m_hub.Calls().size(), 1u);
    EXPECT_EQ(m_hub.Calls()[0].m_vt, VT_EMPTY);
    EXPECT_FALSE(WasCalled("IWbemClassObject::Get"));
    EXPECT_THAT(LogLines(Indicate), ElementsAre(L"TraceIn|", L"Verbose|Event occured", L"TraceOut|hr: 0x00000000"));
}

TEST_F(PublicWMIEventSinkTest, Indicate_NullEntryAfterAFailure_KeepsTheFailure)
{
    Deliver(m_pWithParams, {nlohmann::json::object(), nullptr});
    EXPECT_THAT(m_hub.Calls(), IsEmpty());
}

TEST_F(PublicWMIEventSinkTest, Indicate_FirstEntryNull_LaterEntriesFailWithoutADereference)
{
    EXPECT_EQ(Deliver(m_pWithParams, {nullptr, {{"Description", "two"}}, nullptr}), WBEM_S_NO_ERROR);
    // The first null counts as a success; the second entry fails and the third keeps that.
    EXPECT_EQ(m_hub.Calls().size(), 1u);
    EXPECT_FALSE(WasCalled("IWbemClassObject::Get"));
    Deliver(m_pPlain, {nullptr, {{"Description", "two"}}});
    EXPECT_EQ(m_hub.Calls().size(), 3u);
}

TEST_F(PublicWMIEventSinkTest, Indicate_NullArray_IsAnArrayOfNulls)
{
    EXPECT_EQ(m_pWithParams->Indicate(2, nullptr), WBEM_S_NO_ERROR);
    EXPECT_EQ(m_hub.Calls().size(), 2u);
    StartWatching();
    for (const long count : {0L, -1L})
        EXPECT_EQ(m_pWithParams->Indicate(count, nullptr), WBEM_S_NO_ERROR);
    EXPECT_EQ(m_hub.Calls().size(), 2u);
    EXPECT_THAT(TestSupport::OperationalLines(), IsEmpty());
}

TEST_F(PublicWMIEventSinkTest, Indicate_NameCannotBeAllocated_RaisesOutOfMemory)
{
    for (const nlohmann::json& event : {nlohmann::json(), nlohmann::json{{"Description", "text"}}})
    {
        StartWatching();
        const Tests::FailingBstr noMemory(1);
        EXPECT_EQ(RaisedBy(m_pWithParams, event), E_OUTOFMEMORY);
        EXPECT_THAT(m_hub.Calls(), IsEmpty());
        EXPECT_FALSE(WasCalled("IWbemClassObject::Get"));
        EXPECT_THAT(LogLines(Indicate), ElementsAre(L"TraceIn|", L"Verbose|Event occured", L"TraceOut|"));
    }
}

TEST_F(PublicWMIEventSinkTest, Indicate_FreesNameAndValues)
{
    const TestSupport::BstrLedger ledger;
    Deliver(m_pWithParams, {{{"Description", "text"}}, nullptr, {{"Description", "text"}}});
    RaisedBy(m_pWithParams, {{"__Class", {{"unknown", true}}}});
    EXPECT_GE(ledger.Allocations(), 4u);
    EXPECT_THAT(ledger.LiveTexts(), IsEmpty());
}

TEST_F(PublicWMIEventSinkTest, SetStatus_LabelsZeroAndTwoAsComplete)
{
    for (const long flags : {0L, 2L, 3L})
        EXPECT_EQ(m_pPlain->SetStatus(flags, S_OK, nullptr, nullptr), WBEM_S_NO_ERROR);
    EXPECT_THAT(LogLines(SetStatus),
                ElementsAre(L"TraceIn|hResult: 0x00000000, lFlags: 0x00000000 (WBEM_STATUS_COMPLETE)",
                            L"TraceIn|hResult: 0x00000000, lFlags: 0x00000002 (WBEM_STATUS_COMPLETE)",
                            L"TraceIn|hResult: 0x00000000, lFlags: 0x00000003 (?)"));
}

TEST_F(PublicWMIEventSinkTest, References_AreCountedAndTheLastEndsTheSink)
{
    auto* sink = new PublicWMIEventSink(&m_hub, HubProbe::PlainHandler());
    void* object = sink;
    EXPECT_EQ(sink->QueryInterface(IID_IDispatch, &object), E_NOINTERFACE);
    EXPECT_EQ(object, sink);
    EXPECT_EQ(sink->QueryInterface(IID_IWbemObjectSink, &object), S_OK);
    EXPECT_EQ(sink->Release(), 1u);
    EXPECT_EQ(sink->Release(), 0u);
    EXPECT_THAT(LogLines(Destructor), ElementsAre(L"TraceIn|", L"TraceOut|"));
}
