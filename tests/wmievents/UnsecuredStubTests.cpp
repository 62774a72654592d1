#include "wmievents/UnsecuredStub.h"

#include "simulator/model/LiveObjects.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/wmievents/MachineTest.h"
#include "wmievents/WmiEventSink.h"

#include <gmock/gmock.h>

using Notifications::OrvikWmiEvents::IWbemObjectSinkPtr;
using Notifications::OrvikWmiEvents::UnsecuredStub;
using Simulator::LiveObjects;
using testing::IsEmpty;

namespace
{
class UnsecuredStubTest : public Tests::HubTest
{
protected:
    ~UnsecuredStubTest() override { m_pSink->Release(); }

    IWbemObjectSink* m_pSink = new Notifications::OrvikWmiEvents::WmiEventSink(&m_hub, Tests::HubProbe::PlainHandler());
};

// An apartment that says yes and makes nothing, and a stub that has no sink to give.
class EmptyHanded final : public IUnsecuredApartment
{
public:
    explicit EmptyHanded(bool makesStubs) : m_bMakesStubs(makesStubs) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override
    {
        *object = iid == IID_IUnknown ? this : nullptr;
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE CreateObjectStub(IUnknown*, IUnknown** stub) override
    {
        *stub = m_bMakesStubs ? this : nullptr;
        return S_OK;
    }

private:
    const bool m_bMakesStubs;
};

EmptyHanded* g_pEmptyHanded = nullptr;

HRESULT WINAPI CreateEmptyHanded(REFCLSID, LPUNKNOWN, DWORD, REFIID, LPVOID* object)
{
    *object = g_pEmptyHanded;
    return S_OK;
}

// Result of asking for the sink of a machine that says yes and gives nothing.
HRESULT QueryEmptyHanded(bool makesStubs)
{
    EmptyHanded emptyHanded(makesStubs);
    g_pEmptyHanded = &emptyHanded;
    const Simulator::Redirection<decltype(CoCreateInstance)> create("CoCreateInstance", &CreateEmptyHanded);
    UnsecuredStub stub;
    EXPECT_EQ(stub.CreateApartment(), S_OK);
    EXPECT_EQ(stub.CreateObjectStub(nullptr), S_OK);
    IWbemObjectSinkPtr spSink;
    const HRESULT hr = stub.QuerySink(spSink);
    EXPECT_FALSE(spSink);
    return hr;
}
} // namespace

TEST_F(UnsecuredStubTest, Unused_StartsNoThreadAndMakesNoCall)
{
    {
        const UnsecuredStub stub;
    }
    EXPECT_THAT(Calls(), IsEmpty());
}

TEST_F(UnsecuredStubTest, QuerySink_GivesAStubThatOutlivesTheMaker)
{
    IWbemObjectSinkPtr spSink;
    {
        UnsecuredStub stub;
        ASSERT_EQ(stub.CreateApartment(), S_OK);
        ASSERT_EQ(stub.CreateObjectStub(m_pSink), S_OK);
        ASSERT_EQ(stub.QuerySink(spSink), S_OK);
    }
    EXPECT_NE(spSink.GetInterfacePtr(), m_pSink);
    EXPECT_EQ(LiveObjects::Count("UnsecuredApartmentStub"), 1);
    EXPECT_EQ(LiveObjects::Count("UnsecuredApartment"), 0);
    EXPECT_EQ(spSink->SetStatus(0, S_OK, nullptr, nullptr), S_OK);
    spSink = nullptr;
    EXPECT_THAT(LiveObjects::All(), IsEmpty());
}

TEST_F(UnsecuredStubTest, StubAndApartment_AreReleasedInTheirApartment)
{
    {
        UnsecuredStub stub;
        ASSERT_EQ(stub.CreateApartment(), S_OK);
        ASSERT_EQ(stub.CreateObjectStub(m_pSink), S_OK);
    }
    for (const auto& entry : Simulator::Journal::Instance().Entries())
    {
        if (entry.m_strSubject == "UnsecuredApartment::Release" ||
            entry.m_strSubject == "UnsecuredApartmentStub::Release")
        {
            EXPECT_NE(entry.m_dwThreadId, GetCurrentThreadId()) << entry.m_strSubject;
        }
    }
    EXPECT_THAT(LiveObjects::All(), IsEmpty());
}

TEST_F(UnsecuredStubTest, QuerySink_SuccessWithoutAStub_IsAFailure)
{
    EXPECT_EQ(QueryEmptyHanded(false), E_POINTER);
}

TEST_F(UnsecuredStubTest, QuerySink_SuccessWithoutASink_IsAFailure)
{
    EXPECT_EQ(QueryEmptyHanded(true), E_POINTER);
}
