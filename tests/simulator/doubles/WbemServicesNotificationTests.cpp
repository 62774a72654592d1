#include "simulator/doubles/WbemServicesDouble.h"

#include "simulator/doubles/RealFunctions.h"
#include "simulator/doubles/WmiDelivery.h"
#include "simulator/doubles/WmiEventSource.h"
#include "simulator/doubles/WmiStatus.h"
#include "tests/simulator/doubles/DoublesTest.h"
#include "tests/simulator/doubles/RecordingSink.h"

namespace Simulator
{
namespace
{
using testing::ElementsAre;
using testing::IsEmpty;

constexpr wchar_t AdapterQuery[] = L"SELECT * FROM orvikBEvnt WHERE EventID = 3";

class WbemServicesNotificationTest : public DoublesTest
{
protected:
    HRESULT Subscribe(const wchar_t* query = AdapterQuery, const wchar_t* language = L"WQL")
    {
        return m_spServices->ExecNotificationQueryAsync(_bstr_t(language), _bstr_t(query), WBEM_FLAG_SEND_STATUS,
                                                        nullptr, &m_sink);
    }

    RecordingSink m_sink;
    IWbemServicesPtr m_spServices = Connect();
};

TEST_F(WbemServicesNotificationTest, Subscription_IsJournalledAndHoldsTheSink)
{
    ASSERT_EQ(Subscribe(), S_OK);
    EXPECT_EQ(m_sink.References(), 2u);
    EXPECT_EQ(WmiEventSource::SubscriptionCount(), 1u);
    EXPECT_EQ(LastDetails("call", "IWbemServices::ExecNotificationQueryAsync"),
              nlohmann::json({{"language", "WQL"},
                              {"query", "SELECT * FROM orvikBEvnt WHERE EventID = 3"},
                              {"flags", 128},
                              {"context", false},
                              {"apartment", "sta"}}));
    EXPECT_EQ(LastDetails("wmi", "subscribed"),
              nlohmann::json({{"namespace", "root\\wmi"}, {"class", "orvikBEvnt"}, {"event-id", 3}}));
}

TEST_F(WbemServicesNotificationTest, Subscription_IsRefusedForWhatIsWrongWithIt)
{
    EXPECT_EQ(Subscribe(L"SELECT * FROM orvikBEvnt WHERE EventID ="), Status(WBEM_E_INVALID_QUERY));
    EXPECT_EQ(Subscribe(AdapterQuery, L"SQL"), Status(WBEM_E_INVALID_QUERY_TYPE));
    EXPECT_EQ(m_spServices->ExecNotificationQueryAsync(_bstr_t(L"WQL"), _bstr_t(AdapterQuery), 0, nullptr, nullptr),
              Status(WBEM_E_INVALID_PARAMETER));
    Facts::Instance().Set("/wmi/event-classes", {"OrvikBIOS_BIOSEvent"});
    EXPECT_EQ(Subscribe(), Status(WBEM_E_INVALID_CLASS));
    EXPECT_EQ(Subscribe(L"SELECT * FROM orvikbios_biosevent"), S_OK);
    EXPECT_EQ(m_sink.References(), 2u);
}

TEST_F(WbemServicesNotificationTest, Subscription_FailsByPlanAndHoldsNothing)
{
    CallPlan::Instance().Fail("IWbemServices::ExecNotificationQueryAsync", PlannedFailure);
    EXPECT_EQ(Subscribe(), PlannedFailure);
    EXPECT_EQ(m_sink.References(), 1u);
    EXPECT_EQ(WmiEventSource::SubscriptionCount(), 0u);
}

TEST_F(WbemServicesNotificationTest, Cancel_EndsTheQueryAndTellsTheSink)
{
    ASSERT_EQ(Subscribe(), S_OK);
    EXPECT_EQ(m_spServices->CancelAsyncCall(&m_sink), S_OK);
    EXPECT_EQ(m_sink.References(), 1u);
    EXPECT_THAT(m_sink.Statuses(), ElementsAre("0:0x80041032"));
    EXPECT_THAT(WmiEventSource::Raise("orvikBEvnt", {{"EventID", 3}}), IsEmpty());
    EXPECT_THAT(Journal::Instance().Subjects("wmi"), ElementsAre("subscribed", "cancelled", "status", "raised"));
}

TEST_F(WbemServicesNotificationTest, Cancel_MayTellTheSinkLaterOrNever)
{
    Facts::Instance().Set("/wmi/status-after-cancel", "later");
    ASSERT_EQ(Subscribe(), S_OK);
    EXPECT_EQ(m_spServices->CancelAsyncCall(&m_sink), S_OK);
    EXPECT_EQ(m_sink.References(), 2u);
    FinishLateStatusCalls();
    EXPECT_EQ(m_sink.References(), 1u);
    EXPECT_THAT(m_sink.Statuses(), ElementsAre("0:0x80041032"));

    Facts::Instance().Set("/wmi/status-after-cancel", "never");
    ASSERT_EQ(Subscribe(), S_OK);
    EXPECT_EQ(m_spServices->CancelAsyncCall(&m_sink), S_OK);
    EXPECT_EQ(m_sink.References(), 1u);
    EXPECT_EQ(m_sink.Statuses().size(), 1u);
}

TEST_F(WbemServicesNotificationTest, Cancel_OfAnotherSinkOrConnectionIsNotFound)
{
    ASSERT_EQ(Subscribe(), S_OK);
    RecordingSink other;
    EXPECT_EQ(m_spServices->CancelAsyncCall(&other), Status(WBEM_E_NOT_FOUND));
    EXPECT_EQ(Connect()->CancelAsyncCall(&m_sink), Status(WBEM_E_NOT_FOUND));
    EXPECT_EQ(m_spServices->CancelAsyncCall(nullptr), Status(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(WmiEventSource::SubscriptionCount(), 1u);
}

TEST_F(WbemServicesNotificationTest, Cancel_FailsByPlanAndTheQueryRunsOn)
{
    ASSERT_EQ(Subscribe(), S_OK);
    CallPlan::Instance().Fail("IWbemServices::CancelAsyncCall", PlannedFailure);
    EXPECT_EQ(m_spServices->CancelAsyncCall(&m_sink), PlannedFailure);
    EXPECT_THAT(WmiEventSource::Raise("orvikBEvnt", {{"EventID", 3}}), ElementsAre(S_OK));
}

TEST_F(WbemServicesNotificationTest, Connection_TakesItsQueriesAlong)
{
    ASSERT_EQ(Subscribe(), S_OK);
    m_spServices = nullptr;
    EXPECT_EQ(m_sink.References(), 1u);
    EXPECT_EQ(WmiEventSource::SubscriptionCount(), 0u);
    EXPECT_EQ(LastDetails("wmi", "lost"), nlohmann::json({{"namespace", "root\\wmi"}, {"class", "orvikBEvnt"}}));
    EXPECT_THAT(m_sink.Statuses(), IsEmpty());
}

TEST_F(WbemServicesNotificationTest, Blanket_ReachesTheServicesThroughCom)
{
    EXPECT_EQ(RealFunctions::Instance().CoSetProxyBlanket(m_spServices, RPC_C_AUTHN_WINNT, RPC_C_AUTHZ_NONE, nullptr,
                                                          RPC_C_AUTHN_LEVEL_CONNECT, RPC_C_IMP_LEVEL_IMPERSONATE,
                                                          nullptr, EOAC_NONE),
              S_OK);
    EXPECT_EQ(LastDetails("com", "IClientSecurity::SetBlanket"), nlohmann::json({{"authentication", 10},
                                                                                 {"authorisation", 0},
                                                                                 {"principal", nullptr},
                                                                                 {"authentication-level", 2},
                                                                                 {"impersonation-level", 3},
                                                                                 {"identity", false},
                                                                                 {"capabilities", 0}}));
    CallPlan::Instance().Fail("IClientSecurity::SetBlanket", PlannedFailure);
    EXPECT_EQ(RealFunctions::Instance().CoSetProxyBlanket(m_spServices, 10, 0, nullptr, 0, 3, nullptr, 0),
              PlannedFailure);
}
} // namespace
} // namespace Simulator
