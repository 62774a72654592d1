#include "platform/PlixNotification.h"

#include "simulator/model/CallPlan.h"
#include "simulator/model/Facts.h"
#include "simulator/model/LiveObjects.h"
#include "tests/platform/PlatformMachine.h"

#include <gmock/gmock.h>

using Simulator::CallPlan;
using Simulator::Facts;
using Simulator::LiveObjects;
using testing::ElementsAre;

namespace
{
constexpr HRESULT g_hrPlanned = static_cast<HRESULT>(0x80041234);

class PlixNotificationTest : public PlatformMachine
{
};
} // namespace

TEST_F(PlixNotificationTest, Create_Always_FindsMakesAndRunsInThisOrder)
{
    IUnknownPtr spNotification;
    EXPECT_EQ(CreatePlixNotification(spNotification), S_OK);
    EXPECT_TRUE(spNotification);
    EXPECT_THAT(Calls(), ElementsAre("CLSIDFromProgID", "CoCreateInstance", "OleRun"));
    EXPECT_EQ(CallDetails("CLSIDFromProgID")["progid"], "orvikplixutils.orvikPlixNotification");
    EXPECT_EQ(CallDetails("CoCreateInstance")["context"], 23);
    EXPECT_EQ(CallDetails("CoCreateInstance")["iid"], "{00000000-0000-0000-C000-000000000046}");
}

TEST_F(PlixNotificationTest, Create_Always_AsksForNotificationInterface)
{
    IUnknownPtr spNotification;
    EXPECT_EQ(CreatePlixNotification(spNotification), S_OK);
    EXPECT_EQ(CallDetails("PlixNotification::QueryInterface")["iid"], "{3ABCD024-1E97-48C4-A7D4-C116944A4967}");
}

TEST_F(PlixNotificationTest, Create_NotRegistered_GivesThatCodeAndNullSlot)
{
    IUnknownPtr spNotification;
    ASSERT_EQ(CreatePlixNotification(spNotification), S_OK);
    Facts::Instance().Set("/notification/registered", false);
    EXPECT_EQ(CreatePlixNotification(spNotification), CO_E_CLASSSTRING);
    EXPECT_FALSE(spNotification);
}

TEST_F(PlixNotificationTest, Create_AStepFails_GivesItsCodeNullSlotAndNoReference)
{
    for (const char* step : {"CLSIDFromProgID", "CoCreateInstance", "OleRun", "PlixNotification::QueryInterface"})
    {
        IUnknownPtr spNotification;
        CallPlan::Instance().Reset();
        CallPlan::Instance().Fail(step, g_hrPlanned);
        EXPECT_EQ(CreatePlixNotification(spNotification), g_hrPlanned) << step;
        EXPECT_FALSE(spNotification) << step;
        EXPECT_EQ(LiveObjects::Count(), 0) << step;
    }
}
