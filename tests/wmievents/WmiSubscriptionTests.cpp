#include "wmievents/WmiSubscription.h"

#include "shared/LogLevel.h"
#include "simulator/doubles/JournalText.h"
#include "simulator/doubles/ObjectIdentity.h"
#include "simulator/model/Facts.h"
#include "simulator/model/LiveObjects.h"
#include "tests/support/BstrLedger.h"
#include "tests/support/LogCapture.h"
#include "tests/wmievents/SubscriptionKinds.h"

#include <gmock/gmock.h>

using Simulator::LiveObjects;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::Logged;
using TestSupport::LogLines;
namespace Level = Orvik::Shared::Level;

namespace Tests
{
TYPED_TEST_SUITE(SubscriptionTest, SubscriptionKinds);

TYPED_TEST(SubscriptionTest, Register_CallsInThisOrder)
{
    ASSERT_EQ(this->Register(), S_OK);
    EXPECT_THAT(this->Calls(), ElementsAre("CoCreateInstance", "IWbemLocator::ConnectServer", "CoSetProxyBlanket",
                                           "CoInitializeEx", // the thread that keeps the multithreaded apartment
                                           "CoCreateInstance", "IUnsecuredApartment::CreateObjectStub",
                                           "CoMarshalInterThreadInterfaceInStream", "CoGetInterfaceAndReleaseStream",
                                           "IWbemServices::ExecNotificationQueryAsync"));
}

TYPED_TEST(SubscriptionTest, Register_Locator_InProcess)
{
    ASSERT_EQ(this->Register(), S_OK);
    const auto details = this->Details("CoCreateInstance", 1);
    EXPECT_EQ(details["clsid"], "{4590F811-1D3A-11D0-891F-00AA004B2E24}");
    EXPECT_EQ(details["iid"], "{DC12A687-737F-11CF-884D-00AA004B2E24}");
    EXPECT_EQ(details["context"], CLSCTX_INPROC_SERVER);
    EXPECT_EQ(details["aggregated"], false);
    EXPECT_EQ(details["apartment"], "sta");
}

TYPED_TEST(SubscriptionTest, Register_Connection_ToRootWmiWithNothingElse)
{
    ASSERT_EQ(this->Register(), S_OK);
    const auto details = this->Details("IWbemLocator::ConnectServer");
    EXPECT_EQ(details["namespace"], "ROOT\\WMI");
    for (const char* absent : {"user", "password", "locale", "authority"})
        EXPECT_TRUE(details.at(absent).is_null()) << absent;
    EXPECT_EQ(details["flags"], 0);
    EXPECT_EQ(details["context"], false);
}

TYPED_TEST(SubscriptionTest, Register_Blanket_LevelIsConnect)
{
    ASSERT_EQ(this->Register(), S_OK);
    const auto details = this->Details("CoSetProxyBlanket");
    EXPECT_EQ(details["authentication"], RPC_C_AUTHN_WINNT);
    EXPECT_EQ(details["authorisation"], RPC_C_AUTHZ_NONE);
    EXPECT_TRUE(details.at("principal").is_null());
    EXPECT_EQ(details["authentication-level"], 2);
    EXPECT_EQ(details["impersonation-level"], RPC_C_IMP_LEVEL_IMPERSONATE);
    EXPECT_EQ(details["identity"], false);
    EXPECT_EQ(details["capabilities"], 0);
}

TYPED_TEST(SubscriptionTest, Register_StubIsMadeInTheMultithreadedApartment)
{
    ASSERT_EQ(this->Register(), S_OK);
    const auto apartment = this->Details("CoCreateInstance", 2);
    EXPECT_EQ(apartment["clsid"], "{49BD2028-1523-11D1-AD79-00C04FD8FDFF}");
    EXPECT_EQ(apartment["iid"], "{1CFABA8C-1523-11D1-AD79-00C04FD8FDFF}");
    EXPECT_EQ(apartment["context"], CLSCTX_LOCAL_SERVER);
    EXPECT_EQ(apartment["apartment"], "mta");
    EXPECT_EQ(this->Details("IUnsecuredApartment::CreateObjectStub")["apartment"], "mta");
    EXPECT_EQ(this->Details("IUnsecuredApartment::CreateObjectStub")["object"], true);
    EXPECT_EQ(this->Details("CoMarshalInterThreadInterfaceInStream")["apartment"], "mta");
    EXPECT_EQ(this->Details("CoGetInterfaceAndReleaseStream")["apartment"], "sta");
}

TYPED_TEST(SubscriptionTest, Register_Query_IsSentFromTheRegisteringThread)
{
    ASSERT_EQ(this->Register(), S_OK);
    const auto details = this->Details("IWbemServices::ExecNotificationQueryAsync");
    EXPECT_EQ(details["language"], "WQL");
    EXPECT_EQ(details["query"], TypeParam::Query);
    EXPECT_EQ(details["flags"], WBEM_FLAG_SEND_STATUS);
    EXPECT_EQ(details["context"], false);
    EXPECT_EQ(details["apartment"], "sta");
}

TYPED_TEST(SubscriptionTest, Register_WorkersRecords_OnTheRegisteringThread)
{
    ASSERT_EQ(this->Register(), S_OK);
    auto lines = LogLines(TypeParam::Worker);
    ASSERT_FALSE(lines.empty());
    EXPECT_TRUE(lines.front().starts_with(L"TraceIn|"));
    lines.erase(lines.begin());
    EXPECT_THAT(lines, ElementsAre(L"Verbose|CoCreateInstance(IID_IWbemLocator) succeeded",
                                   L"Verbose|ConnectServer succeeded", L"Verbose|CoSetProxyBlanket succeeded",
                                   L"Verbose|CoCreateInstance(IID_IUnsecuredApartment) succeeded",
                                   L"Verbose|CreateObjectStub succeeded",
                                   L"Verbose|ExecNotificationQueryAsync succeeded", L"TraceOut|hr: 0x00000000"));
    for (const auto& record : TestSupport::LogRecords())
        EXPECT_EQ(record.m_dwThreadId, GetCurrentThreadId()) << record;
}

TYPED_TEST(SubscriptionTest, Register_ReleasesSinkThenStubThenApartmentThenLocator)
{
    Simulator::Facts::Instance().Set("/doubles/probe-sink", true);
    ASSERT_EQ(this->Register(), S_OK);
    EXPECT_THAT(Simulator::OrderOfLastReleases({"WbemLocator", "UnsecuredApartment", "UnsecuredApartmentStub"}),
                ElementsAre("UnsecuredApartmentStub", "UnsecuredApartment", "WbemLocator"));
    nlohmann::json last;
    for (const auto& entry : Simulator::Journal::Instance().Entries())
    {
        if (entry.m_strSubject == "UnsecuredApartmentStub::Release")
            last = entry.m_details;
    }
    // The creation reference and the stub's own: the local pointer had been given back before.
    EXPECT_EQ(last["sink-count"], 2);
    EXPECT_EQ(LiveObjects::Count("UnsecuredApartment"), 0);
    EXPECT_EQ(LiveObjects::Count("WbemLocator"), 0);
}

TYPED_TEST(SubscriptionTest, Register_FreesItsTexts)
{
    const TestSupport::BstrLedger ledger;
    ASSERT_EQ(this->Register(), S_OK);
    EXPECT_EQ(this->m_subscription.Unregister(), S_OK);
    EXPECT_EQ(ledger.Allocations(), 3u);
    EXPECT_THAT(ledger.LiveTexts(), IsEmpty());
}

TYPED_TEST(SubscriptionTest, Register_NullCallback_IsRefusedWithoutAnyCall)
{
    EXPECT_EQ(TypeParam::RegisterNull(this->m_subscription, &this->m_hub), E_INVALIDARG);
    EXPECT_THAT(this->Calls(), IsEmpty());
    const auto records = TestSupport::LogRecords();
    ASSERT_EQ(records.size(), 3u);
    EXPECT_EQ(records[1].m_nLevel, Level::Information);
    EXPECT_EQ(records[1].m_strMessage, L"Callback function is null");
    EXPECT_EQ(records[2].m_strMessage, L"hr: 0x80070057");
    // Nothing changed: the object can still be registered.
    EXPECT_EQ(this->Register(), S_OK);
}

TYPED_TEST(SubscriptionTest, Register_Twice_SecondIsRefused)
{
    ASSERT_EQ(this->Register(), S_OK);
    this->StartWatching();
    EXPECT_EQ(this->Register(), E_FAIL);
    EXPECT_TRUE(Logged(Level::Information, TypeParam::Worker, L"IWbemServices object already created."));
    EXPECT_TRUE(Logged(Level::TraceOut, TypeParam::Worker, L"hr: 0x80004005"));
    EXPECT_THAT(this->Calls(), IsEmpty());
}

TYPED_TEST(SubscriptionTest, Register_NullOwner_StubIsAskedForNothing)
{
    EXPECT_EQ(TypeParam::Register(this->m_subscription, nullptr), E_POINTER);
    EXPECT_EQ(this->Details("IUnsecuredApartment::CreateObjectStub")["object"], false);
    EXPECT_TRUE(Logged(Level::Information, TypeParam::Worker, L"CreateObjectStub failed: 0x80004003"));
}

TYPED_TEST(SubscriptionTest, Unregister_NeverRegistered_NoCallAndZero)
{
    EXPECT_EQ(this->m_subscription.Unregister(), S_OK);
    EXPECT_THAT(this->Calls(), IsEmpty());
    EXPECT_THAT(LogLines(TypeParam::Unregister),
                ElementsAre(L"TraceIn|m_pWbemSvcs: 0000000000000000, m_pWbemObjSink: 0000000000000000",
                            L"TraceOut|hr: 0x00000000"));
}

TYPED_TEST(SubscriptionTest, Unregister_Registered_CancelsThenReleasesSinkThenConnection)
{
    ASSERT_EQ(this->Register(), S_OK);
    this->StartWatching();
    EXPECT_EQ(this->m_subscription.Unregister(), S_OK);
    EXPECT_THAT(this->Calls(), ElementsAre("IWbemServices::CancelAsyncCall"));
    EXPECT_THAT(Simulator::OrderOfLastReleases({"WbemServices", "UnsecuredApartmentStub"}),
                ElementsAre("UnsecuredApartmentStub", "WbemServices"));
    EXPECT_THAT(LiveObjects::All(), IsEmpty());
    const auto lines = LogLines(TypeParam::Unregister);
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0].find(L"0000000000000000"), std::wstring::npos);
    EXPECT_EQ(lines[1], L"Verbose|CancelAsyncCall returned: 0x00000000");
    EXPECT_EQ(lines[2], L"TraceOut|hr: 0x00000000");
}

