#include "wmievents/WmiEvent.h"

#include "shared/LogLevel.h"
#include "simulator/doubles/WmiEventSource.h"
#include "tests/support/LogCapture.h"
#include "tests/wmievents/MachineTest.h"

#include <gmock/gmock.h>

#include <climits>

using Notifications::OrvikWmiEvents::FirstWord;
using Notifications::OrvikWmiEvents::WmiEvent;
using Simulator::WmiEventSource;
using testing::IsEmpty;
using Tests::HubProbe;
using TestSupport::Logged;
namespace Level = Orvik::Shared::Level;

namespace
{
constexpr const char* Register = "Notifications::OrvikWmiEvents::WmiEvent::Register";
constexpr const char* Worker = "Notifications::OrvikWmiEvents::WmiEvent::RegisterWMIEvent";

class WmiEventTest : public Tests::HubTest
{
protected:
    template <class MemberPointer>
    static std::wstring AsShown(MemberPointer pointer)
    {
        wchar_t text[32]{};
        _snwprintf(text, 31, L"%p", FirstWord(pointer));
        return text;
    }

    WmiEvent m_event;
};
} // namespace

TEST_F(WmiEventTest, Register_WithParams_TracesNumberAndCallback)
{
    ASSERT_EQ(m_event.Register(21, &m_hub, HubProbe::BiosHandler()), S_OK);
    EXPECT_TRUE(
        Logged(Level::TraceIn, Register, L"nEventID: 21, callbackWithParams: " + AsShown(HubProbe::BiosHandler())));
    EXPECT_TRUE(Logged(Level::TraceOut, Register, L"hr: 0x00000000"));
    EXPECT_TRUE(Logged(Level::TraceIn, Worker, L""));
}

TEST_F(WmiEventTest, Register_Plain_TracesNumberAndCallback)
{
    ASSERT_EQ(m_event.Register(3, &m_hub, HubProbe::PlainHandler()), S_OK);
    EXPECT_TRUE(Logged(Level::TraceIn, Register, L"nEventID: 3, callback: " + AsShown(HubProbe::PlainHandler())));
}

TEST_F(WmiEventTest, Register_NullPlain_IsRefusedWithoutAnyCall)
{
    EXPECT_EQ(m_event.Register(3, &m_hub, HubProbe::Plain(nullptr)), E_INVALIDARG);
    EXPECT_TRUE(Logged(Level::TraceIn, Register, L"nEventID: 3, callback: 0000000000000000"));
    EXPECT_TRUE(Logged(Level::Information, Register, L"Callback function is null"));
    EXPECT_THAT(Calls(), IsEmpty());
}

TEST_F(WmiEventTest, Register_PlainWithoutOwner_IsRefused)
{
    EXPECT_EQ(m_event.Register(3, nullptr, HubProbe::PlainHandler()), E_FAIL);
    EXPECT_TRUE(Logged(Level::Information, Worker, L"There is no callback function; register not done."));
    EXPECT_TRUE(Logged(Level::TraceOut, Worker, L"hr: 0x80004005"));
    EXPECT_THAT(Calls(), IsEmpty());
}

TEST_F(WmiEventTest, Register_AnyNumber_IsWrittenAsSignedDecimal)
{
    for (const auto& [number, query] : {std::pair{131074, "SELECT * FROM orvikBEvnt WHERE EventID = 131074"},
                                        std::pair{INT_MIN, "SELECT * FROM orvikBEvnt WHERE EventID = -2147483648"}})
    {
        StartWatching();
        ASSERT_EQ(m_event.Register(number, &m_hub, HubProbe::BiosHandler()), S_OK);
        EXPECT_EQ(Details("IWbemServices::ExecNotificationQueryAsync")["query"], query);
        EXPECT_EQ(m_event.Unregister(), S_OK);
    }
}

TEST_F(WmiEventTest, Delivery_Plain_CallsTheHub)
{
    ASSERT_EQ(m_event.Register(3, &m_hub, HubProbe::PlainHandler()), S_OK);
    EXPECT_THAT(WmiEventSource::Raise("orvikBEvnt", {{"EventID", 3}}), testing::ElementsAre(S_OK));
    ASSERT_EQ(m_hub.Calls().size(), 1u);
    EXPECT_EQ(m_hub.Calls()[0].m_strHandler, "plain");
}

TEST_F(WmiEventTest, Delivery_WithParams_CallsTheHubWithIdAndData)
{
    ASSERT_EQ(m_event.Register(21, &m_hub, HubProbe::BiosHandler()), S_OK);
    WmiEventSource::Raise("orvikBEvnt", {{"EventID", 21}, {"EventData", 5}});
    WmiEventSource::Raise("orvikBEvnt", {{"EventID", 20}, {"EventData", 6}});
    ASSERT_EQ(m_hub.Calls().size(), 1u);
    EXPECT_EQ(m_hub.Calls()[0].m_nEventId, 21);
    EXPECT_EQ(m_hub.Calls()[0].m_nValue, 5);
}

TEST_F(WmiEventTest, Register_OtherFormAfterAFailure_ReplacesTheFirstCallback)
{
    Simulator::CallPlan::Instance().Fail("CoCreateInstance", E_FAIL);
    ASSERT_EQ(m_event.Register(3, &m_hub, HubProbe::PlainHandler()), E_FAIL);
    ASSERT_EQ(m_event.Register(21, &m_hub, HubProbe::BiosHandler()), S_OK);
    WmiEventSource::Raise("orvikBEvnt", {{"EventID", 21}, {"EventData", 5}});
    ASSERT_EQ(m_hub.Calls().size(), 1u);
    EXPECT_EQ(m_hub.Calls()[0].m_strHandler, "bios");
}
