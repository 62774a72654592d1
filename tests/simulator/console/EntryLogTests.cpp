#include "simulator/console/EntryLog.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

namespace
{
using namespace Simulator;
using namespace std::chrono_literals;

constexpr auto g_long = 60s;
constexpr auto g_short = 20ms;

EntryTest HasSubject(const std::string& subject)
{
    return [subject](const Entry& entry) { return entry.m_strSubject == subject; };
}

class WaitingEntryLog : public testing::Test
{
protected:
    // Appends from another thread, while the test waits or before: both must be found.
    std::thread AppendLater(std::vector<std::string> subjects)
    {
        return std::thread(
            [this, subjects = std::move(subjects)]
            {
                std::this_thread::sleep_for(g_short);
                for (const std::string& subject : subjects)
                    m_log.Append(1, "kind", subject);
            });
    }

    EntryLog m_log{[](const Entry&) {}};
};

TEST_F(WaitingEntryLog, EntryIsThere_FirstThatPasses)
{
    for (const char* subject : {"a", "b", "a"})
        m_log.Append(1, "kind", subject);
    EXPECT_EQ(m_log.WaitFor(1, g_long, HasSubject("a")).value().m_nIndex, 2u);
}

TEST_F(WaitingEntryLog, EntryComesLater_FirstThatPasses)
{
    std::thread other = AppendLater({"b", "a", "a"});
    EXPECT_EQ(m_log.WaitFor(0, g_long, HasSubject("a")).value().m_nIndex, 1u);
    other.join();
}

TEST_F(WaitingEntryLog, OthersComeOnly_NothingAfterTheLimit)
{
    std::thread other = AppendLater({"b", "c"});
    EXPECT_FALSE(m_log.WaitFor(0, 3 * g_short, HasSubject("a")));
    other.join();
}

TEST_F(WaitingEntryLog, AppendedAfterTheLimit_NobodyIsAsked)
{
    unsigned asked = 0;
    EXPECT_FALSE(m_log.WaitFor(0, g_short, [&](const Entry&) { return ++asked != 0; }));
    m_log.Append(1, "kind", "a");
    EXPECT_EQ(asked, 0u);
}

TEST_F(WaitingEntryLog, TestFails_FailureReachesWhoeverWaits)
{
    std::thread other = AppendLater({"a"});
    EXPECT_THROW((void)m_log.WaitFor(0, g_long, [](const Entry&) -> bool { throw std::runtime_error("broken"); }),
                 std::runtime_error);
    other.join();
}

TEST_F(WaitingEntryLog, TwoWait_EachGetsItsOwn)
{
    std::optional<Entry> found;
    std::thread waiting([&] { found = m_log.WaitFor(0, g_long, HasSubject("b")); });
    std::thread other = AppendLater({"a", "b"});
    EXPECT_EQ(m_log.WaitFor(0, g_long, HasSubject("a")).value().m_nIndex, 0u);
    other.join();
    waiting.join();
    EXPECT_EQ(found.value().m_nIndex, 1u);
}
} // namespace
