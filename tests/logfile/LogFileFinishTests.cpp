#include "tests/logfile/HeldDisk.h"
#include "tests/logfile/LogFileTest.h"
#include "tests/logfile/WriterThreads.h"
#include "tests/support/AllocationFault.h"

namespace
{
using namespace Orvik::Shared;
using testing::ElementsAre;
using testing::IsEmpty;

// What an end may take in milliseconds: twice 100 and 500, and what a busy machine adds.
constexpr ULONGLONG g_longest = 3000;

template <class Action>
ULONGLONG MillisecondsOf(Action action)
{
    const ULONGLONG start = GetTickCount64();
    action();
    return GetTickCount64() - start;
}

class LogFileFinish : public LogFileTest
{
protected:
    static void WriteNumbered(COrvikLogListenerFile& listener, unsigned first, unsigned last)
    {
        for (unsigned i = first; i <= last; ++i)
            listener.Write(MakeRecord(L"message " + std::to_wstring(i)));
    }

    WriterThreads m_threads;
};

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
    const ULONGLONG time = MillisecondsOf(
        [&]
        {
            direct.Finish();
            queued.Finish();
            WriteNumbered(queued, 1, 1);
            EXPECT_TRUE(m_threads.WaitForAll());
            queued.Finish();
            queued.Finish();
        });
    EXPECT_LT(time, 600u);
}

TEST_F(LogFileFinish, DiskThatStandsStill_IsWaitedForAboutASecond)
{
    auto listener = Listener(true);
    {
        const HeldDisk disk;
        WriteNumbered(listener, 1, 1);
        ASSERT_TRUE(HeldDisk::WaitForAWriter());
        WriteNumbered(listener, 2, 100);
        const ULONGLONG time = MillisecondsOf([&] { listener.Finish(); });
        EXPECT_GE(time, 1150u) << "it did not wait for both rounds";
        EXPECT_LT(time, g_longest);
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
        EXPECT_LT(MillisecondsOf([&] { listener.Finish(); }), g_longest);
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
    const ULONGLONG time = MillisecondsOf([&] { listener.Finish(); });
    EXPECT_GE(time, 1150u);
    EXPECT_LT(time, g_longest);
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
        EXPECT_LT(MillisecondsOf([&] { listener.Finish(); }), g_longest);
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
        EXPECT_LT(MillisecondsOf([&] { listener.Finish(); }), 600u);
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
