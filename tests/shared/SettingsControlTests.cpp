#include "shared/SettingsControl.h"

#include "tests/support/HandleCount.h"
#include "tests/support/LogCapture.h"
#include "tests/support/PolicyKey.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace
{
using namespace TestSupport;
using testing::ElementsAre;

constexpr const wchar_t* g_name = L"SuppressSmartAdapterNotifications";

bool IsOn()
{
    return CSettingsControl::GetRegistrySetting(g_name);
}

class SuppressValue : public testing::Test
{
protected:
    // Whether this data turns the policy on.
    bool IsOnWith(DWORD type, std::wstring_view characters) { return IsOnWith(type, BytesOf(characters)); }
    bool IsOnWith(DWORD type, const std::vector<unsigned char>& bytes)
    {
        m_key.Raw(g_name, type, bytes);
        return IsOn();
    }

    PolicyKey m_key{SuppressKeys[0]};
};

constexpr std::wstring_view g_true(L"true\0", 5);

TEST_F(SuppressValue, TrueInAnyCase_IsOn)
{
    for (const wchar_t* text : {L"true", L"True", L"TRUE", L"tRuE"})
    {
        m_key.Text(g_name, text);
        EXPECT_TRUE(IsOn()) << text;
    }
}

TEST_F(SuppressValue, OtherTexts_AreOff)
{
    for (const wchar_t* text : {L"1", L"yes", L"false", L"", L" true", L"true ", L"truee", L"tru", L"\u0442rue"})
    {
        m_key.Text(g_name, text);
        EXPECT_FALSE(IsOn()) << text;
    }
}

TEST_F(SuppressValue, ExpandableString_CountsAsText)
{
    EXPECT_TRUE(IsOnWith(REG_EXPAND_SZ, g_true));
}

TEST_F(SuppressValue, OtherTypes_AreOff)
{
    for (const DWORD type : {REG_NONE, REG_BINARY, REG_DWORD, REG_MULTI_SZ, REG_QWORD, REG_LINK})
        EXPECT_FALSE(IsOnWith(type, g_true)) << type;
}

TEST_F(SuppressValue, NumberOne_IsOff)
{
    m_key.Number(g_name, 1);
    EXPECT_FALSE(IsOn());
}

TEST_F(SuppressValue, MissingTerminator_IsOff)
{
    EXPECT_FALSE(IsOnWith(REG_SZ, L"true"));
    EXPECT_FALSE(IsOnWith(REG_EXPAND_SZ, L"true"));
    EXPECT_FALSE(IsOnWith(REG_SZ, std::wstring_view(L"true\0x", 6)));
}

TEST_F(SuppressValue, OddLength_IsOff)
{
    auto bytes = BytesOf(g_true);
    bytes.push_back(0);
    EXPECT_FALSE(IsOnWith(REG_SZ, bytes));
    bytes.resize(bytes.size() - 2);
    EXPECT_FALSE(IsOnWith(REG_SZ, bytes));
    bytes.resize(1);
    EXPECT_FALSE(IsOnWith(REG_SZ, bytes));
}

TEST_F(SuppressValue, NoData_IsOff)
{
    EXPECT_FALSE(IsOnWith(REG_SZ, L""));
}

TEST_F(SuppressValue, FurtherTerminators_AreAllowed)
{
    EXPECT_TRUE(IsOnWith(REG_SZ, std::wstring_view(L"true\0\0\0", 7)));
    EXPECT_TRUE(IsOnWith(REG_SZ, std::wstring_view(L"true\0junk\0", 10))) << "the text ends at the first";
}

TEST_F(SuppressValue, DataOf520Bytes_IsReadAndMoreIsOff)
{
    std::wstring text(g_true);
    text.resize(260, L'\0');
    EXPECT_TRUE(IsOnWith(REG_SZ, text));
    text.push_back(L'\0');
    EXPECT_FALSE(IsOnWith(REG_SZ, text));
    EXPECT_FALSE(IsOnWith(REG_SZ, std::wstring(100'000, L't')));
}

TEST_F(SuppressValue, MissingValue_IsOff)
{
    EXPECT_FALSE(IsOn());
}

TEST_F(SuppressValue, AnotherName_IsNotRead)
{
    m_key.Text(L"SuppressUsbCNotifications", L"true");
    EXPECT_FALSE(IsOn());
}

TEST_F(SuppressValue, Change_IsSeenAtTheNextCall)
{
    for (int i = 0; i < 3; ++i)
    {
        m_key.Text(g_name, L"true");
        EXPECT_TRUE(IsOn());
        m_key.Text(g_name, L"false");
        EXPECT_FALSE(IsOn());
    }
}

TEST(SuppressAll, ItsOwnValueOnly_IsAsked)
{
    PolicyKey key(SuppressKeys[0]);
    EXPECT_FALSE(AreAllNotificationsSuppressed());
    key.Text(L"SuppressAllLoggings", L"true");
    EXPECT_FALSE(AreAllNotificationsSuppressed());
    key.Text(L"SuppressAllNotifications", L"true");
    EXPECT_TRUE(AreAllNotificationsSuppressed());
}

// What the log says on the way to each location, with only that location there; index 4 stands for none.
const std::vector<std::wstring> g_searches[] = {
    {L"Verbose|Found in Orvik, native location"},
    {L"Verbose|Try Orvik WOW", L"Verbose|Found in WOW Orvik"},
    {L"Verbose|Try Orvik WOW", L"Verbose|Found in native, Brannock-Vale location"},
    {L"Verbose|Try Orvik WOW", L"Verbose|Try wow", L"Verbose|Found in WOW, Brannock-Vale location."},
    {L"Verbose|Try Orvik WOW", L"Verbose|Try wow"},
};

class PolicyLocations : public testing::TestWithParam<unsigned>
{
};

// Every set of existing locations, as bits: the first one decides, whatever the others hold.
TEST_P(PolicyLocations, FirstThatExists_IsTheOnlyOneConsulted)
{
    unsigned first = 4;
    for (unsigned location = 4; location-- > 0;)
    {
        if ((GetParam() >> location & 1) != 0)
            first = location;
    }
    for (const bool inFirst : {true, false})
    {
        std::optional<PolicyKey> keys[4];
        for (unsigned location = 0; location < 4; ++location)
        {
            if ((GetParam() >> location & 1) == 0)
                continue;
            keys[location].emplace(SuppressKeys[location]);
            if ((location == first) == inFirst)
                keys[location]->Text(g_name, L"true");
        }
        ClearLog();
        EXPECT_EQ(IsOn(), inFirst && first != 4);
        EXPECT_EQ(LogLines("CSettingsControl::GetRegistrySetting"), g_searches[first]);
        EXPECT_EQ(LogRecords().size(), g_searches[first].size());
    }
}

INSTANTIATE_TEST_SUITE_P(AllSets, PolicyLocations, testing::Range(0u, 16u));
} // namespace
