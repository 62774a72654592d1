#include "shared/LogLevel.h"
#include "simulator/doubles/WmiEventSource.h"
#include "simulator/model/Facts.h"
#include "simulator/model/LiveObjects.h"
#include "tests/support/LogCapture.h"
#include "tests/support/PolicyKey.h"
#include "tests/wmievents/FailingBstr.h"
#include "tests/wmievents/SubscriptionKinds.h"

#include <comdef.h>

#include <gmock/gmock.h>

using Simulator::CallPlan;
using Simulator::LiveObjects;
using testing::IsEmpty;
using TestSupport::Logged;
using TestSupport::NotLogged;
namespace Level = Orvik::Shared::Level;

namespace Tests
{
namespace
{
constexpr HRESULT g_hrFailure = static_cast<HRESULT>(0x800706BA);
constexpr const wchar_t* SetupStateKey = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Setup\\State";

constexpr const wchar_t* g_pStillUnbundling =
    L"ExecNotificationQueryAsync failed, Ignoring since still unbundling: 0x80041003";

// A step that fails, the line that tells of it, and what the subscription still holds afterwards.
struct Step
{
    const char* m_pCall;
    unsigned m_nth;
    const wchar_t* m_pLine;
    long m_nConnections;
    long m_nStubs;
};

constexpr Step g_steps[] = {
    {"CoCreateInstance", 1, L"CoCreateInstance(IID_IWbemLocator) failed: 0x800706BA", 0, 0},
    {"IWbemLocator::ConnectServer", 1, L"ConnectServer failed: 0x800706BA", 0, 0},
    {"CoSetProxyBlanket", 1, L"CoSetProxyBlanket failed: 0x800706BA", 1, 0},
    {"CoInitializeEx", 1, L"CoCreateInstance(IID_IUnsecuredApartment) failed: 0x800706BA", 1, 0},
    {"CoCreateInstance", 2, L"CoCreateInstance(IID_IUnsecuredApartment) failed: 0x800706BA", 1, 0},
    {"IUnsecuredApartment::CreateObjectStub", 1, L"CreateObjectStub failed: 0x800706BA", 1, 0},
    {"UnsecuredApartmentStub::QueryInterface", 1, L"QueryInterface failed: 0x800706BA", 1, 0},
    {"CoMarshalInterThreadInterfaceInStream", 1, L"QueryInterface failed: 0x800706BA", 1, 0},
    {"CoGetInterfaceAndReleaseStream", 1, L"QueryInterface failed: 0x800706BA", 1, 0},
};
} // namespace

template <class Kind>
class SubscriptionFailureTest : public SubscriptionTest<Kind>
{
protected:
    // Only a process that has no helper thread yet initialises COM for it: each step has a fresh subscription, and the
    // step that needs the first start comes before the others reach that far.
    void ExpectStepFails(const Step& step)
    {
        SCOPED_TRACE(step.m_pCall);
        typename Kind::Subscription subscription;
        this->StartWatching();
        CallPlan::Instance().Fail(step.m_pCall, g_hrFailure, step.m_nth);
        EXPECT_EQ(Kind::Register(subscription, &this->m_hub), g_hrFailure);
        EXPECT_EQ(CallPlan::Instance().FailedCount(), 1u);
        EXPECT_TRUE(Logged(Level::Information, Kind::Worker, step.m_pLine));
        EXPECT_TRUE(Logged(Level::TraceOut, Kind::Worker, L"hr: 0x800706BA"));
        EXPECT_EQ(LiveObjects::Count("WbemServices"), step.m_nConnections);
        EXPECT_EQ(LiveObjects::Count("UnsecuredApartmentStub"), step.m_nStubs);
        EXPECT_EQ(LiveObjects::Count("UnsecuredApartment") + LiveObjects::Count("WbemLocator"), 0);

        // Neither retried nor repaired: half set, it refuses a second registration.
        if (step.m_nConnections > 0)
        {
            EXPECT_EQ(Kind::Register(subscription, &this->m_hub), E_FAIL);
        }
        EXPECT_EQ(subscription.Unregister(), S_OK);
        EXPECT_FALSE(this->WasCalled("IWbemServices::CancelAsyncCall"));
        EXPECT_THAT(LiveObjects::All(), IsEmpty());
        EXPECT_EQ(Kind::Register(subscription, &this->m_hub), S_OK);
        EXPECT_EQ(subscription.Unregister(), S_OK);
    }

