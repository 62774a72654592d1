#include "simulator/doubles/JsonVariant.h"

#include "simulator/model/LiveObjects.h"

#include <windows.h>

#include <comdef.h>

#include <gmock/gmock.h>

#include <limits>
#include <vector>

namespace Simulator
{
namespace
{
using nlohmann::json;

struct Value
{
    explicit Value(const json& fact) : m_hr(VariantFromJson(fact, m_value)) {}

    _variant_t m_value;
    HRESULT m_hr;
};

struct Expected
{
    json m_fact;
    VARTYPE m_type;
    json m_value;
};

TEST(JsonVariant, Scalars_BecomeTheirTypes)
{
    const std::vector<Expected> all = {
        {true, VT_BOOL, true},
        {3, VT_I4, 3},
        {-1, VT_I4, -1},
        {1.5, VT_R8, 1.5},
        {"text", VT_BSTR, "text"},
        {json(), VT_NULL, json()},
        {{{"bool", false}}, VT_BOOL, false},
        {{{"i2", -2}}, VT_I2, -2},
        {{{"ui1", 255}}, VT_UI1, 255},
        {{{"ui2", 65535}}, VT_UI2, 65535},
        {{{"i4", 3}}, VT_I4, 3},
        {{{"ui4", 4294967295u}}, VT_UI4, 4294967295u},
        {{{"int", 3}}, VT_INT, 3},
        {{{"uint", 3}}, VT_UINT, 3},
        {{{"i8", std::numeric_limits<std::int64_t>::min()}}, VT_I8, std::numeric_limits<std::int64_t>::min()},
        {{{"r8", 1.5}}, VT_R8, 1.5},
        {{{"bstr", "grün 大"}}, VT_BSTR, "grün 大"},
        {{{"null-bstr", true}}, VT_BSTR, json()},
        {{{"empty", true}}, VT_EMPTY, json()},
        {{{"null", true}}, VT_NULL, json()},
        {{{"null-unknown", true}}, VT_UNKNOWN, json()}};
    for (const Expected& expected : all)
    {
        const Value value(expected.m_fact);
        EXPECT_EQ(value.m_hr, S_OK) << expected.m_fact;
        EXPECT_EQ(value.m_value.vt, expected.m_type) << expected.m_fact;
        EXPECT_EQ(JsonFromVariant(value.m_value).value("value", json()), expected.m_value) << expected.m_fact;
    }
}

TEST(JsonVariant, OtherScalars_CarryTheirBits)
{
    EXPECT_EQ(Value(json{{"i1", -1}}).m_value.cVal, static_cast<char>(-1));
    EXPECT_EQ(Value(json{{"ui8", 1}}).m_value.ullVal, 1u);
    EXPECT_EQ(Value(json{{"r4", 0.5}}).m_value.fltVal, 0.5f);
    EXPECT_EQ(Value(json{{"date", 2.0}}).m_value.date, 2.0);
    EXPECT_EQ(Value(json{{"error", "0x80004005"}}).m_value.scode, E_FAIL);
}

TEST(JsonVariant, Bool_IsVariantTrue)
{
    EXPECT_EQ(Value(true).m_value.boolVal, VARIANT_TRUE);
}

TEST(JsonVariant, Text_KeepsAnEmbeddedZero)
{
    const Value value(json(std::string("a\0b", 3)));
    EXPECT_EQ(SysStringLen(value.m_value.bstrVal), 3u);
}

TEST(JsonVariant, Utf16_KeepsALoneSurrogate)
{
    const Value value(json{{"utf16", {0xD800, 65}}});
    ASSERT_EQ(value.m_hr, S_OK);
    ASSERT_EQ(SysStringLen(value.m_value.bstrVal), 2u);
    EXPECT_EQ(value.m_value.bstrVal[0], 0xD800);
}

TEST(JsonVariant, Unknown_ConvertsToNothingAndEndsWhenCleared)
{
    {
        Value value(json{{"unknown", true}});
        ASSERT_EQ(value.m_value.vt, VT_UNKNOWN);
        EXPECT_EQ(LiveObjects::Count("UnknownValue"), 1);
        VARIANT converted{};
        EXPECT_LT(VariantChangeType(&converted, &value.m_value, 0, VT_BSTR), 0);
    }
    EXPECT_EQ(LiveObjects::Count("UnknownValue"), 0);
}

TEST(JsonVariant, Arrays_HoldTheirElements)
{
    const Value bytes(json{{"ui1-array", {1, 2, 255}}});
    ASSERT_EQ(bytes.m_value.vt, VT_ARRAY | VT_UI1);
    EXPECT_EQ(bytes.m_value.parray->rgsabound[0].cElements, 3u);
    EXPECT_EQ(static_cast<std::uint8_t*>(bytes.m_value.parray->pvData)[2], 255);
    const Value numbers(json{{"i4-array", {-7}}});
    ASSERT_EQ(numbers.m_value.vt, VT_ARRAY | VT_I4);
    EXPECT_EQ(static_cast<std::int32_t*>(numbers.m_value.parray->pvData)[0], -7);
    const Value texts(json{{"bstr-array", {"a", "bc"}}});
    ASSERT_EQ(texts.m_value.vt, VT_ARRAY | VT_BSTR);
    EXPECT_STREQ(static_cast<BSTR*>(texts.m_value.parray->pvData)[1], L"bc");
    EXPECT_EQ(Value(json{{"ui1-array", json::array()}}).m_value.parray->rgsabound[0].cElements, 0u);
}

TEST(JsonVariant, Raw_IsGarbageToTheLetter)
{
    const Value value(json{{"raw", {{"vt", 4242}, {"value", 7}}}});
    EXPECT_EQ(value.m_value.vt, 4242);
    EXPECT_EQ(value.m_value.llVal, 7);
}

TEST(JsonVariant, Hr_IsReturnedAndNothingWritten)
{
    VARIANT value{};
    value.vt = VT_I4;
    value.lVal = 9;
    EXPECT_EQ(VariantFromJson({{"hr", "0x80041001"}}, value), static_cast<HRESULT>(0x80041001));
    EXPECT_EQ(value.vt, VT_I4);
    EXPECT_EQ(value.lVal, 9);
}

TEST(JsonVariant, OtherFacts_AreRefused)
{
    const std::vector<json> facts = {json::object(),
                                     json::array({1}),
                                     json{{"i4", "three"}},
                                     json{{"wide", 1}},
                                     json{{"i4", 1}, {"bstr", "two"}},
                                     json{{"raw", {{"value", 7}}}},
                                     json{{"ui1-array", 3}}};
    for (const json& fact : facts)
    {
        VARIANT value{};
        EXPECT_EQ(VariantFromJson(fact, value), E_INVALIDARG) << fact;
        EXPECT_EQ(value.vt, VT_EMPTY) << fact;
    }
}
} // namespace
} // namespace Simulator
