#include "platform/WmiNamespace.h"
#include "platform/WmiQuery.h"
#include "simulator/model/CallPlan.h"
#include "simulator/model/Facts.h"
#include "simulator/model/LiveObjects.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/platform/PlatformMachine.h"
#include "tests/support/BstrLedger.h"

#include <gmock/gmock.h>

using Simulator::CallPlan;
using Simulator::Facts;
using Simulator::LiveObjects;

namespace
{
constexpr HRESULT g_hrTypeMismatch = static_cast<HRESULT>(0x80041005);

HRESULT WINAPI NoMemoryToConvert(VARIANTARG*, VARIANTARG*, USHORT, VARTYPE)
{
    return E_OUTOFMEMORY;
}

// Reading "Version" of the first operating system, whose value each test chooses.
class WmiPropertyTest : public PlatformMachine
{
protected:
    HRESULT Read(const nlohmann::json& value)
    {
        Facts::Instance().Set("/wmi/os/version", value);
        WmiQuery query(NamespacePath(WmiNamespace::Cimv2));
        EXPECT_EQ(query.Query(L"select Version from Win32_OperatingSystem", 0x30), WBEM_S_NO_ERROR);
        m_strText = L"before";
        return query.GetPropertyText(L"Version", m_strText);
    }

    std::wstring m_strText;
};
} // namespace

TEST_F(WmiPropertyTest, Get_Text_IsCopied)
{
    EXPECT_EQ(Read("10.0.19045"), S_OK);
    EXPECT_EQ(m_strText, L"10.0.19045");
    EXPECT_EQ(CallDetails("IWbemClassObject::Get")["property"], "Version");
}

TEST_F(WmiPropertyTest, Get_EmptyOrNullText_IsEmpty)
{
    EXPECT_EQ(Read(""), S_OK);
    EXPECT_EQ(m_strText, L"");
    EXPECT_EQ(Read({{"null-bstr", true}}), S_OK);
    EXPECT_EQ(m_strText, L"");
}

TEST_F(WmiPropertyTest, Get_TextBehindEmbeddedZero_IsLeftOut)
{
    EXPECT_EQ(Read({{"utf16", {'1', '0', 0, '9'}}}), S_OK);
    EXPECT_EQ(m_strText, L"10");
}

TEST_F(WmiPropertyTest, Get_Number_IsDecimalText)
{
    const std::pair<nlohmann::json, const wchar_t*> numbers[] = {
        {{{"i4", 19045}}, L"19045"},   {{{"i4", -1}}, L"-1"},    {{{"ui4", 4294967295u}}, L"4294967295"},
        {{{"i2", -32768}}, L"-32768"}, {{{"ui1", 255}}, L"255"}, {{{"i8", 9007199254740993}}, L"9007199254740993"},
        {{{"ui2", 65535}}, L"65535"},  {{{"r8", 10}}, L"10"},
    };
    for (const auto& [value, text] : numbers)
    {
        EXPECT_EQ(Read(value), S_OK) << value.dump();
        EXPECT_EQ(m_strText, text) << value.dump();
    }
}

TEST_F(WmiPropertyTest, Get_EmptyValue_IsEmptyText)
{
    EXPECT_EQ(Read({{"empty", true}}), S_OK);
    EXPECT_EQ(m_strText, L"");
}

TEST_F(WmiPropertyTest, Get_ValueWithoutText_IsTypeMismatch)
{
    for (const nlohmann::json& value :
         {nlohmann::json{{"unknown", true}}, nlohmann::json{{"null", true}}, nlohmann::json{{"i4-array", {1, 2}}}})
    {
        EXPECT_EQ(Read(value), g_hrTypeMismatch) << value.dump();
        EXPECT_EQ(m_strText, L"before") << value.dump();
    }
    EXPECT_EQ(LiveObjects::Count("UnknownValue"), 0);
}

TEST_F(WmiPropertyTest, Get_GarbageType_FailsAndLeavesTextAlone)
{
    EXPECT_EQ(Read({{"raw", {{"vt", 4242}, {"value", 7}}}}), DISP_E_BADVARTYPE);
    EXPECT_EQ(m_strText, L"before");
}

TEST_F(WmiPropertyTest, Get_NoMemoryForTheConversion_GivesThatCodeAndLeavesTextAlone)
{
    const Simulator::Redirection<decltype(VariantChangeType)> noMemory("VariantChangeType", &NoMemoryToConvert);
    EXPECT_EQ(Read({{"i4", 7}}), E_OUTOFMEMORY);
    EXPECT_EQ(m_strText, L"before");
}

TEST_F(WmiPropertyTest, Get_PropertyMissing_GivesWmisCode)
{
    EXPECT_EQ(Read({{"missing", true}}), static_cast<HRESULT>(WBEM_E_NOT_FOUND));
    EXPECT_EQ(m_strText, L"before");
}

TEST_F(WmiPropertyTest, Get_WmiFails_GivesItsCode)
{
    CallPlan::Instance().Fail("IWbemClassObject::Get", E_ACCESSDENIED);
    EXPECT_EQ(Read("10.0"), E_ACCESSDENIED);
    EXPECT_EQ(m_strText, L"before");
}

TEST_F(WmiPropertyTest, Get_WithoutObject_IsNotFound)
{
    const WmiQuery query(NamespacePath(WmiNamespace::Cimv2));
    std::wstring text = L"before";
    EXPECT_EQ(query.GetPropertyText(L"Version", text), static_cast<HRESULT>(WBEM_E_NOT_FOUND));
    EXPECT_EQ(text, L"before");
}

TEST_F(WmiPropertyTest, Get_AnyValue_GivesEveryStringBack)
{
    EXPECT_EQ(Read("the query language is kept from now on"), S_OK);
    const TestSupport::BstrLedger ledger;
    (void)Read("10.0.19045");
    (void)Read({{"i4", 7}});
    (void)Read({{"unknown", true}});
    (void)Read({{"bstr-array", {"a", "b"}}});
    EXPECT_GT(ledger.Allocations(), 0u);
    EXPECT_THAT(ledger.LiveTexts(), testing::IsEmpty());
}
