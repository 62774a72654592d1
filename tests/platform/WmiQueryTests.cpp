#include "platform/WmiQuery.h"

#include "platform/WmiNamespace.h"
#include "simulator/doubles/ObjectIdentity.h"
#include "simulator/model/CallPlan.h"
#include "simulator/model/Facts.h"
#include "simulator/model/LiveObjects.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/platform/PlatformMachine.h"
#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>

using Simulator::CallPlan;
using Simulator::Facts;
using Simulator::LiveObjects;
using testing::ElementsAre;

namespace
{
constexpr HRESULT g_hrPlanned = static_cast<HRESULT>(0x80041234);
constexpr HRESULT g_hrNotInitialized = static_cast<HRESULT>(0x80041014);
constexpr const wchar_t* g_pszVersions = L"select Version from Win32_OperatingSystem";

// Connections, queries and steps; the apartment of the thread is the query's own here.
class WmiQueryTest : public PlatformMachine
{
protected:
    static const wchar_t* Cimv2() { return NamespacePath(WmiNamespace::Cimv2); }
};
} // namespace

TEST_F(WmiQueryTest, Construct_Always_InitialisesComSecurityAndConnectionInThisOrder)
{
    const WmiQuery query(Cimv2());
    EXPECT_THAT(Calls(), ElementsAre("CoInitializeEx", "CoInitializeSecurity", "CoCreateInstance",
                                     "IWbemLocator::ConnectServer", "CoSetProxyBlanket"));
    EXPECT_EQ(CallDetails("CoInitializeEx"), nlohmann::json({{"reserved", false}, {"flags", 10}}));
    EXPECT_EQ(CallDetails("CoInitializeSecurity"), nlohmann::json({{"descriptor", false},
                                                                   {"services", -1},
                                                                   {"list", false},
                                                                   {"authentication-level", 0},
                                                                   {"impersonation-level", 3},
                                                                   {"identities", false},
                                                                   {"capabilities", 0},
                                                                   {"reserved", false}}));
}

TEST_F(WmiQueryTest, Construct_Always_ConnectsWithFixedParameters)
{
    const WmiQuery query(Cimv2());
    const nlohmann::json creation = CallDetails("CoCreateInstance");
    EXPECT_EQ(creation["clsid"], "{4590F811-1D3A-11D0-891F-00AA004B2E24}");
    EXPECT_EQ(creation["iid"], "{DC12A687-737F-11CF-884D-00AA004B2E24}");
    EXPECT_EQ(creation["context"], 1);
    EXPECT_EQ(CallDetails("IWbemLocator::ConnectServer"), nlohmann::json({{"namespace", "\\\\.\\root\\cimv2"},
                                                                          {"user", nullptr},
                                                                          {"password", nullptr},
                                                                          {"locale", nullptr},
                                                                          {"flags", 128},
                                                                          {"authority", nullptr},
                                                                          {"context", false}}));
    EXPECT_EQ(CallDetails("CoSetProxyBlanket"), nlohmann::json({{"authentication", 10},
                                                                {"authorisation", 0},
                                                                {"principal", nullptr},
                                                                {"authentication-level", 0},
                                                                {"impersonation-level", 3},
                                                                {"identity", false},
                                                                {"capabilities", 0}}));
    EXPECT_EQ(LiveObjects::Count("WbemLocator"), 0);
}

TEST_F(WmiQueryTest, Construct_ComRefused_ConnectsAllTheSameAndDoesNotLeaveCom)
{
    CallPlan::Instance().Fail("CoInitializeEx", RPC_E_CHANGED_MODE);
    {
        WmiQuery query(Cimv2());
        EXPECT_EQ(query.Query(g_pszVersions, 0x30), WBEM_S_NO_ERROR);
    }
    EXPECT_THAT(Calls(), testing::Not(testing::Contains("CoInitializeSecurity")));
    EXPECT_THAT(Calls(), testing::Not(testing::Contains("CoUninitialize")));
}

