#include "tests/logfile/HeldDisk.h"
#include "tests/logfile/LinesByWriter.h"
#include "tests/logfile/QueuedLogFileTest.h"
#include "tests/support/AllocationFault.h"

#include <thread>
#include <vector>

namespace
{
using namespace Orvik::Shared;
using testing::ElementsAre;
using testing::IsEmpty;

// How this thread waited, in milliseconds.
struct Waits
{
    std::vector<DWORD> m_lstPauses;
    std::vector<DWORD> m_lstWaits;
    bool m_bFailed = false; // a wait for what is no handle any more
};

template <class Action>
Waits WaitsOf(Action action)
{
    Waits seen;
    const DWORD thread = GetCurrentThreadId();
    const auto pause = Replace<decltype(Sleep)>("Sleep",
                                                [&seen, thread](auto original, DWORD time)
                                                {
                                                    if (GetCurrentThreadId() == thread)
                                                        seen.m_lstPauses.push_back(time);
                                                    original(time);
                                                });
    const auto wait = Replace<decltype(WaitForSingleObject)>("WaitForSingleObject",
                                                             [&seen, thread](auto original, HANDLE object, DWORD time)
                                                             {
                                                                 if (GetCurrentThreadId() != thread)
                                                                     return original(object, time);
                                                                 const DWORD result = original(object, time);
                                                                 seen.m_lstWaits.push_back(time);
                                                                 seen.m_bFailed |= result == WAIT_FAILED;
                                                                 return result;
                                                             });
    action();
    return seen;
}

using LogFileFinish = QueuedLogFileTest;

TEST_F(LogFileFinish, FastDisk_LosesNothing)
{
    for (const unsigned count : {1u, 2u, 1000u})
    {
        DeleteFileW(m_folder.LogPath().c_str());
        auto listener = Listener(true);
        WriteNumbered(listener, 1, count);
        listener.Finish();
        EXPECT_EQ(Messages(), Numbered("message", count));
    }
}

TEST_F(LogFileFinish, EndOfTheListener_LosesNothing)
{
    for (int i = 0; i < 10; ++i)
    {
        DeleteFileW(m_folder.LogPath().c_str());
        {
            auto listener = Listener(true);
            WriteNumbered(listener, 1, 3);
        }
        EXPECT_EQ(Messages(), Numbered("message", 3)) << i;
    }
}

TEST_F(LogFileFinish, DiskSlowerThanUsual_LosesNothing)
{
    const auto call = Replace<WriteFunction>("fwrite",
                                             [](auto original, auto text, auto size, auto count, auto* file)
                                             {
                                                 if (size == sizeof(wchar_t))
                                                     Sleep(10);
                                                 return original(text, size, count, file);
                                             });
    auto listener = Listener(true);
    WriteNumbered(listener, 1, 20);
    listener.Finish();
    EXPECT_EQ(Messages(), Numbered("message", 20));
}

TEST_F(LogFileFinish, NothingQueued_TakesNoTime)
{
    auto direct = Listener(false);
    auto queued = Listener(true);
    const auto finish = [&]
    {
        direct.Finish();
        queued.Finish();
    };
    EXPECT_THAT(WaitsOf(finish).m_lstWaits, IsEmpty());
    WriteNumbered(queued, 1, 1);
    ASSERT_TRUE(m_threads.WaitForAll());
    const Waits waits = WaitsOf(finish);
    EXPECT_THAT(waits.m_lstPauses, IsEmpty());
    EXPECT_THAT(waits.m_lstWaits, ElementsAre(500)) << "the thread has ended: no time passes";
}

TEST_F(LogFileFinish, DiskThatStandsStill_IsWaitedForAboutASecond)
{
    auto listener = Listener(true);
    {
        const HeldDisk disk;
        WriteNumbered(listener, 1, 1);
        ASSERT_TRUE(HeldDisk::WaitForAWriter());
        WriteNumbered(listener, 2, 100);
        const Waits waits = WaitsOf([&] { listener.Finish(); });
        EXPECT_THAT(waits.m_lstPauses, ElementsAre(100, 100));
        EXPECT_THAT(waits.m_lstWaits, ElementsAre(500, 500));
        EXPECT_THAT(WaitsOf([&] { listener.Finish(); }).m_lstWaits, IsEmpty()) << "a second end waits for nobody";
    }
    ASSERT_TRUE(m_threads.WaitForAll());
    EXPECT_EQ(Messages(), Numbered("message", 1)) << "the others were discarded, this one was under way";
    EXPECT_TRUE(OtherThreadCanWrite());
}

TEST_F(LogFileFinish, DiskThatStandsStill_LosesWhatTheThreadHasTakenToo)
{
    auto listener = Listener(true);
    {
        const HeldDisk disk;
        {
            CLogFile other{LoggingPolicy()};
            ASSERT_TRUE(other.OpenAndLock());
            const LogFileClosing closing(other);
            WriteNumbered(listener, 1, 100);
        }
        ASSERT_TRUE(HeldDisk::WaitForAWriter());
        listener.Finish();
        listener.Write(MakeRecord(L"late"));
    }
    ASSERT_TRUE(m_threads.WaitForAll());
    EXPECT_THAT(Messages(), ElementsAre("message 1", "late"));
}

TEST_F(LogFileFinish, LastRecordUnderWay_IsWaitedForAboutASecond)
{
    auto listener = Listener(true);
    {
        const HeldDisk disk;
        WriteNumbered(listener, 1, 1);
        ASSERT_TRUE(HeldDisk::WaitForAWriter());
        const Waits waits = WaitsOf([&] { listener.Finish(); });
        EXPECT_THAT(waits.m_lstPauses, IsEmpty()) << "nothing is queued";
        EXPECT_THAT(waits.m_lstWaits, ElementsAre(500, 500));
    }
    ASSERT_TRUE(m_threads.WaitForAll());
    EXPECT_EQ(Messages(), Numbered("message", 1));
}

TEST_F(LogFileFinish, FileThatTakesLongToOpen_IsWaitedForAboutASecond)
{
    auto listener = Listener(true);
    const UniqueHandle released(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const auto call = Replace<decltype(_wfopen_s)>("_wfopen_s",
                                                   [&](auto original, auto... arguments)
                                                   {
                                                       WaitForSingleObject(released.get(), 20'000);
                                                       return original(arguments...);
                                                   });
    WriteNumbered(listener, 1, 5);
    const Waits waits = WaitsOf([&] { listener.Finish(); });
    EXPECT_THAT(waits.m_lstPauses, ElementsAre(100, 100));
    EXPECT_THAT(waits.m_lstWaits, ElementsAre(500, 500));
    SetEvent(released.get());
    ASSERT_TRUE(m_threads.WaitForAll());
    EXPECT_THAT(Messages(), IsEmpty()) << "all were discarded";
    EXPECT_TRUE(OtherThreadCanWrite());
}

TEST_F(LogFileFinish, FileHeldByAnotherThread_IsWaitedForAboutASecond)
{
    auto listener = Listener(true);
    {
        CLogFile other{LoggingPolicy()};
        ASSERT_TRUE(other.OpenAndLock());
        const LogFileClosing closing(other);
        WriteNumbered(listener, 1, 5);
        const Waits waits = WaitsOf([&] { listener.Finish(); });
        EXPECT_THAT(waits.m_lstPauses, ElementsAre(100, 100));
        EXPECT_THAT(waits.m_lstWaits, ElementsAre(500, 500));
    }
    ASSERT_TRUE(m_threads.WaitForAll());
    EXPECT_TRUE(OtherThreadCanWrite());
}

TEST_F(LogFileFinish, RecordsThatCannotBeWritten_AreDiscardedAtOnce)
{
    auto listener = Listener(true);
    {
        const auto call = FailCall<decltype(_wfopen_s)>("_wfopen_s", 0, EACCES, ERROR_ACCESS_DENIED);
        WriteNumbered(listener, 1, 1);
        ASSERT_TRUE(m_threads.WaitForAll());
        EXPECT_THAT(WaitsOf([&] { listener.Finish(); }).m_lstWaits, ElementsAre(500)) << "for a thread that has ended";
    }
    listener.Write(MakeRecord(L"after"));
    listener.Finish();
    EXPECT_THAT(Messages(), ElementsAre("after"));
}

TEST_F(LogFileFinish, RecordBehindIt_IsWritten)
{
    auto listener = Listener(true);
    WriteNumbered(listener, 1, 1);
    listener.Finish();
    WriteNumbered(listener, 2, 2);
    listener.Finish();
    EXPECT_EQ(Messages(), Numbered("message", 2));
}

TEST_F(LogFileFinish, RecordsMeanwhile_ComeInOrderOrNotAtAll)
{
    static constexpr unsigned writers = 4;
    auto listener = Listener(true);
    const Waits waits = WaitsOf(
        [&]
        {
            std::vector<std::jthread> threads;
            for (unsigned writer = 0; writer < writers; ++writer)
                threads.emplace_back(
                    [&listener, writer]
                    {
                        for (unsigned number = 1; number <= 2000; ++number)
                            listener.Write(MakeRecord(TextOf(writer, number)));
                    });
            for (int i = 0; i < 50; ++i)
                listener.Finish();
        });
    EXPECT_FALSE(waits.m_bFailed) << "a thread's handle was closed by the start of the next one";
    for (unsigned writer = 0; writer < writers; ++writer)
        listener.Write(MakeRecord(TextOf(writer, 2001)));
    ASSERT_TRUE(m_threads.WaitForAll());
    LinesByWriter lines(LinesByWriter::MayMiss::Any);
    for (const std::string& message : Messages())
        lines.Add(message);
    for (unsigned writer = 0; writer < writers; ++writer)
        EXPECT_EQ(lines.LastOf(writer), 2001u) << writer;
}

TEST_F(LogFileFinish, ListenerGoneWhileItsThreadWrites_ThreadEndsCleanlyAndFreesAll)
{
    Listener(true).Write(MakeRecord(L"warm-up"));
    ASSERT_TRUE(m_threads.WaitForAll());
    const std::size_t blocks = LiveHeapBlocks();
    {
        const HeldDisk disk;
        {
            auto listener = Listener(true);
            WriteNumbered(listener, 1, 1);
            ASSERT_TRUE(HeldDisk::WaitForAWriter());
            WriteNumbered(listener, 2, 50);
        }
        EXPECT_GT(LiveHeapBlocks(), blocks) << "the thread lives on what it owns";
    }
    ASSERT_TRUE(m_threads.WaitForAll());
    EXPECT_LE(LiveHeapBlocks(), blocks + m_threads.Started());
    EXPECT_THAT(Messages(), ElementsAre("warm-up", "message 1"));
    EXPECT_TRUE(OtherThreadCanWrite());
}

TEST_F(LogFileFinish, ManyListenersThatEndAtOnce_AreWhole)
{
    for (unsigned i = 1; i <= 20; ++i)
    {
        auto listener = Listener(true);
        WriteNumbered(listener, i, i);
    }
    EXPECT_EQ(Messages(), Numbered("message", 20));
}
} // namespace
