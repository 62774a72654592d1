#include "simulator/doubles/ComRedirections.h"
#include "simulator/doubles/DoubleClasses.h"
#include "simulator/doubles/PlixInterfaces.h"
#include "simulator/doubles/UnsecuredApartmentServer.h"
#include "simulator/model/CallPlan.h"
#include "simulator/model/Facts.h"
#include "simulator/model/Journal.h"
#include "tests/simulator/doubles/RecordingSink.h"
#include "tests/simulator/doubles/registry/RegisteredServer.h"

#include <windows.h>

#include <comdef.h>
#include <wbemcli.h>

#include <gmock/gmock.h>

#include <functional>
#include <thread>

_COM_SMARTPTR_TYPEDEF(IUnknown, IID_IUnknown);
_COM_SMARTPTR_TYPEDEF(IWbemLocator, IID_IWbemLocator);
_COM_SMARTPTR_TYPEDEF(IWbemServices, IID_IWbemServices);
_COM_SMARTPTR_TYPEDEF(IEnumWbemClassObject, IID_IEnumWbemClassObject);
_COM_SMARTPTR_TYPEDEF(IWbemClassObject, IID_IWbemClassObject);

namespace Simulator
{
namespace
{
using CommandPtr = _com_ptr_t<_com_IIID<IPlixCommandServer, &__uuidof(IPlixCommandServer)>>;
using UnsecuredApartmentPtr = _com_ptr_t<_com_IIID<IUnsecuredApartment, &IID_IUnsecuredApartment>>;
using WbemObjectSinkPtr = _com_ptr_t<_com_IIID<IWbemObjectSink, &IID_IWbemObjectSink>>;
using NotificationPtr = _com_ptr_t<_com_IIID<IPlixNotificationServer, &__uuidof(IPlixNotificationServer)>>;

constexpr DWORD AnyServer = CLSCTX_INPROC_SERVER | CLSCTX_INPROC_HANDLER | CLSCTX_LOCAL_SERVER | CLSCTX_REMOTE_SERVER;

void OnThread(DWORD apartment, const std::function<void()>& work)
{
    std::thread(
        [&]
        {
            ASSERT_GE(CoInitializeEx(nullptr, apartment), 0);
            work();
            CoUninitialize();
        })
        .join();
}

class RegistryActivation : public testing::Test
{
protected:
    static void SetUpTestSuite() { s_pServer = new RegisteredServer; }
    static void TearDownTestSuite() { delete s_pServer; }

    void SetUp() override
    {
        ASSERT_EQ(s_pServer->Error(), 0u);
        ASSERT_GE(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), 0);
        CallPlan::Instance().Reset();
        Facts::Instance().Clear();
        Journal::Instance().Clear();
    }
    void TearDown() override
    {
        CoUninitialize();
        // COM keeps class factories of a loaded server for as long as it likes.
        EXPECT_LE(s_pServer->ObjectCount(), 0);
    }

