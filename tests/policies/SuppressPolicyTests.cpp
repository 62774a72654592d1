#include "shared/SettingsControl.h"

#include "PolicyTable.h"
#include "tests/support/PolicyKey.h"

#include <gtest/gtest.h>

#include <string_view>

namespace
{
using TestSupport::PolicyKey;
using TestSupport::SuppressKeys;

bool IsOn(const TextSwitch& row)
{
    return CSettingsControl::GetRegistrySetting(row.m_pValue);
}

// The switches of the policy table as the agent's code reads them.
TEST(SuppressPolicies, EnabledAndDisabledData_AreOnAndOff)
{
    for (const TextSwitch& row : g_textSwitches)
    {
        PolicyKey key(row.m_pKey);
        key.Text(row.m_pValue, row.m_pOn);
        EXPECT_TRUE(IsOn(row)) << testing::PrintToString(row.m_pValue);
        key.Text(row.m_pValue, row.m_pOff);
        EXPECT_FALSE(IsOn(row)) << testing::PrintToString(row.m_pValue);
    }
}

TEST(SuppressPolicies, NoKeyOrNoData_IsTheDefault)
{
    for (const TextSwitch& row : g_textSwitches)
    {
        EXPECT_EQ(IsOn(row), row.m_bDefault) << testing::PrintToString(row.m_pValue);
        const PolicyKey key(row.m_pKey);
        EXPECT_EQ(IsOn(row), row.m_bDefault) << testing::PrintToString(row.m_pValue);
    }
}

TEST(SuppressPolicies, KeyOfTheTable_GoesBeforeAllOtherPlaces)
{
    for (const TextSwitch& row : g_textSwitches)
    {
        for (const wchar_t* place : {SuppressKeys[1], SuppressKeys[2], SuppressKeys[3]})
        {
            PolicyKey other(place);
            other.Text(row.m_pValue, row.m_pOn);
            EXPECT_TRUE(IsOn(row)) << testing::PrintToString(place);
            const PolicyKey key(row.m_pKey);
            EXPECT_FALSE(IsOn(row)) << testing::PrintToString(place);
        }
    }
}

TEST(SuppressPolicies, Table_HoldsTheSevenSwitchesOfTheFirstPlace)
{
    EXPECT_EQ(std::size(g_textSwitches), 7u);
    for (const TextSwitch& row : g_textSwitches)
        EXPECT_STREQ(row.m_pKey, SuppressKeys[0]);
}

// What is read with every event is what is in that place; the log's policies are read once.
TEST(SuppressPolicies, Effect_IsThatOfTheKey)
{
    for (const PolicyRow& row : g_policies)
        EXPECT_EQ(row.m_bEffectAtStart, std::wstring_view(row.m_pKey) != SuppressKeys[0]);
}
} // namespace
