#include "tests/wmievents/HubProbe.h"

#include "wmievents/WmiEventSink.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>

using Notifications::OrvikWmiEvents::BiosEventCallbacks;
using Notifications::OrvikWmiEvents::FirstWord;
using Tests::HubProbe;

TEST(EventCallbacks, NothingSet_NotUsableAndNothingCalled)
{
    const BiosEventCallbacks callbacks;
    EXPECT_FALSE(callbacks.IsUsable());
    callbacks.Dispatch(S_OK, 21, nullptr);
}

TEST(EventCallbacks, PlainWithoutOwner_NotUsable)
{
    const BiosEventCallbacks callbacks{HubProbe::PlainHandler(), nullptr, nullptr};
    EXPECT_FALSE(callbacks.IsPlainSet());
    EXPECT_FALSE(callbacks.IsUsable());
}

TEST(EventCallbacks, WithParamsWithoutOwner_UsableButNotCalled)
{
    const BiosEventCallbacks callbacks{nullptr, HubProbe::BiosHandler(), nullptr};
    EXPECT_TRUE(callbacks.IsUsable());
    EXPECT_FALSE(callbacks.IsWithParamsSet());
    callbacks.Dispatch(S_OK, 21, nullptr);
}

TEST(EventCallbacks, Plain_CalledWhateverTheDataStatus)
{
    HubProbe hub;
    const BiosEventCallbacks callbacks{HubProbe::PlainHandler(), nullptr, &hub};
    callbacks.Dispatch(S_OK, 3, nullptr);
    callbacks.Dispatch(E_FAIL, 3, nullptr);
    EXPECT_EQ(hub.Calls().size(), 2u);
}

TEST(EventCallbacks, PlainAndWithParams_PlainAloneIsCalled)
{
    HubProbe hub;
    const BiosEventCallbacks callbacks{HubProbe::PlainHandler(), HubProbe::BiosHandler(), &hub};
    callbacks.Dispatch(S_OK, 3, nullptr);
    ASSERT_EQ(hub.Calls().size(), 1u);
    EXPECT_EQ(hub.Calls()[0].m_strHandler, "plain");
}

TEST(EventCallbacks, WithParams_CalledOnlyWhenTheDataCouldBeRead)
{
    HubProbe hub;
    const BiosEventCallbacks callbacks{nullptr, HubProbe::BiosHandler(), &hub};
    callbacks.Dispatch(E_FAIL, 20, nullptr);
    callbacks.Dispatch(S_FALSE, 21, nullptr);
    ASSERT_EQ(hub.Calls().size(), 1u);
    EXPECT_EQ(hub.Calls()[0].m_nEventId, 21);
}

TEST(EventCallbacks, FirstWord_IsTheAddressWithinTheMemberPointer)
{
    EXPECT_EQ(FirstWord(HubProbe::Plain(nullptr)), nullptr);
    EXPECT_NE(FirstWord(HubProbe::PlainHandler()), nullptr);
    EXPECT_NE(FirstWord(HubProbe::PlainHandler()), FirstWord(HubProbe::BiosHandler()));
}
