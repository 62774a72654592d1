#include "simulator/doubles/UnsecuredApartmentDouble.h"

#include "tests/simulator/doubles/DoublesTest.h"
#include "tests/simulator/doubles/RecordingSink.h"

#include <optional>
#include <stdexcept>
#include <thread>

namespace Simulator
{
namespace
{
using testing::ElementsAre;
using testing::IsEmpty;

class RefusingSink final : public IUnknown
{
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
};

class UnsecuredApartmentDoubleTest : public DoublesTest
{
protected:
    IWbemObjectSinkPtr MakeStub()
    {
        IUnknownPtr spStub;
        EXPECT_EQ(m_spApartment->CreateObjectStub(&m_sink, &spStub), S_OK);
        return spStub;
    }

    RecordingSink m_sink;
    const IUnsecuredApartmentPtr m_spApartment{new UnsecuredApartmentDouble, false};
};

TEST_F(UnsecuredApartmentDoubleTest, Stub_HoldsTheSinkForItsLife)
{
    {
        const IWbemObjectSinkPtr spStub = MakeStub();
        EXPECT_NE(spStub.GetInterfacePtr(), &m_sink);
        EXPECT_EQ(m_sink.References(), 2u);
        EXPECT_EQ(LiveObjects::Count("UnsecuredApartmentStub"), 1);
    }
    EXPECT_EQ(m_sink.References(), 1u);
}

TEST_F(UnsecuredApartmentDoubleTest, Stub_HandsCallsOnWithTheirResults)
{
    const IWbemObjectSinkPtr spStub = MakeStub();
    m_sink.m_action = [] { return S_FALSE; };
    EXPECT_EQ(spStub->Indicate(0, nullptr), S_FALSE);
    EXPECT_EQ(m_sink.Deliveries().size(), 1u);
    EXPECT_EQ(spStub->SetStatus(2, E_FAIL, nullptr, nullptr), S_OK);
    EXPECT_THAT(m_sink.Statuses(), ElementsAre("2:0x80004005"));
}

TEST_F(UnsecuredApartmentDoubleTest, Stub_TurnsAnExceptionIntoAServerFault)
{
    const IWbemObjectSinkPtr spStub = MakeStub();
    m_sink.m_action = []() -> HRESULT { throw _com_error(DISP_E_TYPEMISMATCH); };
    EXPECT_EQ(spStub->Indicate(0, nullptr), RPC_E_SERVERFAULT);
    EXPECT_EQ(LastDetails("wmi", "exception"),
              nlohmann::json({{"method", "IWbemObjectSink::Indicate"}, {"what", "0x80020005"}}));
    m_sink.m_action = []() -> HRESULT { throw std::runtime_error("text"); };
    EXPECT_EQ(spStub->Indicate(0, nullptr), RPC_E_SERVERFAULT);
    EXPECT_EQ(LastDetails("wmi", "exception").at("what"), "text");
    m_sink.m_action = []() -> HRESULT { throw 3; };
    EXPECT_EQ(spStub->Indicate(0, nullptr), RPC_E_SERVERFAULT);
    EXPECT_EQ(LastDetails("wmi", "exception").at("what"), "unknown");
}

TEST_F(UnsecuredApartmentDoubleTest, Stub_IsReachedFromAThreadOfTheMultithreadedApartment)
{
    const IWbemObjectSinkPtr spStub = MakeStub();
    OnThread(COINIT_MULTITHREADED, [&] { OnBareThread([&] { EXPECT_EQ(spStub->Indicate(0, nullptr), S_OK); }); });
    ASSERT_EQ(m_sink.Deliveries().size(), 1u);
    EXPECT_EQ(m_sink.Deliveries()[0].m_strApartment, "implicit-mta");
}

TEST_F(UnsecuredApartmentDoubleTest, Stub_IsDisconnectedWhenTheMultithreadedApartmentIsGone)
{
    std::optional<IWbemObjectSinkPtr> stub;
    OnThread(COINIT_MULTITHREADED, [&] { stub = MakeStub(); });
    EXPECT_EQ(LastDetails("call", "IUnsecuredApartment::CreateObjectStub").at("apartment"), "mta");
    OnBareThread([&] { EXPECT_EQ((*stub)->Indicate(0, nullptr), RPC_E_DISCONNECTED); });
    EXPECT_THAT(m_sink.Deliveries(), IsEmpty());
    EXPECT_EQ(LastDetails("wmi", "disconnected").at("method"), "IWbemObjectSink::Indicate");
}

TEST_F(UnsecuredApartmentDoubleTest, CreateObjectStub_JournalsApartmentAndObject)
{
    static_cast<void>(MakeStub());
    EXPECT_EQ(LastDetails("call", "IUnsecuredApartment::CreateObjectStub"),
              nlohmann::json({{"apartment", "sta"}, {"object", true}}));
}

TEST_F(UnsecuredApartmentDoubleTest, CreateObjectStub_RefusesWhatIsNoSink)
{
    auto* stub = reinterpret_cast<IUnknown*>(this);
    EXPECT_EQ(m_spApartment->CreateObjectStub(nullptr, &stub), E_POINTER);
    EXPECT_EQ(stub, nullptr);
    EXPECT_EQ(LastDetails("call", "IUnsecuredApartment::CreateObjectStub").at("object"), false);
    EXPECT_EQ(m_spApartment->CreateObjectStub(&m_sink, nullptr), E_POINTER);
    RefusingSink refusing;
    EXPECT_EQ(m_spApartment->CreateObjectStub(&refusing, &stub), E_NOINTERFACE);
    EXPECT_EQ(stub, nullptr);
    EXPECT_EQ(LiveObjects::Count("UnsecuredApartmentStub"), 0);
}

TEST_F(UnsecuredApartmentDoubleTest, CreateObjectStub_FailsByPlanAndHoldsNothing)
{
    CallPlan::Instance().Fail("IUnsecuredApartment::CreateObjectStub", PlannedFailure);
    auto* stub = reinterpret_cast<IUnknown*>(this);
    EXPECT_EQ(m_spApartment->CreateObjectStub(&m_sink, &stub), PlannedFailure);
    EXPECT_EQ(stub, nullptr);
    EXPECT_EQ(m_sink.References(), 1u);
}

TEST_F(UnsecuredApartmentDoubleTest, Release_JournalsTheSinksCountWhenAsked)
{
    Facts::Instance().Set("/doubles/probe-sink", true);
    IWbemObjectSink* stub = MakeStub().Detach();
    stub->AddRef();
    m_sink.AddRef();
    stub->Release();
    EXPECT_EQ(LastDetails("reference", "UnsecuredApartmentStub::Release").at("sink-count"), 3);
    m_sink.Release();
    stub->Release();
    EXPECT_EQ(LastDetails("reference", "UnsecuredApartmentStub::Release").at("sink-count"), 2);
    EXPECT_EQ(m_sink.References(), 1u);
}
} // namespace
} // namespace Simulator
