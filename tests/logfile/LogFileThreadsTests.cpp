#include "tests/logfile/LinesByWriter.h"
#include "tests/logfile/LogFileTest.h"
#include "tests/logfile/WriterThreads.h"

#include <array>
#include <functional>
#include <optional>

namespace
{
using namespace Orvik::Shared;

constexpr unsigned g_threads = 8;
constexpr unsigned g_records = 300;

class LogFileThreads : public LogFileTest
{
protected:
    using Write = std::function<void(const LogRecord&)>;

    // Eight threads at once, each with what makeWriter gives for its number, write their records.
    static void WriteOnAll(const std::function<void(unsigned, const std::function<void(Write)>&)>& withWriter)
    {
        std::vector<std::thread> threads;
        for (unsigned thread = 0; thread < g_threads; ++thread)
        {
            threads.emplace_back(
                [&, thread]
                {
                    withWriter(thread,
                               [thread](const Write& write)
                               {
                                   for (unsigned i = 1; i <= g_records; ++i)
                                       write(MakeRecord(TextOf(thread, i)));
                               });
                });
        }
        for (std::thread& thread : threads)
            thread.join();
    }

    static void WriteWithOneListener(bool queued)
    {
        const WriterThreads threads;
        auto listener = Listener(queued);
        WriteOnAll([&](unsigned, const auto& run) { run([&](const LogRecord& record) { listener.Write(record); }); });
        EXPECT_TRUE(WriterThreads::WaitForAll());
    }

    static void WriteWithListenersOfTheirOwn(const std::function<bool(unsigned)>& isQueued)
    {
        WriteOnAll(
            [&](unsigned thread, const auto& run)
            {
                auto listener = Listener(isQueued(thread));
                run([&](const LogRecord& record) { listener.Write(record); });
            });
    }

    // In the log file and the older ones, oldest first.
    [[nodiscard]] Strings AllMessages() const
    {
        Strings all;
        for (unsigned number = 9; number >= 1; --number)
        {
            if (Exists(m_folder.Older(number)))
                std::ranges::copy(MessagesIn(BytesIn(m_folder.Older(number))), std::back_inserter(all));
        }
        std::ranges::copy(Messages(), std::back_inserter(all));
        return all;
    }

    void ExpectAll() const
    {
        LinesByWriter lines;
        for (const std::string& message : AllMessages())
            lines.Add(message);
        for (unsigned thread = 0; thread < g_threads; ++thread)
            EXPECT_EQ(lines.LastOf(thread), g_records) << thread;
    }
};

TEST_F(LogFileThreads, OneListener_EachRecordOnceAndInOrder)
{
    WriteWithOneListener(false);
    ExpectAll();
}

TEST_F(LogFileThreads, OneQueuedListener_EachRecordOnceAndInOrder)
{
    WriteWithOneListener(true);
    ExpectAll();
}

TEST_F(LogFileThreads, ListenersOfTheirOwn_EachRecordOnceAndInOrder)
{
    WriteWithListenersOfTheirOwn([](unsigned) { return false; });
    ExpectAll();
}

TEST_F(LogFileThreads, QueuedAndDirectListeners_EachRecordOnceAndInOrder)
{
    WriteWithListenersOfTheirOwn([](unsigned thread) { return thread % 2 != 0; });
    ExpectAll();
}

TEST_F(LogFileThreads, RotationsInBetween_LoseNothing)
{
    m_product.Number(L"MaxLogSize", 40);
    WriteWithListenersOfTheirOwn([](unsigned) { return false; });
    EXPECT_TRUE(Exists(m_folder.Older(1)));
    ExpectAll();
}
} // namespace
