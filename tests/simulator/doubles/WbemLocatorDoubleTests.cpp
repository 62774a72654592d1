#include "simulator/doubles/WbemLocatorDouble.h"

#include "simulator/doubles/WmiStatus.h"
#include "tests/simulator/doubles/DoublesTest.h"

namespace Simulator
{
namespace
{
class WbemLocatorDoubleTest : public DoublesTest
{
protected:
    HRESULT ConnectServer(const wchar_t* path)
    {
        return m_spLocator->ConnectServer(path != nullptr ? _bstr_t(path).GetBSTR() : nullptr, nullptr, nullptr,
                                          nullptr, 0, nullptr, nullptr, &m_spServices);
    }

    const IWbemLocatorPtr m_spLocator{new WbemLocatorDouble, false};
    IWbemServicesPtr m_spServices;
};

TEST_F(WbemLocatorDoubleTest, ConnectServer_GivesServicesWithOneReference)
{
    EXPECT_EQ(ConnectServer(L"ROOT\\WMI"), S_OK);
    ASSERT_NE(m_spServices, nullptr);
    EXPECT_EQ(LiveObjects::Count("WbemServices"), 1);
    EXPECT_EQ(m_spServices->AddRef(), 2u);
    EXPECT_EQ(m_spServices->Release(), 1u);
}

TEST_F(WbemLocatorDoubleTest, ConnectServer_JournalsEachParameter)
{
    EXPECT_EQ(m_spLocator->ConnectServer(_bstr_t(L"\\\\.\\root\\cimv2"), _bstr_t(L"u"), _bstr_t(L"p"), _bstr_t(L"l"),
                                         128, _bstr_t(L"a"), nullptr, &m_spServices),
              S_OK);
    EXPECT_EQ(LastDetails("call", "IWbemLocator::ConnectServer"), nlohmann::json({{"namespace", "\\\\.\\root\\cimv2"},
                                                                                  {"user", "u"},
                                                                                  {"password", "p"},
                                                                                  {"locale", "l"},
                                                                                  {"flags", 128},
                                                                                  {"authority", "a"},
                                                                                  {"context", false}}));
    m_spServices = nullptr;
    EXPECT_EQ(ConnectServer(L"ROOT\\WMI"), S_OK);
    EXPECT_EQ(LastDetails("call", "IWbemLocator::ConnectServer").at("user"), nullptr);
}

TEST_F(WbemLocatorDoubleTest, ConnectServer_RefusesAnUnknownNamespace)
{
    for (const wchar_t* path : {L"ROOT\\Nowhere", L"ROOT\\\\WMI", L"", L"\\\\.\\root\\"})
    {
        EXPECT_EQ(ConnectServer(path), Status(WBEM_E_INVALID_NAMESPACE)) << path;
        EXPECT_EQ(m_spServices, nullptr);
    }
}

TEST_F(WbemLocatorDoubleTest, ConnectServer_RefusesNullParameters)
{
    EXPECT_EQ(ConnectServer(nullptr), Status(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(
        m_spLocator->ConnectServer(_bstr_t(L"ROOT\\WMI"), nullptr, nullptr, nullptr, 0, nullptr, nullptr, nullptr),
        Status(WBEM_E_INVALID_PARAMETER));
}

TEST_F(WbemLocatorDoubleTest, ConnectServer_FailsByPlanAndClearsTheResult)
{
    CallPlan::Instance().Fail("IWbemLocator::ConnectServer", PlannedFailure);
    auto* services = reinterpret_cast<IWbemServices*>(this);
    EXPECT_EQ(
        m_spLocator->ConnectServer(_bstr_t(L"ROOT\\WMI"), nullptr, nullptr, nullptr, 0, nullptr, nullptr, &services),
        PlannedFailure);
    EXPECT_EQ(services, nullptr);
}
} // namespace
} // namespace Simulator