TYPED_TEST(SubscriptionTest, Unregister_CancelFails_ReleasesAllTheSameAndReturnsTheCode)
{
    ASSERT_EQ(this->Register(), S_OK);
    Simulator::CallPlan::Instance().Fail("IWbemServices::CancelAsyncCall", Hr(WBEM_E_FAILED));
    EXPECT_EQ(this->m_subscription.Unregister(), Hr(WBEM_E_FAILED));
    EXPECT_TRUE(Logged(Level::Verbose, TypeParam::Unregister, L"CancelAsyncCall returned: 0x80041001"));
    EXPECT_THAT(LiveObjects::All(), IsEmpty());
    EXPECT_EQ(this->m_subscription.Unregister(), S_OK);
}

TYPED_TEST(SubscriptionTest, Unregister_SinkIsNeverDestroyed)
{
    ASSERT_EQ(this->Register(), S_OK);
    ASSERT_EQ(this->m_subscription.Unregister(), S_OK);
    EXPECT_THAT(LiveObjects::All(), IsEmpty());
    const std::string name = TypeParam::Sink;
    EXPECT_THAT(LogLines(name + "::~" + name.substr(name.rfind(':') + 1)), IsEmpty());
}

TYPED_TEST(SubscriptionTest, Unregister_ThenRegister_Works)
{
    ASSERT_EQ(this->Register(), S_OK);
    ASSERT_EQ(this->m_subscription.Unregister(), S_OK);
    EXPECT_EQ(this->Register(), S_OK);
}

TYPED_TEST(SubscriptionTest, Destructor_OnlyTraces)
{
    {
        typename TypeParam::Subscription subscription;
        ASSERT_EQ(TypeParam::Register(subscription, &this->m_hub), S_OK);
        this->StartWatching();
    }
    EXPECT_THAT(this->Calls(), IsEmpty());
    EXPECT_THAT(Simulator::Journal::Instance().Subjects("reference"), IsEmpty());
    const std::string name = TypeParam::Class;
    EXPECT_THAT(LogLines(name + "::~" + name.substr(name.rfind(':') + 1)), ElementsAre(L"TraceIn|", L"TraceOut|"));
}
} // namespace Tests
