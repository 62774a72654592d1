#include "simulator/doubles/ComRedirections.h"

#include "simulator/doubles/DoubleClasses.h"
#include "simulator/doubles/PlixInterfaces.h"
#include "simulator/doubles/UnsecuredApartmentServer.h"
#include "simulator/doubles/WbemLocatorDouble.h"
#include "tests/simulator/doubles/DoublesTest.h"

#include <optional>

namespace Simulator
{
namespace
{
using testing::ElementsAre;
using testing::IsEmpty;

class ComRedirectionsTest : public DoublesTest
{
protected:
    static HRESULT Create(REFCLSID classId, DWORD context, REFIID iid, IUnknownPtr& spObject, IUnknown* outer = nullptr)
    {
        void* object = nullptr;
        const HRESULT hr = CoCreateInstance(classId, outer, context, iid, &object);
        spObject.Attach(static_cast<IUnknown*>(object));
        return hr;
    }

    IUnknownPtr m_spObject;
    std::optional<ComRedirections> m_redirections{std::in_place, Activation::InProcess};
};

TEST_F(ComRedirectionsTest, CoCreateInstance_MakesADoubleAndJournals)
{
    ASSERT_EQ(Create(WbemLocatorClassId, CLSCTX_INPROC_SERVER, IID_IWbemLocator, m_spObject), S_OK);
    EXPECT_EQ(LiveObjects::Count("WbemLocator"), 1);
    EXPECT_EQ(LastDetails("call", "CoCreateInstance"),
              nlohmann::json({{"clsid", "{4590F811-1D3A-11D0-891F-00AA004B2E24}"},
                              {"class", "WbemLocator"},
                              {"context", 1},
                              {"iid", "{DC12A687-737F-11CF-884D-00AA004B2E24}"},
                              {"aggregated", false},
                              {"apartment", "sta"}}));
    EXPECT_EQ(LiveObjects::Count("ClassFactory"), 0);
    EXPECT_EQ(m_spObject->AddRef(), 2u);
    EXPECT_EQ(m_spObject->Release(), 1u);
}

TEST_F(ComRedirectionsTest, CoCreateInstance_KnowsEachClassInItsContext)
{
    const DWORD all = CLSCTX_INPROC_SERVER | CLSCTX_INPROC_HANDLER | CLSCTX_LOCAL_SERVER | CLSCTX_REMOTE_SERVER;
    for (const DoubleClass& entry : DoubleClasses())
    {
        EXPECT_EQ(Create(entry.m_classId, all, IID_IUnknown, m_spObject), S_OK) << entry.m_pszName;
        EXPECT_EQ(Create(entry.m_classId, CLSCTX_INPROC_HANDLER, IID_IUnknown, m_spObject), REGDB_E_CLASSNOTREG);
        EXPECT_EQ(m_spObject, nullptr);
    }
    EXPECT_EQ(Create(UnsecuredApartmentClassId, CLSCTX_INPROC_SERVER, IID_IUnknown, m_spObject), REGDB_E_CLASSNOTREG);
}

TEST_F(ComRedirectionsTest, CoCreateInstance_RefusesAsComDoes)
{
    EXPECT_EQ(Create(WbemLocatorClassId, CLSCTX_INPROC_SERVER, IID_IDispatch, m_spObject), E_NOINTERFACE);
    const IUnknownPtr spOuter(new WbemLocatorDouble, false);
    EXPECT_EQ(Create(WbemLocatorClassId, CLSCTX_INPROC_SERVER, IID_IUnknown, m_spObject, spOuter),
              CLASS_E_NOAGGREGATION);
    EXPECT_EQ(CoCreateInstance(WbemLocatorClassId, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, nullptr), E_POINTER);
    EXPECT_EQ(LiveObjects::Count("ClassFactory"), 0);
}

TEST_F(ComRedirectionsTest, CoCreateInstance_NeedsAnApartment)
{
    OnBareThread(
        [&]
        {
            EXPECT_EQ(Create(WbemLocatorClassId, CLSCTX_INPROC_SERVER, IID_IUnknown, m_spObject), CO_E_NOTINITIALIZED);
        });
    OnThread(COINIT_MULTITHREADED,
             [&]
             {
                 OnBareThread(
                     [&]
                     { EXPECT_EQ(Create(WbemLocatorClassId, CLSCTX_INPROC_SERVER, IID_IUnknown, m_spObject), S_OK); });
             });
}

TEST_F(ComRedirectionsTest, CoCreateInstance_PassesOtherClassesOn)
{
    const IID gitId = IID_IGlobalInterfaceTable;
    EXPECT_EQ(Create(CLSID_StdGlobalInterfaceTable, CLSCTX_INPROC_SERVER, gitId, m_spObject), S_OK);
    EXPECT_FALSE(LastDetails("call", "CoCreateInstance").contains("class"));
}

TEST_F(ComRedirectionsTest, CoCreateInstance_FailsByPlanOrInTheFactory)
{
    CallPlan::Instance().Fail("CoCreateInstance", PlannedFailure);
    EXPECT_EQ(Create(WbemLocatorClassId, CLSCTX_INPROC_SERVER, IID_IUnknown, m_spObject), PlannedFailure);
    CallPlan::Instance().Fail("IClassFactory::CreateInstance", E_OUTOFMEMORY);
    EXPECT_EQ(Create(WbemLocatorClassId, CLSCTX_INPROC_SERVER, IID_IUnknown, m_spObject), E_OUTOFMEMORY);
    EXPECT_EQ(m_spObject, nullptr);
}

TEST_F(ComRedirectionsTest, AFact_SwitchesEachClassOff)
{
    for (const DoubleClass& entry : DoubleClasses())
    {
        EXPECT_EQ(Create(entry.m_classId, entry.m_dwContext, IID_IUnknown, m_spObject), S_OK);
        Facts::Instance().Set(entry.m_pszFact, false);
        EXPECT_EQ(Create(entry.m_classId, entry.m_dwContext, IID_IUnknown, m_spObject), REGDB_E_CLASSNOTREG);
        Facts::Instance().Set(entry.m_pszFact, true);
        EXPECT_EQ(Create(entry.m_classId, entry.m_dwContext, IID_IUnknown, m_spObject), S_OK);
    }
}

TEST_F(ComRedirectionsTest, CLSIDFromProgID_KnowsTheNotificationComponent)
{
    CLSID found{};
    EXPECT_EQ(CLSIDFromProgID(L"orvikplixutils.orvikPlixNotification", &found), S_OK);
    EXPECT_TRUE(found == PlixNotificationClassId);
    EXPECT_EQ(LastDetails("call", "CLSIDFromProgID").at("progid"), "orvikplixutils.orvikPlixNotification");
    Facts::Instance().Set("/notification/registered", false);
    EXPECT_EQ(CLSIDFromProgID(L"orvikplixutils.orvikPlixNotification", &found), CO_E_CLASSSTRING);
    EXPECT_TRUE(found == CLSID_NULL);
    EXPECT_EQ(CLSIDFromProgID(L"no.such.class", &found), CO_E_CLASSSTRING);
    EXPECT_EQ(CLSIDFromProgID(L"orvikplixutils.orvikPlixNotification", nullptr), E_INVALIDARG);
    Facts::Instance().Clear();
    CallPlan::Instance().Fail("CLSIDFromProgID", PlannedFailure);
    EXPECT_EQ(CLSIDFromProgID(L"orvikplixutils.orvikPlixNotification", &found), PlannedFailure);
}

TEST_F(ComRedirectionsTest, Initialisation_IsJournalledAndFailsByPlan)
{
    OnBareThread(
        [&]
        {
            Journal::Instance().Clear();
            EXPECT_EQ(CoInitializeEx(nullptr, 10), S_OK);
            EXPECT_EQ(LastDetails("call", "CoInitializeEx").at("flags"), 10);
            EXPECT_EQ(CoInitialize(nullptr), S_FALSE);
            CoUninitialize();
            CoUninitialize();
            EXPECT_THAT(Calls(), ElementsAre("CoInitializeEx", "CoInitialize", "CoUninitialize", "CoUninitialize"));
            CallPlan::Instance().Fail("CoInitializeEx", PlannedFailure);
            CallPlan::Instance().Fail("CoInitialize", PlannedFailure);
            EXPECT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), PlannedFailure);
            EXPECT_EQ(CoInitialize(nullptr), PlannedFailure);
            EXPECT_EQ(Create(WbemLocatorClassId, CLSCTX_INPROC_SERVER, IID_IUnknown, m_spObject), CO_E_NOTINITIALIZED);
        });
}