TEST_F(WmiQueryTest, Construct_SecurityRefused_IsIgnored)
{
    CallPlan::Instance().Fail("CoInitializeSecurity", RPC_E_TOO_LATE);
    WmiQuery query(Cimv2());
    EXPECT_EQ(query.Query(g_pszVersions, 0x30), WBEM_S_NO_ERROR);
}

TEST_F(WmiQueryTest, Construct_NoMemoryForPath_LeavesQueryUnconnected)
{
    const Simulator::Redirection<decltype(SysAllocString)> noMemory("SysAllocString", &AllocateNoBstr);
    WmiQuery query(Cimv2());
    EXPECT_EQ(query.Query(g_pszVersions, 0x30), g_hrNotInitialized);
    EXPECT_EQ(LiveObjects::Count(), 0);
}

TEST_F(WmiQueryTest, Destruction_Always_ReleasesEnumeratorObjectServicesThenLeavesCom)
{
    {
        WmiQuery query(Cimv2());
        ASSERT_EQ(query.Query(g_pszVersions, 0x30), WBEM_S_NO_ERROR);
        StartJournal();
    }
    EXPECT_THAT(CallsAndReferences(), ElementsAre("EnumWbemClassObject::Release", "WbemClassObject::Release",
                                                  "WbemServices::Release", "CoUninitialize"));
}

TEST_F(WmiQueryTest, Connect_AStepFails_GivesItsCodeAndHoldsNoServices)
{
    for (const char* step : {"CoCreateInstance", "IWbemLocator::ConnectServer", "CoSetProxyBlanket"})
    {
        CallPlan::Instance().Reset();
        WmiQuery query(Cimv2());
        CallPlan::Instance().Fail(step, g_hrPlanned);
        EXPECT_EQ(query.Connect(Cimv2()), g_hrPlanned) << step;
        EXPECT_EQ(LiveObjects::Count(), 0) << step;
        EXPECT_EQ(query.Query(g_pszVersions, 0x30), g_hrNotInitialized) << step;
    }
}

TEST_F(WmiQueryTest, Connect_AfterFailure_Works)
{
    CallPlan::Instance().Fail("IWbemLocator::ConnectServer", g_hrPlanned);
    WmiQuery query(Cimv2());
    EXPECT_EQ(query.Query(g_pszVersions, 0x30), g_hrNotInitialized);
    EXPECT_EQ(query.Connect(Cimv2()), S_OK);
    EXPECT_EQ(query.Query(g_pszVersions, 0x30), WBEM_S_NO_ERROR);
}

TEST_F(WmiQueryTest, Connect_Again_ReleasesServicesFirst)
{
    WmiQuery query(Cimv2());
    StartJournal();
    EXPECT_EQ(query.Connect(NamespacePath(WmiNamespace::Wmi)), S_OK);
    EXPECT_THAT(CallsAndReferences(), testing::Contains("WbemServices::Release"));
    EXPECT_EQ(CallsAndReferences().front(), "WbemServices::Release");
    EXPECT_EQ(LiveObjects::Count("WbemServices"), 1);
    EXPECT_EQ(CallDetails("IWbemLocator::ConnectServer")["namespace"], "\\\\.\\root\\wmi");
}

TEST_F(WmiQueryTest, Connect_UnknownNamespace_GivesWmisCode)
{
    WmiQuery query(Cimv2());
    EXPECT_EQ(query.Connect(L"\\\\.\\root\\nowhere"), static_cast<HRESULT>(WBEM_E_INVALID_NAMESPACE));
}

TEST_F(WmiQueryTest, Connect_NoMemoryForPath_RaisesOutOfMemoryAndHoldsNothing)
{
    WmiQuery query(Cimv2());
    const Simulator::Redirection<decltype(SysAllocString)> noMemory("SysAllocString", &AllocateNoBstr);
    try
    {
        (void)query.Connect(Cimv2());
        FAIL() << "nothing was raised";
    }
    catch (const _com_error& error)
    {
        EXPECT_EQ(error.Error(), E_OUTOFMEMORY);
    }
    EXPECT_EQ(LiveObjects::Count(), 0);
}