    // The result of a registration whose query is refused.
    HRESULT RegisterRefused()
    {
        CallPlan::Instance().Fail("IWbemServices::ExecNotificationQueryAsync", Hr(WBEM_E_ACCESS_DENIED));
        return this->Register();
    }
};

TYPED_TEST_SUITE(SubscriptionFailureTest, SubscriptionKinds);

TYPED_TEST(SubscriptionFailureTest, Register_EachStepFails_LineResultAndNothingKeptBeyondIt)
{
    for (const Step& step :
         {g_steps[0], g_steps[1], g_steps[2], g_steps[4], g_steps[5], g_steps[6], g_steps[7], g_steps[8]})
        this->ExpectStepFails(step);
}

TYPED_TEST(SubscriptionFailureTest, Register_HelperThreadHasNoCom_FailsAndTheNextTryStartsItAgain)
{
    this->ExpectStepFails(g_steps[3]);
}

TYPED_TEST(SubscriptionFailureTest, Register_NoWmi_Fails)
{
    Simulator::Facts::Instance().Set("/wmi/registered", false);
    EXPECT_EQ(this->Register(), REGDB_E_CLASSNOTREG);
    EXPECT_TRUE(
        Logged(Level::Information, TypeParam::Worker, L"CoCreateInstance(IID_IWbemLocator) failed: 0x80040154"));
}

TYPED_TEST(SubscriptionFailureTest, Register_NoUnsecuredApartment_Fails)
{
    Simulator::Facts::Instance().Set("/unsecured-apartment/registered", false);
    EXPECT_EQ(this->Register(), REGDB_E_CLASSNOTREG);
    EXPECT_TRUE(
        Logged(Level::Information, TypeParam::Worker, L"CoCreateInstance(IID_IUnsecuredApartment) failed: 0x80040154"));
}

TYPED_TEST(SubscriptionFailureTest, Register_QueryRefusedOnACompleteImage_IsInformation)
{
    TestSupport::PolicyKey state(SetupStateKey);
    state.Text(L"ImageState", L"image_state_complete");
    EXPECT_EQ(this->RegisterRefused(), Hr(WBEM_E_ACCESS_DENIED));
    EXPECT_TRUE(Logged(Level::Information, TypeParam::Worker, L"ExecNotificationQueryAsync failed: 0x80041003"));
    EXPECT_TRUE(NotLogged(Level::Verbose, TypeParam::Worker, g_pStillUnbundling));
    EXPECT_TRUE(Logged(Level::TraceOut, TypeParam::Worker, L"hr: 0x80041003"));
}

TYPED_TEST(SubscriptionFailureTest, Register_QueryRefusedOnAnyOtherImage_IsVerbose)
{
    for (const wchar_t* imageState :
         {L"", L"IMAGE_STATE_UNDEPLOYABLE", L"IMAGE_STATE_GENERALIZE_RESEAL_TO_OOBE",
          L"IMAGE_STATE_GENERALIZE_RESEAL_TO_AUDIT", L"IMAGE_STATE_SPECIALIZE_RESEAL_TO_OOBE",
          L"IMAGE_STATE_SPECIALIZE_RESEAL_TO_AUDIT"})
    {
        SCOPED_TRACE(testing::PrintToString(imageState));
        TestSupport::PolicyKey state(SetupStateKey);
        state.Text(L"ImageState", imageState);
        this->StartWatching();
        EXPECT_EQ(this->RegisterRefused(), Hr(WBEM_E_ACCESS_DENIED));
        EXPECT_TRUE(Logged(Level::Verbose, TypeParam::Worker, g_pStillUnbundling));
        EXPECT_TRUE(NotLogged(Level::Information, TypeParam::Worker, L"ExecNotificationQueryAsync failed: 0x80041003"));
        EXPECT_EQ(this->m_subscription.Unregister(), Hr(WBEM_E_NOT_FOUND));
    }
}

TYPED_TEST(SubscriptionFailureTest, Register_QueryRefusedAndStateUnreadable_IsVerbose)
{
    EXPECT_EQ(this->RegisterRefused(), Hr(WBEM_E_ACCESS_DENIED));
    EXPECT_TRUE(Logged(Level::Verbose, TypeParam::Worker, g_pStillUnbundling));
    EXPECT_TRUE(NotLogged(Level::Information, TypeParam::Worker, L"ExecNotificationQueryAsync failed: 0x80041003"));
}

TYPED_TEST(SubscriptionFailureTest, Register_QueryRefused_StubStaysAndUnregisterCancels)
{
    EXPECT_EQ(this->RegisterRefused(), Hr(WBEM_E_ACCESS_DENIED));
    EXPECT_EQ(LiveObjects::Count("UnsecuredApartmentStub"), 1);
    EXPECT_EQ(this->Register(), E_FAIL);
    EXPECT_EQ(this->m_subscription.Unregister(), Hr(WBEM_E_NOT_FOUND));
    EXPECT_TRUE(this->WasCalled("IWbemServices::CancelAsyncCall"));
    EXPECT_THAT(LiveObjects::All(), IsEmpty());
}

TYPED_TEST(SubscriptionFailureTest, Register_TextCannotBeAllocated_RaisesOutOfMemoryAndReleases)
{
    // The namespace, "WQL" and the query.
    for (const unsigned nth : {1u, 2u, 3u})
    {
        typename TypeParam::Subscription subscription;
        const FailingBstr noMemory(nth);
        try
        {
            static_cast<void>(TypeParam::Register(subscription, &this->m_hub));
            ADD_FAILURE() << nth;
        }
        catch (const _com_error& error)
        {
            EXPECT_EQ(error.Error(), E_OUTOFMEMORY);
        }
        EXPECT_EQ(LiveObjects::Count("WbemLocator") + LiveObjects::Count("UnsecuredApartment"), 0);
        static_cast<void>(subscription.Unregister());
        EXPECT_THAT(LiveObjects::All(), IsEmpty());
    }
}

TYPED_TEST(SubscriptionFailureTest, Register_AfterAFailure_EventsAreDelivered)
{
    CallPlan::Instance().Fail("IWbemLocator::ConnectServer", g_hrFailure);
    EXPECT_EQ(this->Register(), g_hrFailure);
    ASSERT_EQ(this->Register(), S_OK);
    Simulator::WmiEventSource::Raise(TypeParam::EventClass, TypeParam::Event());
    EXPECT_EQ(this->m_hub.Calls().size(), 1u);
}
} // namespace Tests
