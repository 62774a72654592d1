#include "shared/LogFilePath.h"
#include "tests/logfile/LogFileTest.h"
#include "tests/support/HandleCount.h"

#include <atomic>

namespace
{
using namespace Orvik::Shared;
using testing::ElementsAre;

class LogFileMutex : public LogFileTest
{
protected:
    [[nodiscard]] UniqueHandle OpenMutexOfFile() const
    {
        return UniqueHandle(CreateMutexW(nullptr, FALSE, LogMutexName(m_folder.LogPath()).c_str()));
    }

    // A thread takes the mutex and ends without giving it back.
    void Abandon() const
    {
        std::thread(
            [this]
            {
                const UniqueHandle mutex = OpenMutexOfFile();
                EXPECT_EQ(WaitForSingleObject(mutex.get(), 1000), WAIT_OBJECT_0);
            })
            .join();
    }
};

TEST_F(LogFileMutex, HeldByAnotherThread_RecordWaitsForIt)
{
    auto listener = Listener();
    std::atomic<bool> isWritten = false;
    std::thread writer;
    {
        const UniqueHandle mutex = OpenMutexOfFile();
        ASSERT_EQ(WaitForSingleObject(mutex.get(), 0), WAIT_OBJECT_0);
        writer = std::thread(
            [&]
            {
                listener.Write(MakeRecord(L"x"));
                isWritten = true;
            });
        Sleep(200);
        EXPECT_FALSE(isWritten);
        EXPECT_EQ(BytesIn(m_folder.LogPath()), ByteOrderMark);
        ReleaseMutex(mutex.get());
    }
    writer.join();
    EXPECT_THAT(Messages(), ElementsAre("x"));
}

TEST_F(LogFileMutex, OpenAndLock_HoldsItUntilCloseAndUnlock)
{
    CLogFile file{LoggingPolicy()};
    EXPECT_TRUE(OtherThreadCanWrite());
    ASSERT_TRUE(file.OpenAndLock());
    EXPECT_FALSE(OtherThreadCanWrite());
    file.CloseAndUnlock();
    EXPECT_TRUE(OtherThreadCanWrite());
}

TEST_F(LogFileMutex, Abandoned_RecordIsWrittenAndOthersWriteAfterwards)
{
    auto listener = Listener();
    const UniqueHandle keptAlive = OpenMutexOfFile();
    Abandon();
    listener.Write(MakeRecord(L"mine"));
    ASSERT_TRUE(OtherThreadCanWrite()) << "it is held twice";
    std::thread([] { Listener().Write(MakeRecord(L"theirs")); }).join();
    EXPECT_THAT(Messages(), ElementsAre("mine", "theirs"));
}

TEST_F(LogFileMutex, AbandonedBeforeTheListener_IsTakenOver)
{
    const UniqueHandle keptAlive = OpenMutexOfFile();
    Abandon();
    Listener().Write(MakeRecord(L"x"));
    EXPECT_THAT(Messages(), ElementsAre("x"));
    EXPECT_TRUE(OtherThreadCanWrite());
}

TEST_F(LogFileMutex, AbandonedTwiceRunning_LosesTheRecord)
{
    auto listener = Listener();
    const UniqueHandle keptAlive = OpenMutexOfFile();
    unsigned waits = 0;
    {
        // Each wait really gets the mutex.
        const auto call = Replace<decltype(WaitForSingleObject)>("WaitForSingleObject",
                                                                 [&](auto original, HANDLE object, DWORD time) -> DWORD
                                                                 {
                                                                     ++waits;
                                                                     EXPECT_EQ(time, INFINITE);
                                                                     EXPECT_EQ(original(object, time), WAIT_OBJECT_0);
                                                                     return WAIT_ABANDONED;
                                                                 });
        listener.Write(MakeRecord(L"lost"));
    }
    EXPECT_EQ(waits, 2u);
    EXPECT_TRUE(OtherThreadCanWrite());
    listener.Write(MakeRecord(L"kept"));
    EXPECT_THAT(Messages(), ElementsAre("kept"));
}

TEST_F(LogFileMutex, WaitThatFails_LosesTheRecordAndOpensNothing)
{
    auto listener = Listener();
    for (const DWORD result : {WAIT_FAILED, static_cast<DWORD>(WAIT_TIMEOUT)})
    {
        const auto open = Replace<decltype(_wfopen_s)>("_wfopen_s",
                                                       [](auto, auto...) -> errno_t
                                                       {
                                                           ADD_FAILURE() << "opened without the mutex";
                                                           return EACCES;
                                                       });
        const auto call =
            FailCall<decltype(WaitForSingleObject)>("WaitForSingleObject", 0, result, ERROR_INVALID_HANDLE);
        listener.Write(MakeRecord(L"lost"));
    }
    listener.Write(MakeRecord(L"kept"));
    EXPECT_THAT(Messages(), ElementsAre("kept"));
}

TEST_F(LogFileMutex, WaitThatFailsAtTheStart_ListenerWritesLater)
{
    m_product.Number(L"QueuedWrites", 1);
    unsigned waits = 0;
    const auto call =
        Replace<decltype(WaitForSingleObject)>("WaitForSingleObject", [&](auto original, auto... arguments)
                                               { return ++waits == 1 ? WAIT_FAILED : original(arguments...); });
    auto listener = Listener();
    listener.Write(MakeRecord(L"x"));
    EXPECT_EQ(listener.GetType(), ListenerKind::File) << "policy was not read any more";
    EXPECT_THAT(Messages(), ElementsAre("x"));
}

TEST_F(LogFileMutex, MutexThatCannotBeMade_WritesNothing)
{
    for (const bool queued : {false, true})
    {
        const auto call = FailCall<decltype(CreateMutexW)>("CreateMutexW", 0, nullptr, ERROR_ACCESS_DENIED);
        auto listener = Listener(queued);
        listener.Write(MakeRecord(L"x"));
        EXPECT_FALSE(Exists(m_folder.LogPath()));
    }
}

TEST_F(LogFileMutex, FileThatCannotBeOpened_IsGivenBack)
{
    auto listener = Listener();
    for (int i = 0; i < 3; ++i)
    {
        const auto call = FailCall<decltype(_wfopen_s)>("_wfopen_s", 0, EACCES, ERROR_ACCESS_DENIED);
        listener.Write(MakeRecord(L"lost"));
        EXPECT_TRUE(OtherThreadCanWrite());
    }
    listener.Write(MakeRecord(L"kept"));
    EXPECT_THAT(Messages(), ElementsAre("kept"));
}

TEST_F(LogFileMutex, EndOfTheListener_ClosesItsHandle)
{
    {
        const auto listener = Listener();
        EXPECT_TRUE(UniqueHandle(OpenMutexW(SYNCHRONIZE, FALSE, LogMutexName(m_folder.LogPath()).c_str())));
    }
    EXPECT_FALSE(UniqueHandle(OpenMutexW(SYNCHRONIZE, FALSE, LogMutexName(m_folder.LogPath()).c_str())));
}

TEST_F(LogFileMutex, ManyCycles_LeaveNoHandle)
{
    m_product.Number(L"MaxLogSize", 1);
    const auto cycle = [](bool queued)
    {
        auto listener = Listener(queued);
        for (int i = 0; i < 10; ++i)
            listener.Write(MakeRecord(L"a record that fills the small file"));
    };
    cycle(false);
    cycle(true);
    const unsigned before = TestSupport::OpenHandleCount();
    for (int i = 0; i < 100; ++i)
        cycle(i % 2 != 0);
    EXPECT_EQ(TestSupport::OpenHandleCount(), before);
}
} // namespace
