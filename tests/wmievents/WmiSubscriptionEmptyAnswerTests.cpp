#include "platform/WmiQuery.h"
#include "shared/LogLevel.h"
#include "simulator/doubles/WbemLocatorDouble.h"
#include "simulator/model/LiveObjects.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/platform/MethodRedirection.h"
#include "tests/support/LogCapture.h"
#include "tests/wmievents/SubscriptionKinds.h"

#include <gmock/gmock.h>

using Simulator::LiveObjects;
using testing::IsEmpty;
using TestSupport::Logged;
namespace Level = Orvik::Shared::Level;

namespace Tests
{
namespace
{
CLSID g_emptyHandedClass;
decltype(CoCreateInstance)* g_pfnCreate;

// Says yes and gives nothing for one class.
HRESULT WINAPI CreateNothing(REFCLSID classId, LPUNKNOWN outer, DWORD context, REFIID iid, LPVOID* object)
{
    if (classId != g_emptyHandedClass)
        return g_pfnCreate(classId, outer, context, iid, object);
    *object = nullptr;
    return S_OK;
}

HRESULT STDMETHODCALLTYPE ConnectToNothing(IWbemLocator*, const BSTR, const BSTR, const BSTR, const BSTR, LONG,
                                           const BSTR, IWbemContext*, IWbemServices** services)
{
    *services = nullptr;
    return S_OK;
}

const void* g_pServices;
const void* g_pSink;

HRESULT STDMETHODCALLTYPE NoteQuery(IWbemServices* services, const BSTR, const BSTR, LONG, IWbemContext*,
                                    IWbemObjectSink* sink)
{
    g_pServices = services;
    g_pSink = sink;
    return S_OK;
}

IWbemLocatorPtr MakeLocator()
{
    return {new Simulator::WbemLocatorDouble, false};
}

IWbemServicesPtr Connect()
{
    IWbemServicesPtr spServices;
    const _bstr_t path(L"ROOT\\WMI");
    EXPECT_EQ(MakeLocator()->ConnectServer(path, nullptr, nullptr, nullptr, 0, nullptr, nullptr, &spServices), S_OK);
    return spServices;
}
} // namespace

// WMI says yes and gives nothing, and what it gives is what the records show.
template <class Kind>
class EmptyAnswerTest : public SubscriptionTest<Kind>
{
protected:
    // A class whose objects are not there although creating one succeeds.
    void ExpectFails(const CLSID& emptyHanded, const wchar_t* line)
    {
        g_emptyHandedClass = emptyHanded;
        const Simulator::Redirection<decltype(CoCreateInstance)> create("CoCreateInstance", &CreateNothing);
        g_pfnCreate = create.Original();
        EXPECT_EQ(this->Register(), E_POINTER);
        EXPECT_TRUE(Logged(Level::Information, Kind::Worker, line));
        EXPECT_EQ(this->m_subscription.Unregister(), S_OK);
        EXPECT_THAT(LiveObjects::All(), IsEmpty());
    }
};

TYPED_TEST_SUITE(EmptyAnswerTest, SubscriptionKinds);

TYPED_TEST(EmptyAnswerTest, Register_NoLocator_Fails)
{
    this->ExpectFails(CLSID_WbemLocator, L"CoCreateInstance(IID_IWbemLocator) failed: 0x80004003");
    EXPECT_FALSE(this->WasCalled("IWbemLocator::ConnectServer"));
}

TYPED_TEST(EmptyAnswerTest, Register_NoApartment_Fails)
{
    this->ExpectFails(CLSID_UnsecuredApartment, L"CoCreateInstance(IID_IUnsecuredApartment) failed: 0x80004003");
    EXPECT_FALSE(this->WasCalled("IUnsecuredApartment::CreateObjectStub"));
}

TYPED_TEST(EmptyAnswerTest, Register_NoConnection_Fails)
{
    const MethodRedirection nothing(MakeLocator().GetInterfacePtr(), &IWbemLocator::ConnectServer, &ConnectToNothing);
    EXPECT_EQ(this->Register(), E_POINTER);
    EXPECT_TRUE(Logged(Level::Information, TypeParam::Worker, L"ConnectServer failed: 0x80004003"));
    EXPECT_FALSE(this->WasCalled("CoSetProxyBlanket"));
    EXPECT_THAT(LiveObjects::All(), IsEmpty());
}

TYPED_TEST(EmptyAnswerTest, Unregister_TracesConnectionThenStub)
{
    {
        const IWbemServicesPtr spServices = Connect();
        const MethodRedirection noted(spServices.GetInterfacePtr(), &IWbemServices::ExecNotificationQueryAsync,
                                      &NoteQuery);
        ASSERT_EQ(this->Register(), S_OK);
    }
    static_cast<void>(this->m_subscription.Unregister());
    wchar_t entry[128]{};
    _snwprintf(entry, std::size(entry) - 1, L"m_pWbemSvcs: %p, m_pWbemObjSink: %p", g_pServices, g_pSink);
    EXPECT_TRUE(Logged(Level::TraceIn, TypeParam::Unregister, entry));
    EXPECT_NE(g_pServices, g_pSink);
}
} // namespace Tests