TEST_F(ComRedirectionsTest, Security_IsJournalledAndFailsByPlan)
{
    CallPlan::Instance().Fail("CoInitializeSecurity", PlannedFailure);
    EXPECT_EQ(CoInitializeSecurity(nullptr, -1, nullptr, nullptr, 0, 3, nullptr, 0, nullptr), PlannedFailure);
    EXPECT_EQ(LastDetails("call", "CoInitializeSecurity"), nlohmann::json({{"descriptor", false},
                                                                           {"services", -1},
                                                                           {"list", false},
                                                                           {"authentication-level", 0},
                                                                           {"impersonation-level", 3},
                                                                           {"identities", false},
                                                                           {"capabilities", 0},
                                                                           {"reserved", false},
                                                                           {"planned-failure", 0x8004D00D}}));
    EXPECT_GE(CoInitializeSecurity(nullptr, -1, nullptr, nullptr, 0, 3, nullptr, 0, nullptr), 0);
}

TEST_F(ComRedirectionsTest, OleRunAndBlanket_AreJournalledAndFailByPlan)
{
    const IWbemServicesPtr spServices = Connect();
    EXPECT_EQ(OleRun(spServices), S_OK);
    EXPECT_EQ(CoSetProxyBlanket(spServices, 10, 0, nullptr, 2, 3, nullptr, 0), S_OK);
    EXPECT_EQ(LastDetails("call", "CoSetProxyBlanket"), LastDetails("com", "IClientSecurity::SetBlanket"));
    CallPlan::Instance().Fail("OleRun", PlannedFailure);
    CallPlan::Instance().Fail("CoSetProxyBlanket", PlannedFailure);
    EXPECT_EQ(OleRun(spServices), PlannedFailure);
    EXPECT_EQ(CoSetProxyBlanket(spServices, 10, 0, nullptr, 2, 3, nullptr, 0), PlannedFailure);
    EXPECT_EQ(CallPlan::Instance().CallCount("IClientSecurity::SetBlanket"), 1u);
}

