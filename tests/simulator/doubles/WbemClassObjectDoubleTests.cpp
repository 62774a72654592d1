#include "simulator/doubles/WbemClassObjectDouble.h"

#include "simulator/doubles/WmiStatus.h"
#include "tests/simulator/doubles/DoublesTest.h"

namespace Simulator
{
namespace
{
class WbemClassObjectDoubleTest : public DoublesTest
{
protected:
    void Make(const nlohmann::json& properties)
    {
        m_spObject.Attach(new WbemClassObjectDouble("orvikBEvnt", properties));
    }
    HRESULT Get(const wchar_t* name)
    {
        m_value.Clear();
        return m_spObject->Get(name, 0, &m_value, &m_nType, &m_nFlavor);
    }

    IWbemClassObjectPtr m_spObject;
    _variant_t m_value;
    CIMTYPE m_nType = -1;
    LONG m_nFlavor = -1;
};

TEST_F(WbemClassObjectDoubleTest, Get_ReadsAPropertyOfAnyTypeInAnyCase)
{
    Make({{"EventID", 3}, {"EventData", {{"ui1-array", {1}}}}, {"Description", "text"}});
    ASSERT_EQ(Get(L"eventid"), S_OK);
    EXPECT_EQ(m_value.lVal, 3);
    EXPECT_EQ(m_nType, CIM_SINT32);
    EXPECT_EQ(m_nFlavor, WBEM_FLAVOR_ORIGIN_LOCAL);
    ASSERT_EQ(Get(L"EventData"), S_OK);
    EXPECT_EQ(m_value.vt, VT_ARRAY | VT_UI1);
    EXPECT_EQ(m_nType, CIM_FLAG_ARRAY | CIM_UINT8);
    ASSERT_EQ(Get(L"Description"), S_OK);
    EXPECT_EQ(m_nType, CIM_STRING);
    EXPECT_EQ(LastDetails("call", "IWbemClassObject::Get"),
              nlohmann::json({{"class", "orvikBEvnt"}, {"property", "Description"}}));
}

TEST_F(WbemClassObjectDoubleTest, Class_IsASystemProperty)
{
    Make({});
    ASSERT_EQ(Get(L"__Class"), S_OK);
    EXPECT_STREQ(m_value.bstrVal, L"orvikBEvnt");
    EXPECT_EQ(m_nFlavor, WBEM_FLAVOR_ORIGIN_SYSTEM);
}

TEST_F(WbemClassObjectDoubleTest, Class_MayBeAnythingElse)
{
    Make({{"__CLASS", {{"hr", "0x80041001"}}}});
    EXPECT_EQ(Get(L"__Class"), Status(WBEM_E_FAILED));
    Make({{"__Class", {{"unknown", true}}}});
    ASSERT_EQ(Get(L"__Class"), S_OK);
    EXPECT_EQ(m_value.vt, VT_UNKNOWN);
}

TEST_F(WbemClassObjectDoubleTest, Get_OfAMissingPropertyIsNotFoundAndWritesNothing)
{
    Make(nullptr);
    m_value = 9L;
    EXPECT_EQ(m_spObject->Get(L"EventID", 0, &m_value, &m_nType, &m_nFlavor), Status(WBEM_E_NOT_FOUND));
    EXPECT_EQ(m_value.lVal, 9);
    EXPECT_EQ(m_nType, -1);
}

TEST_F(WbemClassObjectDoubleTest, Get_TakesNullForWhatIsNotWanted)
{
    Make({{"Description", "text"}, {"Thing", {{"unknown", true}}}});
    EXPECT_EQ(m_spObject->Get(L"Description", 0, nullptr, nullptr, nullptr), S_OK);
    EXPECT_EQ(m_spObject->Get(L"Thing", 0, nullptr, &m_nType, nullptr), S_OK);
    EXPECT_EQ(m_nType, CIM_OBJECT);
    EXPECT_EQ(LiveObjects::Count("UnknownValue"), 0);
}

TEST_F(WbemClassObjectDoubleTest, Get_RefusesBadParameters)
{
    Make({{"EventID", 3}});
    EXPECT_EQ(m_spObject->Get(nullptr, 0, &m_value, nullptr, nullptr), Status(WBEM_E_INVALID_PARAMETER));
    EXPECT_EQ(m_spObject->Get(L"EventID", 1, &m_value, nullptr, nullptr), Status(WBEM_E_INVALID_PARAMETER));
}

TEST_F(WbemClassObjectDoubleTest, Get_FailsByPlan)
{
    Make({{"EventID", 3}});
    CallPlan::Instance().Fail("IWbemClassObject::Get", PlannedFailure);
    EXPECT_EQ(Get(L"EventID"), PlannedFailure);
    EXPECT_EQ(Get(L"EventID"), S_OK);
}

TEST_F(WbemClassObjectDoubleTest, OtherMethods_AreNotImplemented)
{
    Make({});
    EXPECT_EQ(m_spObject->BeginEnumeration(0), E_NOTIMPL);
    EXPECT_EQ(m_spObject->GetObjectText(0, nullptr), E_NOTIMPL);
    EXPECT_EQ(CallPlan::Instance().CallCount("IWbemClassObject::GetObjectText"), 1u);
}
} // namespace
} // namespace Simulator