    static RegisteredServer* s_pServer;
};

RegisteredServer* RegistryActivation::s_pServer = nullptr;

std::wstring VersionByWmi()
{
    IWbemLocatorPtr spLocator;
    EXPECT_EQ(CoCreateInstance(WbemLocatorClassId, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                               reinterpret_cast<void**>(&spLocator)),
              S_OK);
    IWbemServicesPtr spServices;
    EXPECT_EQ(spLocator->ConnectServer(_bstr_t(L"\\\\.\\root\\cimv2"), nullptr, nullptr, nullptr, 128, nullptr, nullptr,
                                       &spServices),
              S_OK);
    EXPECT_EQ(CoSetProxyBlanket(spServices, 10, 0, nullptr, 0, 3, nullptr, 0), S_OK);
    IEnumWbemClassObjectPtr spEnum;
    EXPECT_EQ(spServices->ExecQuery(_bstr_t(L"WQL"), _bstr_t(L"select Version from Win32_OperatingSystem"), 0x30,
                                    nullptr, &spEnum),
              S_OK);
    IWbemClassObjectPtr spObject;
    ULONG returned = 0;
    EXPECT_EQ(spEnum->Next(20'000, 1, &spObject, &returned), S_OK);
    _variant_t value;
    EXPECT_EQ(spObject->Get(L"Version", 0, &value, nullptr, nullptr), S_OK);
    return value.bstrVal;
}

TEST_F(RegistryActivation, Locator_IsTheDoubleInEachKindOfApartment)
{
    s_pServer->SetFact("/wmi/os/version", "\"77.1.5\"");
    EXPECT_EQ(VersionByWmi(), L"77.1.5");
    OnThread(COINIT_MULTITHREADED, [] { EXPECT_EQ(VersionByWmi(), L"77.1.5"); });
    OnThread(COINIT_APARTMENTTHREADED, [] { EXPECT_EQ(VersionByWmi(), L"77.1.5"); });
}

TEST_F(RegistryActivation, Command_IsMadeRunAndExecuted)
{
    s_pServer->SetFact("/commands/SmartAdapter.Status", R"({"answer": {"i4": 3}})");
    IUnknownPtr spUnknown;
    ASSERT_EQ(
        CoCreateInstance(PlixCommandClassId, nullptr, AnyServer, IID_IUnknown, reinterpret_cast<void**>(&spUnknown)),
        S_OK);
    EXPECT_EQ(OleRun(spUnknown), S_OK);
    const CommandPtr spCommand = spUnknown;
    ASSERT_NE(spCommand, nullptr);
    _variant_t output;
    EXPECT_EQ(spCommand->Execute(_bstr_t(L"SmartAdapter.Status"), &output), S_OK);
    EXPECT_EQ(output.lVal, 3);
}

TEST_F(RegistryActivation, Notification_IsFoundByItsProgId)
{
    CLSID classId{};
    ASSERT_EQ(CLSIDFromProgID(PlixNotificationProgId, &classId), S_OK);
    IUnknownPtr spUnknown;
    ASSERT_EQ(CoCreateInstance(classId, nullptr, AnyServer, IID_IUnknown, reinterpret_cast<void**>(&spUnknown)), S_OK);
    EXPECT_NE(NotificationPtr(spUnknown), nullptr);
}

TEST_F(RegistryActivation, Locator_CrossesApartmentsAsItself)
{
    IWbemLocatorPtr spLocator;
    ASSERT_EQ(CoCreateInstance(WbemLocatorClassId, nullptr, CLSCTX_INPROC_SERVER, IID_IWbemLocator,
                               reinterpret_cast<void**>(&spLocator)),
              S_OK);
    IStream* stream = nullptr;
    ASSERT_EQ(CoMarshalInterThreadInterfaceInStream(IID_IWbemLocator, spLocator, &stream), S_OK);
    OnThread(COINIT_MULTITHREADED,
             [&]
             {
                 IWbemLocatorPtr spThere;
                 ASSERT_EQ(CoGetInterfaceAndReleaseStream(stream, IID_IWbemLocator, reinterpret_cast<void**>(&spThere)),
                           S_OK);
                 EXPECT_EQ(spThere.GetInterfacePtr(), spLocator.GetInterfacePtr());
             });
}

TEST_F(RegistryActivation, AClassThatTheServerDoesNotHave_IsNotMade)
{
    s_pServer->SetFact("/platform/registered", "false");
    IUnknownPtr spUnknown;
    EXPECT_EQ(CoCreateInstance(PlixCommandClassId, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                               reinterpret_cast<void**>(&spUnknown)),
              CLASS_E_CLASSNOTAVAILABLE);
    s_pServer->SetFact("/platform/registered", "true");
}

TEST_F(RegistryActivation, Redirections_PassActivationToTheRegistry)
{
    s_pServer->SetFact("/wmi/os/version", "\"77.1.5\"");
    const ComRedirections redirections(Activation::Registry);
    EXPECT_EQ(VersionByWmi(), L"77.1.5");
    EXPECT_THAT(Journal::Instance().Subjects("call"), testing::ElementsAre("CoCreateInstance", "CoSetProxyBlanket"));
    CLSID classId{};
    EXPECT_EQ(CLSIDFromProgID(PlixNotificationProgId, &classId), S_OK);
    EXPECT_TRUE(classId == PlixNotificationClassId);
}

TEST_F(RegistryActivation, Redirections_SwitchAClassOffAsIfItWereNotRegistered)
{
    const ComRedirections redirections(Activation::Registry);
    Facts::Instance().Merge({{"wmi", {{"registered", false}}}, {"notification", {{"registered", false}}}});
    IUnknownPtr spUnknown;
    EXPECT_EQ(CoCreateInstance(WbemLocatorClassId, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                               reinterpret_cast<void**>(&spUnknown)),
              REGDB_E_CLASSNOTREG);
    CLSID classId{};
    EXPECT_EQ(CLSIDFromProgID(PlixNotificationProgId, &classId), CO_E_CLASSSTRING);
}

// The agent and the machine are two modules, each with a C++ runtime of its own.
TEST_F(RegistryActivation, Stub_CatchesWhatASinkInAnotherModuleThrows)
{
    IClassFactory* factory = nullptr;
    ASSERT_EQ(s_pServer->ClassObject(UnsecuredApartmentClassId, IID_IClassFactory, reinterpret_cast<void**>(&factory)),
              S_OK);
    UnsecuredApartmentPtr spApartment;
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IUnsecuredApartment, reinterpret_cast<void**>(&spApartment)), S_OK);
    factory->Release();
    RecordingSink sink;
    IUnknownPtr spStub;
    ASSERT_EQ(spApartment->CreateObjectStub(&sink, &spStub), S_OK);
    const WbemObjectSinkPtr spSink = spStub;
    for (int time = 0; time != 100; ++time)
    {
        sink.m_action = []() -> HRESULT { throw _com_error(E_OUTOFMEMORY); };
        EXPECT_EQ(spSink->Indicate(0, nullptr), RPC_E_SERVERFAULT);
        sink.m_action = [] { return S_OK; };
        EXPECT_EQ(spSink->Indicate(0, nullptr), S_OK);
    }
}

TEST_F(RegistryActivation, Redirections_FindTheUnsecuredApartmentsServer)
{
    const ComRedirections redirections(Activation::Registry);
    const UnsecuredApartmentServer server;
    ASSERT_EQ(server.Result(), S_OK);
    OnThread(COINIT_MULTITHREADED,
             []
             {
                 IUnknownPtr spUnknown;
                 EXPECT_EQ(CoCreateInstance(UnsecuredApartmentClassId, nullptr, CLSCTX_LOCAL_SERVER,
                                            IID_IUnsecuredApartment, reinterpret_cast<void**>(&spUnknown)),
                           S_OK);
             });
}
} // namespace
} // namespace Simulator