TEST_F(WmiQueryTest, Query_WithoutConnection_CallsNothing)
{
    const auto expectNoCalls = [](WmiQuery& query, const char* reason)
    {
        StartJournal();
        EXPECT_EQ(query.Query(g_pszVersions, 0x30), g_hrNotInitialized) << reason;
        EXPECT_TRUE(CallsAndReferences().empty()) << reason;
    };
    for (const char* step : {"CoCreateInstance", "IWbemLocator::ConnectServer", "CoSetProxyBlanket"})
    {
        CallPlan::Instance().Reset();
        CallPlan::Instance().Fail(step, g_hrPlanned);
        WmiQuery query(Cimv2());
        expectNoCalls(query, step);
    }
    WmiQuery unknown(L"\\\\.\\root\\nowhere");
    expectNoCalls(unknown, "unknown namespace");
    Facts::Instance().Set("/wmi/registered", false);
    WmiQuery unregistered(Cimv2());
    expectNoCalls(unregistered, "not registered");
}

TEST_F(WmiQueryTest, Query_Always_AsksInWqlAndGoesToFirstObject)
{
    WmiQuery query(Cimv2());
    StartJournal();
    EXPECT_EQ(query.Query(g_pszVersions, 0x30), WBEM_S_NO_ERROR);
    EXPECT_THAT(Calls(), ElementsAre("IWbemServices::ExecQuery", "IEnumWbemClassObject::Next"));
    const nlohmann::json details = CallDetails("IWbemServices::ExecQuery");
    EXPECT_EQ(details["language"], "WQL");
    EXPECT_EQ(details["query"], "select Version from Win32_OperatingSystem");
    EXPECT_EQ(details["flags"], 0x30);
    EXPECT_EQ(details["context"], false);
    EXPECT_EQ(CallDetails("IEnumWbemClassObject::Next"), nlohmann::json({{"timeout", 20000}, {"count", 1}}));
}

TEST_F(WmiQueryTest, Query_Refused_GivesWmisCodeAndHoldsNoEnumerator)
{
    WmiQuery query(Cimv2());
    ASSERT_EQ(query.Query(g_pszVersions, 0x30), WBEM_S_NO_ERROR);
    CallPlan::Instance().Fail("IWbemServices::ExecQuery", g_hrPlanned);
    EXPECT_EQ(query.Query(g_pszVersions, 0x30), g_hrPlanned);
    EXPECT_EQ(LiveObjects::Count("EnumWbemClassObject"), 0);
    EXPECT_EQ(query.Next(), static_cast<HRESULT>(WBEM_E_INVALID_CLASS));
}

TEST_F(WmiQueryTest, Query_NoMemoryForText_GivesOutOfMemory)
{
    WmiQuery query(Cimv2());
    const Simulator::Redirection<decltype(SysAllocString)> noMemory("SysAllocString", &AllocateNoBstr);
    EXPECT_EQ(query.Query(g_pszVersions, 0x30), E_OUTOFMEMORY);
}

TEST_F(WmiQueryTest, Query_Again_ReleasesEnumeratorFirst)
{
    WmiQuery query(Cimv2());
    ASSERT_EQ(query.Query(g_pszVersions, 0x30), WBEM_S_NO_ERROR);
    StartJournal();
    ASSERT_EQ(query.Query(g_pszVersions, 0x30), WBEM_S_NO_ERROR);
    EXPECT_EQ(CallsAndReferences().at(0), "EnumWbemClassObject::Release");
    EXPECT_EQ(CallsAndReferences().at(1), "IWbemServices::ExecQuery");
    EXPECT_EQ(LiveObjects::Count("EnumWbemClassObject"), 1);
    EXPECT_EQ(LiveObjects::Count("WbemClassObject"), 1);
}

