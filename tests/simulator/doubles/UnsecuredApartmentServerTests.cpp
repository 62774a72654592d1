#include "simulator/doubles/UnsecuredApartmentServer.h"

#include "simulator/doubles/DoubleClasses.h"
#include "simulator/doubles/JournalText.h"
#include "simulator/doubles/WmiEventSource.h"
#include "tests/simulator/doubles/DoublesTest.h"
#include "tests/simulator/doubles/RecordingSink.h"

#include <optional>

namespace Simulator
{
namespace
{
using testing::ElementsAre;

class UnsecuredApartmentServerTest : public DoublesTest
{
protected:
    // Through COM itself: nothing is redirected here.
    static HRESULT Create(IUnsecuredApartmentPtr& spApartment)
    {
        return CoCreateInstance(UnsecuredApartmentClassId, nullptr, CLSCTX_LOCAL_SERVER, IID_IUnsecuredApartment,
                                reinterpret_cast<void**>(&spApartment));
    }

    RecordingSink m_sink;
};

TEST_F(UnsecuredApartmentServerTest, ComFindsTheClassInTheMultithreadedApartment)
{
    const UnsecuredApartmentServer server;
    ASSERT_EQ(server.Result(), S_OK);
    OnThread(COINIT_MULTITHREADED,
             []
             {
                 IUnsecuredApartmentPtr spApartment;
                 EXPECT_EQ(Create(spApartment), S_OK);
                 EXPECT_EQ(LiveObjects::Count("UnsecuredApartment"), 1);
             });
    EXPECT_EQ(LiveObjects::Count("UnsecuredApartment"), 0);
}

TEST_F(UnsecuredApartmentServerTest, End_TakesTheClassAway)
{
    {
        const UnsecuredApartmentServer server;
    }
    OnThread(COINIT_MULTITHREADED,
             []
             {
                 IUnsecuredApartmentPtr spApartment;
                 EXPECT_LT(Create(spApartment), 0);
             });
    EXPECT_EQ(LiveObjects::Count("ClassFactory"), 0);
}

TEST_F(UnsecuredApartmentServerTest, WithTheClassSwitchedOff_NothingIsRegistered)
{
    Facts::Instance().Set("/unsecured-apartment/registered", false);
    const UnsecuredApartmentServer server;
    EXPECT_EQ(server.Result(), CLASS_E_CLASSNOTAVAILABLE);
}

TEST_F(UnsecuredApartmentServerTest, Server_KeepsTheMultithreadedApartmentAlive)
{
    std::optional<UnsecuredApartmentServer> server(std::in_place);
    OnBareThread([] { EXPECT_EQ(ApartmentText(), "implicit-mta"); });
    server.reset();
    OnBareThread([] { EXPECT_EQ(ApartmentText(), "none"); });
}

// The whole way of the product: the stub is made on a helper thread, handed to the single-threaded main thread, given
// to WMI there, and called on one of COM's threads while the main thread runs no message loop.
TEST_F(UnsecuredApartmentServerTest, StubFromAHelperThread_ServesTheMainThread)
{
    const UnsecuredApartmentServer server;
    IStream* stream = nullptr;
    OnThread(COINIT_MULTITHREADED,
             [&]
             {
                 IUnsecuredApartmentPtr spApartment;
                 ASSERT_EQ(Create(spApartment), S_OK);
                 IUnknownPtr spStub;
                 ASSERT_EQ(spApartment->CreateObjectStub(&m_sink, &spStub), S_OK);
                 ASSERT_EQ(CoMarshalInterThreadInterfaceInStream(IID_IWbemObjectSink, spStub, &stream), S_OK);
             });
    ASSERT_NE(stream, nullptr);
    IWbemObjectSinkPtr spStub;
    ASSERT_EQ(CoGetInterfaceAndReleaseStream(stream, IID_IWbemObjectSink, reinterpret_cast<void**>(&spStub)), S_OK);
    const IWbemServicesPtr spServices = Connect();
    ASSERT_EQ(spServices->ExecNotificationQueryAsync(_bstr_t(L"WQL"),
                                                     _bstr_t(L"SELECT * FROM orvikBEvnt WHERE EventID = 3"),
                                                     WBEM_FLAG_SEND_STATUS, nullptr, spStub),
              S_OK);
    EXPECT_THAT(WmiEventSource::Raise("orvikBEvnt", {{"EventID", 3}}), ElementsAre(S_OK));
    ASSERT_EQ(m_sink.Deliveries().size(), 1u);
    EXPECT_NE(m_sink.Deliveries()[0].m_dwThreadId, GetCurrentThreadId());
    EXPECT_EQ(m_sink.Deliveries()[0].m_strApartment, "implicit-mta");
    EXPECT_EQ(spServices->CancelAsyncCall(spStub), S_OK);
    spStub = nullptr;
    EXPECT_EQ(m_sink.References(), 1u);
}
} // namespace
} // namespace Simulator
