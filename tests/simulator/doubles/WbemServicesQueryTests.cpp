#include "simulator/doubles/WbemServicesDouble.h"

#include "simulator/doubles/WmiStatus.h"
#include "tests/simulator/doubles/DoublesTest.h"

namespace Simulator
{
namespace
{
constexpr wchar_t VersionQuery[] = L"select Version from Win32_OperatingSystem";

class WbemServicesQueryTest : public DoublesTest
{
protected:
    HRESULT Query(const wchar_t* text, const wchar_t* language = L"WQL")
    {
        m_spEnum = nullptr;
        return m_spServices->ExecQuery(_bstr_t(language), _bstr_t(text), 0x30, nullptr, &m_spEnum);
    }
    HRESULT Next()
    {
        m_spObject = nullptr;
        return m_spEnum->Next(20'000, 1, &m_spObject, &m_nReturned);
    }
    HRESULT Get(const wchar_t* name)
    {
        m_value.Clear();
        return m_spObject->Get(name, 0, &m_value, nullptr, nullptr);
    }

    IWbemServicesPtr m_spServices = Connect(L"\\\\.\\root\\cimv2");
    IEnumWbemClassObjectPtr m_spEnum;
    IWbemClassObjectPtr m_spObject;
    ULONG m_nReturned = 77;
    _variant_t m_value;
};

TEST_F(WbemServicesQueryTest, Version_IsTheFact)
{
    Facts::Instance().Set("/wmi/os/version", "10.0.19045");
    ASSERT_EQ(Query(VersionQuery), S_OK);
    EXPECT_EQ(LastDetails("call", "IWbemServices::ExecQuery"),
              nlohmann::json({{"language", "WQL"},
                              {"query", "select Version from Win32_OperatingSystem"},
                              {"flags", 0x30},
                              {"context", false},
                              {"apartment", "sta"}}));
    ASSERT_EQ(Next(), S_OK);
    EXPECT_EQ(m_nReturned, 1u);
    EXPECT_EQ(LastDetails("call", "IEnumWbemClassObject::Next"), nlohmann::json({{"timeout", 20'000}, {"count", 1}}));
    ASSERT_EQ(Get(L"Version"), S_OK);
    EXPECT_STREQ(m_value.bstrVal, L"10.0.19045");
    EXPECT_EQ(Next(), Status(WBEM_S_FALSE));
    EXPECT_EQ(m_nReturned, 0u);
    EXPECT_EQ(m_spObject, nullptr);
}

TEST_F(WbemServicesQueryTest, Version_IsTheSystemsOwnByDefault)
{
    ASSERT_EQ(Query(VersionQuery), S_OK);
    ASSERT_EQ(Next(), S_OK);
    ASSERT_EQ(Get(L"Version"), S_OK);
    int major = 0;
    int minor = 0;
    int build = 0;
    EXPECT_EQ(swscanf(m_value.bstrVal, L"%d.%d.%d", &major, &minor, &build), 3);
    EXPECT_GE(major, 6);
    EXPECT_GE(build, 7601);
}

TEST_F(WbemServicesQueryTest, Version_MayBeOfAnyType)
{
    Facts::Instance().Set("/wmi/os/version", {{"i4", 10}});
    ASSERT_EQ(Query(VersionQuery), S_OK);
    ASSERT_EQ(Next(), S_OK);
    ASSERT_EQ(Get(L"Version"), S_OK);
    EXPECT_EQ(m_value.vt, VT_I4);
}

TEST_F(WbemServicesQueryTest, Version_MayBeMissing)
{
    Facts::Instance().Set("/wmi/os/version", {{"missing", true}});
    ASSERT_EQ(Query(VersionQuery), S_OK);
    ASSERT_EQ(Next(), S_OK);
    EXPECT_EQ(Get(L"Version"), Status(WBEM_E_NOT_FOUND));
}

TEST_F(WbemServicesQueryTest, Result_MayBeEmpty)
{
    Facts::Instance().Set("/wmi/os/instances", 0);
    ASSERT_EQ(Query(VersionQuery), S_OK);
    EXPECT_EQ(Next(), Status(WBEM_S_FALSE));
}

TEST_F(WbemServicesQueryTest, Classes_AreFacts)
{
    Facts::Instance().Set("/wmi/classes/Some_Class", {{{"A", 1}, {"B", 2}}, {{"A", 3}}});
    ASSERT_EQ(Query(L"SELECT a FROM some_class"), S_OK);
    ASSERT_EQ(Next(), S_OK);
    ASSERT_EQ(Get(L"A"), S_OK);
    EXPECT_EQ(m_value.lVal, 1);
    EXPECT_EQ(Get(L"B"), Status(WBEM_E_NOT_FOUND));
    ASSERT_EQ(Next(), S_OK);
    ASSERT_EQ(Get(L"A"), S_OK);
    EXPECT_EQ(m_value.lVal, 3);
    EXPECT_EQ(Next(), Status(WBEM_S_FALSE));
}

TEST_F(WbemServicesQueryTest, Query_IsRefusedForWhatIsWrongWithIt)
{
    EXPECT_EQ(Query(L"select Version of Win32_OperatingSystem"), Status(WBEM_E_INVALID_QUERY));
    EXPECT_EQ(m_spEnum, nullptr);
    EXPECT_EQ(Query(L"select Version from Win32_Nothing"), Status(WBEM_E_INVALID_CLASS));
    EXPECT_EQ(Query(VersionQuery, L"SQL"), Status(WBEM_E_INVALID_QUERY_TYPE));
    EXPECT_EQ(m_spServices->ExecQuery(nullptr, _bstr_t(VersionQuery), 0, nullptr, &m_spEnum),
              Status(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(m_spServices->ExecQuery(_bstr_t(L"WQL"), nullptr, 0, nullptr, &m_spEnum),
              Status(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(m_spServices->ExecQuery(_bstr_t(L"WQL"), _bstr_t(VersionQuery), 0, nullptr, nullptr),
              Status(WBEM_E_INVALID_PARAMETER));
}

TEST_F(WbemServicesQueryTest, OperatingSystem_IsInItsNamespaceOnly)
{
    m_spServices = Connect(L"ROOT\\WMI");
    EXPECT_EQ(Query(VersionQuery), Status(WBEM_E_INVALID_CLASS));
}

TEST_F(WbemServicesQueryTest, Query_FailsByPlan)
{
    CallPlan::Instance().Fail("IWbemServices::ExecQuery", PlannedFailure);
    EXPECT_EQ(Query(VersionQuery), PlannedFailure);
    EXPECT_EQ(m_spEnum, nullptr);
}

TEST_F(WbemServicesQueryTest, Next_FailsByPlan)
{
    ASSERT_EQ(Query(VersionQuery), S_OK);
    CallPlan::Instance().Fail("IEnumWbemClassObject::Next", PlannedFailure);
    EXPECT_EQ(Next(), PlannedFailure);
    EXPECT_EQ(m_nReturned, 0u);
    EXPECT_EQ(Next(), S_OK);
}

TEST_F(WbemServicesQueryTest, Next_MayTimeOut)
{
    Facts::Instance().Set("/wmi/next/timed-out", true);
    ASSERT_EQ(Query(VersionQuery), S_OK);
    EXPECT_EQ(Next(), Status(WBEM_S_TIMEDOUT));
    EXPECT_EQ(m_nReturned, 0u);
    EXPECT_EQ(m_spObject, nullptr);
}

TEST_F(WbemServicesQueryTest, Next_GivesAsManyAsAreLeft)
{
    Facts::Instance().Set("/wmi/classes/Some_Class", {{{"A", 1}}, {{"A", 2}}, {{"A", 3}}});
    ASSERT_EQ(Query(L"SELECT * FROM Some_Class"), S_OK);
    IWbemClassObject* objects[2] = {};
    EXPECT_EQ(m_spEnum->Next(0, 2, objects, &m_nReturned), S_OK);
    EXPECT_EQ(m_nReturned, 2u);
    objects[0]->Release();
    objects[1]->Release();
    EXPECT_EQ(m_spEnum->Next(0, 2, objects, &m_nReturned), Status(WBEM_S_FALSE));
    EXPECT_EQ(m_nReturned, 1u);
    objects[0]->Release();
    EXPECT_EQ(m_spEnum->Next(0, 1, nullptr, &m_nReturned), Status(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(m_spEnum->Next(0, 1, objects, nullptr), Status(WBEM_E_INVALID_PARAMETER));
}

TEST_F(WbemServicesQueryTest, OtherMethods_AreJournalledAndNotImplemented)
{
    EXPECT_EQ(m_spServices->QueryObjectSink(0, nullptr), E_NOTIMPL);
    EXPECT_EQ(LastDetails("call", "IWbemServices::QueryObjectSink"), nlohmann::json({{"not-implemented", true}}));
    CallPlan::Instance().Fail("IWbemServices::OpenNamespace", PlannedFailure);
    EXPECT_EQ(m_spServices->OpenNamespace(nullptr, 0, nullptr, nullptr, nullptr), PlannedFailure);
}
} // namespace
} // namespace Simulator
