#include "platform/WmiNamespace.h"
#include "platform/WmiQuery.h"
#include "simulator/model/LiveObjects.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/platform/MethodRedirection.h"
#include "tests/platform/PlatformMachine.h"

#include <gmock/gmock.h>

using Simulator::LiveObjects;

namespace
{
constexpr HRESULT g_hrNotInitialized = static_cast<HRESULT>(0x80041014);

HRESULT STDMETHODCALLTYPE NoServices(IWbemLocator*, BSTR, BSTR, BSTR, BSTR, long, BSTR, IWbemContext*,
                                     IWbemServices** services)
{
    *services = nullptr;
    return S_OK;
}

HRESULT STDMETHODCALLTYPE NoEnumerator(IWbemServices*, BSTR, BSTR, long, IWbemContext*,
                                       IEnumWbemClassObject** enumerator)
{
    *enumerator = nullptr;
    return S_OK;
}

IWbemLocatorPtr NewLocator()
{
    IWbemLocatorPtr spLocator;
    EXPECT_EQ(CoCreateInstance(__uuidof(WbemLocator), nullptr, CLSCTX_INPROC_SERVER, __uuidof(IWbemLocator),
                               reinterpret_cast<void**>(&spLocator)),
              S_OK);
    return spLocator;
}

IWbemServicesPtr NewServices()
{
    IWbemServicesPtr spServices;
    EXPECT_EQ(NewLocator()->ConnectServer(_bstr_t(NamespacePath(WmiNamespace::Cimv2)), nullptr, nullptr, nullptr, 0,
                                          nullptr, nullptr, &spServices),
              S_OK);
    return spServices;
}

// WMI says that all is well and gives nothing.
class WmiEmptyAnswerTest : public PlatformMachine
{
protected:
    WmiQuery m_query{NamespacePath(WmiNamespace::Cimv2)};
};
} // namespace

TEST_F(WmiEmptyAnswerTest, Connect_NoLocator_Fails)
{
    const Simulator::Redirection<decltype(CoCreateInstance)> redirection("CoCreateInstance", &CreateNoObject);
    EXPECT_EQ(m_query.Connect(NamespacePath(WmiNamespace::Cimv2)), E_POINTER);
    EXPECT_EQ(m_query.Query(L"select Version from Win32_OperatingSystem", 0x30), g_hrNotInitialized);
    EXPECT_EQ(LiveObjects::Count(), 0);
}

TEST_F(WmiEmptyAnswerTest, Connect_NoServices_FailsBeforeTheirSettings)
{
    const MethodRedirection redirection(NewLocator().GetInterfacePtr(), &IWbemLocator::ConnectServer, &NoServices);
    StartJournal();
    EXPECT_EQ(m_query.Connect(NamespacePath(WmiNamespace::Cimv2)), E_POINTER);
    EXPECT_THAT(Calls(), testing::ElementsAre("CoCreateInstance"));
    EXPECT_EQ(m_query.Query(L"select Version from Win32_OperatingSystem", 0x30), g_hrNotInitialized);
}

TEST_F(WmiEmptyAnswerTest, Query_NoEnumerator_IsInvalidClass)
{
    const MethodRedirection redirection(NewServices().GetInterfacePtr(), &IWbemServices::ExecQuery, &NoEnumerator);
    EXPECT_EQ(m_query.Query(L"select Version from Win32_OperatingSystem", 0x30),
              static_cast<HRESULT>(WBEM_E_INVALID_CLASS));
}
