#include "res/Resource.h"
#include "tests/res/AgentModule.h"

#include <gtest/gtest.h>

namespace ResourceTests
{

namespace
{

TEST(MenuAndAccelerators, Menu505_IsThereInEnglishAndLoads)
{
    const CAgentModule agent;
    EXPECT_EQ(agent.Languages(TypeNumber(RT_MENU), 505), std::vector<WORD>{English});
    const HMENU menu = LoadMenuW(agent.Handle(), MAKEINTRESOURCEW(505));
    ASSERT_NE(menu, nullptr);
    EXPECT_EQ(GetMenuItemCount(menu), 1);
    EXPECT_EQ(GetMenuItemID(GetSubMenu(menu, 0), 0), static_cast<UINT>(IDM_EXIT));
    DestroyMenu(menu);
}

TEST(MenuAndAccelerators, Accelerators505_AreThereInEnglishAndLoad)
{
    const CAgentModule agent;
    EXPECT_EQ(agent.Languages(TypeNumber(RT_ACCELERATOR), 505), std::vector<WORD>{English});
    const HACCEL table = LoadAcceleratorsW(agent.Handle(), MAKEINTRESOURCEW(505));
    ASSERT_NE(table, nullptr);
    ACCEL accelerator = {};
    EXPECT_EQ(CopyAcceleratorTableW(table, nullptr, 0), 1);
    EXPECT_EQ(CopyAcceleratorTableW(table, &accelerator, 1), 1);
    EXPECT_EQ(accelerator.cmd, IDM_EXIT);
    DestroyAcceleratorTable(table);
}

} // namespace

} // namespace ResourceTests