TEST_F(WmiQueryTest, Query_EmptyAnswer_HasNoObject)
{
    Facts::Instance().Set("/wmi/os/instances", 0);
    WmiQuery query(Cimv2());
    EXPECT_EQ(query.Query(g_pszVersions, 0x30), WBEM_S_FALSE);
    EXPECT_EQ(LiveObjects::Count("WbemClassObject"), 0);
}

TEST_F(WmiQueryTest, Next_WithoutQuery_IsInvalidClass)
{
    WmiQuery query(Cimv2());
    StartJournal();
    EXPECT_EQ(query.Next(), static_cast<HRESULT>(0x80041010));
    EXPECT_TRUE(Calls().empty());
}

TEST_F(WmiQueryTest, Next_AfterLastObject_GivesFalseAndNoCurrentObject)
{
    WmiQuery query(Cimv2());
    ASSERT_EQ(query.Query(g_pszVersions, 0x30), WBEM_S_NO_ERROR);
    EXPECT_EQ(query.Next(), WBEM_S_FALSE);
    EXPECT_EQ(LiveObjects::Count("WbemClassObject"), 0);
    std::wstring text = L"before";
    EXPECT_EQ(query.GetPropertyText(L"Version", text), static_cast<HRESULT>(WBEM_E_NOT_FOUND));
    EXPECT_EQ(query.Next(), WBEM_S_FALSE);
}

TEST_F(WmiQueryTest, Next_Always_ReleasesTheObjectBeforeItAsksForAnother)
{
    WmiQuery query(Cimv2());
    ASSERT_EQ(query.Query(g_pszVersions, 0x30), WBEM_S_NO_ERROR);
    StartJournal();
    EXPECT_EQ(query.Next(), WBEM_S_FALSE);
    EXPECT_THAT(CallsAndReferences(), ElementsAre("WbemClassObject::Release", "IEnumWbemClassObject::Next"));
}

TEST_F(WmiQueryTest, Next_SeveralObjects_AreGivenInOrder)
{
    Facts::Instance().Set("/wmi/classes/Orvik_Port", {{{"Name", "first"}}, {{"Name", "second"}}});
    WmiQuery query(Cimv2());
    std::wstring text;
    ASSERT_EQ(query.Query(L"select Name from Orvik_Port", 0x30), WBEM_S_NO_ERROR);
    ASSERT_EQ(query.GetPropertyText(L"Name", text), S_OK);
    EXPECT_EQ(text, L"first");
    ASSERT_EQ(query.Next(), WBEM_S_NO_ERROR);
    ASSERT_EQ(query.GetPropertyText(L"Name", text), S_OK);
    EXPECT_EQ(text, L"second");
    EXPECT_EQ(LiveObjects::Count("WbemClassObject"), 1);
    EXPECT_EQ(query.Next(), WBEM_S_FALSE);
}

TEST_F(WmiQueryTest, Next_TimeOut_GivesThatStatusAndNoObject)
{
    Facts::Instance().Set("/wmi/next/timed-out", true);
    WmiQuery query(Cimv2());
    EXPECT_EQ(query.Query(g_pszVersions, 0x30), WBEM_S_TIMEDOUT);
    EXPECT_EQ(LiveObjects::Count("WbemClassObject"), 0);
}

TEST_F(WmiQueryTest, Next_Fails_GivesItsCodeAndNoObject)
{
    WmiQuery query(Cimv2());
    ASSERT_EQ(query.Query(g_pszVersions, 0x30), WBEM_S_NO_ERROR);
    CallPlan::Instance().Fail("IEnumWbemClassObject::Next", g_hrPlanned);
    EXPECT_EQ(query.Next(), g_hrPlanned);
    EXPECT_EQ(LiveObjects::Count("WbemClassObject"), 0);
}

TEST_F(WmiQueryTest, AnyUse_LogsNothing)
{
    {
        WmiQuery query(Cimv2());
        (void)query.Query(g_pszVersions, 0x30);
        (void)query.Query(L"nonsense", 0x30);
        (void)query.Connect(L"nowhere");
    }
    EXPECT_TRUE(TestSupport::NothingLogged());
}
