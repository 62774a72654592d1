#include "simulator/machine/AgentThreads.h"

#include "shared/OwnerTypes.h"
#include "simulator/model/Journal.h"

#include <gmock/gmock.h>

namespace
{
using namespace Simulator;
using testing::ElementsAre;

class AgentThreadsTest : public testing::Test
{
protected:
    AgentThreadsTest() { Journal::Instance().Clear(); }
};
} // namespace

TEST_F(AgentThreadsTest, Thread_IsNumberedAndJournalled)
{
    struct Seen
    {
        unsigned m_nNumber = 0;
        int m_nCalls = 0;
    } seen;
    const auto routine = [](void* parameter) -> DWORD
    {
        auto& result = *static_cast<Seen*>(parameter);
        result.m_nNumber = CurrentAgentThread();
        ++result.m_nCalls;
        return 42;
    };
    DWORD id = 0;
    const Orvik::Shared::UniqueHandle thread(StartAgentThread(nullptr, 0, routine, &seen, 0, &id));
    ASSERT_TRUE(thread);
    WaitForSingleObject(thread.get(), INFINITE);
    DWORD result = 0;
    GetExitCodeThread(thread.get(), &result);
    EXPECT_EQ(result, 42u);
    EXPECT_EQ(id, GetThreadId(thread.get()));
    EXPECT_EQ(seen.m_nCalls, 1);
    EXPECT_NE(seen.m_nNumber, 0u);
    EXPECT_EQ(CurrentAgentThread(), 0u);
    EXPECT_THAT(Journal::Instance().Subjects("thread"), ElementsAre("started", "ended"));
    for (const JournalEntry& entry : Journal::Instance().Entries())
        EXPECT_EQ(entry.m_details["number"], seen.m_nNumber);
}

TEST_F(AgentThreadsTest, ThreadCannotBeMade_FailureIsTheSystemsAndItCountsAsEnded)
{
    const auto routine = [](void*) -> DWORD { return 0; };
    constexpr SIZE_T tooMuch = SIZE_T{1} << 50;
    const Orvik::Shared::UniqueHandle thread(
        StartAgentThread(nullptr, tooMuch, routine, nullptr, STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr));
    const DWORD error = GetLastError();
    ASSERT_FALSE(thread);
    EXPECT_NE(error, static_cast<DWORD>(ERROR_SUCCESS));
    EXPECT_THAT(Journal::Instance().Subjects("thread"), ElementsAre("started", "ended"));
}
