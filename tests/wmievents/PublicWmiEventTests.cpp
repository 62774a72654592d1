#include "wmievents/PublicWmiEvent.h"

#include "shared/LogLevel.h"
#include "simulator/doubles/WmiEventSource.h"
#include "simulator/model/Facts.h"
#include "tests/support/LogCapture.h"
#include "tests/wmievents/MachineTest.h"

#include <gmock/gmock.h>

using Notifications::OrvikWmiEvents::FirstWord;
using Notifications::OrvikWmiEvents::PublicWmiEvent;
using Tests::Hr;
using Tests::HubProbe;
using TestSupport::Logged;
namespace Level = Orvik::Shared::Level;

namespace
{
constexpr const char* RegisterEvent = "Notifications::OrvikWmiEvents::PublicWmiEvent::RegisterEvent";
constexpr const char* Worker = "Notifications::OrvikWmiEvents::PublicWmiEvent::RegisterPublicWMIEvent";

class PublicWmiEventTest : public Tests::HubTest
{
protected:
    HRESULT Register(const CStringW& name) { return m_event.RegisterEvent(name, &m_hub, HubProbe::PublicHandler()); }

    // The query that a class name makes.
    std::string QueryOf(const CStringW& name)
    {
        StartWatching();
        static_cast<void>(Register(name));
        const std::string query = Details("IWbemServices::ExecNotificationQueryAsync")["query"];
        static_cast<void>(m_event.Unregister());
        return query;
    }

    PublicWmiEvent m_event;
};
} // namespace

TEST_F(PublicWmiEventTest, RegisterEvent_TracesTheNameAsANumber)
{
    const CStringW name = L"OrvikBIOS_BIOSEvent";
    ASSERT_EQ(Register(name), S_OK);
    wchar_t entry[128]{};
    const int number = static_cast<int>(reinterpret_cast<INT_PTR>(name.c_str()));
    _snwprintf(entry, 127, L"nEventName: %d, callback: %p", number, FirstWord(HubProbe::PublicHandler()));
    EXPECT_TRUE(Logged(Level::TraceIn, RegisterEvent, entry));
    EXPECT_TRUE(Logged(Level::TraceOut, RegisterEvent, L"hr: 0x00000000"));
    EXPECT_TRUE(Logged(Level::TraceIn, Worker, L"nEventName: " + std::to_wstring(number)));
}

TEST_F(PublicWmiEventTest, RegisterEvent_NullCallback_TracesZero)
{
    EXPECT_EQ(m_event.RegisterEvent(L"A", &m_hub, nullptr), E_INVALIDARG);
    const auto records = TestSupport::LogRecords();
    ASSERT_FALSE(records.empty());
    EXPECT_TRUE(records[0].m_strMessage.ends_with(L", callback: 0000000000000000"));
}

TEST_F(PublicWmiEventTest, Query_NameUpTo49Characters_IsWhole)
{
    const std::string name(49, 'N');
    EXPECT_EQ(QueryOf(std::wstring(name.begin(), name.end())), "SELECT * FROM " + name);
}

TEST_F(PublicWmiEventTest, Query_LongerName_IsCutAt63Characters)
{
    EXPECT_EQ(QueryOf(std::wstring(50, L'N')), "SELECT * FROM " + std::string(49, 'N'));
    EXPECT_EQ(QueryOf(std::wstring(500, L'N')), "SELECT * FROM " + std::string(49, 'N'));
}

TEST_F(PublicWmiEventTest, Query_PerCentSign_IsFormatted)
{
    EXPECT_EQ(QueryOf(L"Orvik%%Event"), "SELECT * FROM Orvik%Event");
}

TEST_F(PublicWmiEventTest, RegisterEvent_CutNameIsUnknownToWmi_Fails)
{
    const std::string name(60, 'N');
    Simulator::Facts::Instance().Set("/wmi/event-classes", {name});
    EXPECT_EQ(Register(std::wstring(name.begin(), name.end())), Hr(WBEM_E_INVALID_CLASS));
}

TEST_F(PublicWmiEventTest, RegisterEvent_CutNameIsAnotherClass_EventsOfThatClassArrive)
{
    const std::string full(60, 'N');
    const std::string cut(49, 'N');
    Simulator::Facts::Instance().Set("/wmi/event-classes", {cut, full});
    ASSERT_EQ(Register(std::wstring(full.begin(), full.end())), S_OK);
    Simulator::WmiEventSource::Raise(full, {{"Description", "full"}});
    EXPECT_TRUE(m_hub.Calls().empty());
    Simulator::WmiEventSource::Raise(cut, {{"Description", "cut"}});
    ASSERT_EQ(m_hub.Calls().size(), 1u);
    EXPECT_EQ(m_hub.Calls()[0].m_strEventClass, std::wstring(49, L'N'));
    EXPECT_EQ(m_hub.Calls()[0].m_strValue, L"cut");
}

TEST_F(PublicWmiEventTest, Delivery_CallsTheHubWithClassAndDescription)
{
    ASSERT_EQ(Register(L"OrvikBIOS_BIOSEvent"), S_OK);
    Simulator::WmiEventSource::Raise("OrvikBIOS_BIOSEvent", {{"Description", "Lid opened"}});
    Simulator::WmiEventSource::Raise("orvikBEvnt", {{"EventID", 3}});
    ASSERT_EQ(m_hub.Calls().size(), 1u);
    EXPECT_EQ(m_hub.Calls()[0].m_strEventClass, L"OrvikBIOS_BIOSEvent");
    EXPECT_EQ(m_hub.Calls()[0].m_strValue, L"Lid opened");
}
