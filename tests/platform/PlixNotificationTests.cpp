#include "platform/PlixNotification.h"

#include "simulator/model/CallPlan.h"
#include "simulator/model/Facts.h"
#include "simulator/model/LiveObjects.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/platform/MethodRedirection.h"
#include "tests/platform/PlatformMachine.h"

#include <gmock/gmock.h>

using Simulator::CallPlan;
using Simulator::Facts;
using Simulator::LiveObjects;
using testing::ElementsAre;

namespace
{
constexpr HRESULT g_hrPlanned = static_cast<HRESULT>(0x80041234);

using QueryFunction = HRESULT STDMETHODCALLTYPE(IUnknown*, REFIID, void**);
QueryFunction* g_query = nullptr;

HRESULT STDMETHODCALLTYPE NoNotificationInterface(IUnknown* object, REFIID iid, void** result)
{
    constexpr IID notification = {0x3ABCD024, 0x1E97, 0x48C4, {0xA7, 0xD4, 0xC1, 0x16, 0x94, 0x4A, 0x49, 0x67}};
    if (!IsEqualIID(iid, notification))
        return g_query(object, iid, result);
    *result = nullptr;
    return S_OK;
}

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

TEST_F(PlixNotificationTest, Create_ServerGivesNoObject_FailsBeforeItIsRun)
{
    IUnknownPtr spNotification;
    const Simulator::Redirection<decltype(CoCreateInstance)> redirection("CoCreateInstance", &CreateNoObject);
    EXPECT_EQ(CreatePlixNotification(spNotification), E_POINTER);
    EXPECT_FALSE(spNotification);
    EXPECT_THAT(Calls(), ElementsAre("CLSIDFromProgID"));
}

TEST_F(PlixNotificationTest, Create_ObjectGivesNoInterface_FailsAndHoldsNothing)
{
    IUnknownPtr spNotification;
    ASSERT_EQ(CreatePlixNotification(spNotification), S_OK);
    const MethodRedirection redirection(spNotification.GetInterfacePtr(), QueryInterfaceMethod,
                                        &NoNotificationInterface);
    g_query = redirection.Original<QueryFunction>();
    EXPECT_EQ(CreatePlixNotification(spNotification), E_POINTER);
    EXPECT_FALSE(spNotification);
    EXPECT_EQ(LiveObjects::Count(), 0);
}