TEST_F(ComRedirectionsTest, Marshalling_FailsByPlanAndKeepsNothing)
{
    const IWbemLocatorPtr spLocator(new WbemLocatorDouble, false);
    CallPlan::Instance().Fail("CoMarshalInterThreadInterfaceInStream", PlannedFailure);
    auto* stream = reinterpret_cast<IStream*>(this);
    EXPECT_EQ(CoMarshalInterThreadInterfaceInStream(IID_IWbemLocator, spLocator, &stream), PlannedFailure);
    EXPECT_EQ(stream, nullptr);

    ASSERT_EQ(CoMarshalInterThreadInterfaceInStream(IID_IWbemLocator, spLocator, &stream), S_OK);
    CallPlan::Instance().Fail("CoGetInterfaceAndReleaseStream", PlannedFailure);
    void* object = this;
    EXPECT_EQ(CoGetInterfaceAndReleaseStream(stream, IID_IWbemLocator, &object), PlannedFailure);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(spLocator->AddRef(), 2u);
    EXPECT_EQ(spLocator->Release(), 1u);
}

TEST_F(ComRedirectionsTest, End_GivesTheFunctionsBack)
{
    m_redirections.reset();
    Journal::Instance().Clear();
    EXPECT_NE(Create(UnsecuredApartmentClassId, CLSCTX_LOCAL_SERVER, IID_IUnknown, m_spObject), S_OK);
    CLSID found{};
    EXPECT_EQ(CLSIDFromProgID(L"orvikplixutils.orvikPlixNotification", &found), CO_E_CLASSSTRING);
    EXPECT_THAT(Calls(), IsEmpty());
}

TEST_F(ComRedirectionsTest, TheDoublesOwnCalls_AreNeitherSeenNorFailed)
{
    for (const char* name : {"CoInitializeEx", "CoUninitialize", "CoCreateInstance"})
        CallPlan::Instance().Fail(name, PlannedFailure, 1, Repeat::Always);
    Journal::Instance().Clear();
    {
        const UnsecuredApartmentServer server;
        EXPECT_EQ(server.Result(), S_OK);
    }
    EXPECT_THAT(Calls(), IsEmpty());
    EXPECT_EQ(CallPlan::Instance().FailedCount(), 0u);
}
} // namespace
} // namespace Simulator
