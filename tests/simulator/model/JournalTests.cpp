#include "simulator/model/Journal.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace
{
using Simulator::Journal;
using Simulator::JournalEntry;

class JournalTest : public testing::Test
{
protected:
    void SetUp() override { m_journal.Clear(); }
    void TearDown() override { m_journal.SetSink(nullptr); }

    Journal& m_journal = Journal::Instance();
};

TEST_F(JournalTest, Entries_StandInOrderWithWhatTheySay)
{
    m_journal.Append("toast", "shown", {{"text", "\xC3\xA4"}});
    m_journal.Append("call", "A");
    const auto entries = m_journal.Entries();
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].m_strKind, "toast");
    EXPECT_EQ(entries[0].m_strSubject, "shown");
    EXPECT_EQ(entries[0].m_details["text"], "\xC3\xA4");
    EXPECT_EQ(entries[0].m_dwThreadId, GetCurrentThreadId());
    EXPECT_EQ(entries[1].m_nSequence, entries[0].m_nSequence + 1);
    EXPECT_GE(entries[1].m_nMicroseconds, entries[0].m_nMicroseconds);
    EXPECT_TRUE(entries[1].m_details.is_object());
}

TEST_F(JournalTest, Time_IsInMicroseconds)
{
    m_journal.Append("call", "A");
    Sleep(50);
    m_journal.Append("call", "B");
    const auto entries = m_journal.Entries();
    const auto passed = entries.at(1).m_nMicroseconds - entries.at(0).m_nMicroseconds;
    EXPECT_GE(passed, 40'000);
    EXPECT_LT(passed, 30'000'000);
}

TEST_F(JournalTest, Subjects_AreThoseOfOneKind)
{
    m_journal.Append("call", "A");
    m_journal.Append("toast", "shown");
    m_journal.Append("call", "B");
    EXPECT_EQ(m_journal.Subjects("call"), (std::vector<std::string>{"A", "B"}));
    EXPECT_EQ(m_journal.Subjects("toast"), (std::vector<std::string>{"shown"}));
    EXPECT_TRUE(m_journal.Subjects("wmi").empty());
}

TEST_F(JournalTest, Clear_ForgetsEntriesAndGoesOnCounting)
{
    m_journal.Append("call", "A");
    const auto last = m_journal.Entries().at(0).m_nSequence;
    m_journal.Clear();
    EXPECT_TRUE(m_journal.Entries().empty());
    m_journal.Append("call", "B");
    EXPECT_EQ(m_journal.Entries().at(0).m_nSequence, last + 1);
}

TEST_F(JournalTest, Sink_SeesEachEntryUntilItIsTakenAway)
{
    std::vector<std::string> seen;
    m_journal.SetSink([&seen](const JournalEntry& entry) { seen.push_back(entry.m_strSubject); });
    m_journal.Append("call", "A");
    m_journal.Append("call", "B");
    m_journal.SetSink(nullptr);
    m_journal.Append("call", "C");
    EXPECT_EQ(seen, (std::vector<std::string>{"A", "B"}));
}

TEST_F(JournalTest, ManyThreads_NumberEveryEntryOnce)
{
    constexpr std::size_t each = 500;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back(
            [this]
            {
                for (std::size_t i = 0; i < each; ++i)
                    m_journal.Append("call", "A");
            });
    for (std::thread& thread : threads)
        thread.join();
    const auto entries = m_journal.Entries();
    ASSERT_EQ(entries.size(), 4 * each);
    for (std::size_t i = 1; i < entries.size(); ++i)
        ASSERT_EQ(entries[i].m_nSequence, entries[i - 1].m_nSequence + 1);
}
} // namespace
