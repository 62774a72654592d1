#include "tests/logfile/LogFileTest.h"
#include "tests/support/AllocationFault.h"

namespace
{
using namespace Orvik::Shared;
using testing::ElementsAre;

class LogFileListener : public LogFileTest
{
protected:
    // Neither kind of listener fails or leaves a file.
    void ExpectInert()
    {
        for (const bool queued : {false, true})
        {
            auto listener = Listener(queued);
            for (int i = 0; i < 3; ++i)
                listener.Write(MakeRecord(L"x"));
            listener.Finish();
        }
        EXPECT_FALSE(Exists(m_folder.LogPath()));
    }
};

TEST_F(LogFileListener, Type_FollowsTheQueuedFlag)
{
    EXPECT_EQ(Listener(false).GetType(), ListenerKind::File);
    EXPECT_EQ(Listener(true).GetType(), ListenerKind::FileQueued);
}

TEST_F(LogFileListener, QueuedWritesPolicy_OverridesEither)
{
    for (const bool queued : {false, true})
    {
        m_product.Number(L"QueuedWrites", 0);
        EXPECT_EQ(Listener(queued).GetType(), ListenerKind::File);
        m_product.Number(L"QueuedWrites", 1);
        EXPECT_EQ(Listener(queued).GetType(), ListenerKind::FileQueued);
        m_product.Number(L"QueuedWrites", 0xFFFF'FFFF);
        EXPECT_EQ(Listener(queued).GetType(), ListenerKind::FileQueued);
    }
}

TEST_F(LogFileListener, QueuedWritesOfAnotherType_LeaveTheFlag)
{
    m_product.Text(L"QueuedWrites", L"1");
    EXPECT_EQ(Listener(false).GetType(), ListenerKind::File);
    m_product.Text(L"QueuedWrites", L"0");
    EXPECT_EQ(Listener(true).GetType(), ListenerKind::FileQueued);
}

TEST_F(LogFileListener, QueuedWritesOfTheModule_WinOverThoseOfTheProduct)
{
    TestSupport::PolicyKey module(TestSupport::LoggingModuleKey());
    m_product.Number(L"QueuedWrites", 1);
    module.Number(L"QueuedWrites", 0);
    EXPECT_EQ(Listener(true).GetType(), ListenerKind::File) << "0 is a value";
    m_product.Number(L"QueuedWrites", 0);
    module.Number(L"QueuedWrites", 1);
    EXPECT_EQ(Listener(false).GetType(), ListenerKind::FileQueued);
}

TEST_F(LogFileListener, Range_ComesFromPolicy)
{
    m_product.Text(L"MinLogLevel", L"Verbose").Text(L"MaxLogLevel", L"Warning");
    EXPECT_EQ(Listener().MinLevel(), Level::Verbose);
    EXPECT_EQ(Listener().MaxLevel(), Level::Warning);
}

TEST_F(LogFileListener, DirectRecord_IsInTheFileWhenWriteReturns)
{
    auto listener = Listener();
    for (unsigned i = 1; i <= 20; ++i)
    {
        listener.Write(MakeRecord(L"message " + std::to_wstring(i)));
        EXPECT_EQ(Messages(), Numbered("message", i));
    }
}

TEST_F(LogFileListener, DirectRecord_LeavesTheFileClosed)
{
    auto listener = Listener();
    listener.Write(MakeRecord(L"x"));
    EXPECT_TRUE(MoveFileW(m_folder.LogPath().c_str(), m_folder.Path(L"moved.log").c_str())) << GetLastError();
    listener.Write(MakeRecord(L"y"));
    EXPECT_THAT(Messages(), ElementsAre("y")) << "a file that is gone is made anew";
}

TEST_F(LogFileListener, FolderThatIsGone_LosesRecordsUntilItIsBack)
{
    auto listener = Listener();
    DeleteFileW(m_folder.LogPath().c_str());
    ASSERT_TRUE(RemoveDirectoryW(m_folder.Folder().c_str()));
    listener.Write(MakeRecord(L"lost"));
    m_folder.Make();
    listener.Write(MakeRecord(L"kept"));
    EXPECT_THAT(Messages(), ElementsAre("kept"));
}

TEST_F(LogFileListener, NoApplicationData_WritesNothing)
{
    const auto call = FailCall<decltype(SHGetFolderPathW)>("SHGetFolderPathW", 0, E_FAIL, ERROR_PATH_NOT_FOUND);
    const auto mutex = Replace<decltype(CreateMutexW)>("CreateMutexW",
                                                       [](auto, auto...) -> HANDLE
                                                       {
                                                           ADD_FAILURE() << "a mutex for no file";
                                                           return nullptr;
                                                       });
    ExpectInert();
}

TEST_F(LogFileListener, FolderThatCannotBeMade_WritesNothing)
{
    const auto call = FailCall<decltype(CreateDirectoryW)>("CreateDirectoryW", 0, FALSE, ERROR_ACCESS_DENIED);
    ExpectInert();
}

TEST_F(LogFileListener, FileInPlaceOfTheFolder_WritesNothing)
{
    WriteBytes(m_folder.Folder(), "in the way");
    ExpectInert();
    EXPECT_EQ(BytesIn(m_folder.Folder()), "in the way");
}

TEST_F(LogFileListener, FolderThatNobodyMayWriteTo_WritesNothing)
{
    m_folder.Make();
    const auto call = FailCall<decltype(_wfopen_s)>("_wfopen_s", 0, EACCES, ERROR_ACCESS_DENIED);
    ExpectInert();
    EXPECT_TRUE(OtherThreadCanWrite());
}

TEST_F(LogFileListener, FolderInPlaceOfTheFile_WritesNothing)
{
    m_folder.Make();
    ASSERT_TRUE(CreateDirectoryW(m_folder.LogPath().c_str(), nullptr));
    for (const bool queued : {false, true})
        Listener(queued).Write(MakeRecord(L"x"));
    EXPECT_TRUE(RemoveDirectoryW(m_folder.LogPath().c_str())) << "it is not empty";
    EXPECT_TRUE(OtherThreadCanWrite());
}

TEST_F(LogFileListener, ReadOnlyFile_IsLeftAlone)
{
    m_folder.Add(m_folder.LogPath(), "nobody writes here");
    ASSERT_TRUE(SetFileAttributesW(m_folder.LogPath().c_str(), FILE_ATTRIBUTE_READONLY));
    const UniqueHandle probe(
        CreateFileW(m_folder.LogPath().c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    if (probe.get() != INVALID_HANDLE_VALUE)
    {
        SetFileAttributesW(m_folder.LogPath().c_str(), FILE_ATTRIBUTE_NORMAL);
        GTEST_SKIP() << "This user may write to read-only files here.";
    }
    for (const bool queued : {false, true})
        Listener(queued).Write(MakeRecord(L"x"));
    EXPECT_EQ(BytesIn(m_folder.LogPath()), "nobody writes here");
    SetFileAttributesW(m_folder.LogPath().c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(LogFileListener, FullDisk_LosesTheRecordsUntilThereIsRoom)
{
    auto listener = Listener();
    {
        const auto lines = Replace<WriteFunction>("fwrite",
                                                  [](auto original, auto text, auto size, auto count, auto* file)
                                                  {
                                                      if (size != sizeof(wchar_t))
                                                          return original(text, size, count, file);
                                                      SetLastError(ERROR_DISK_FULL);
                                                      errno = ENOSPC;
                                                      return decltype(count){0};
                                                  });
        const auto ends = Replace<decltype(fputwc)>("fputwc",
                                                    [](auto, auto, auto) -> wint_t
                                                    {
                                                        errno = ENOSPC;
                                                        return WEOF;
                                                    });
        for (int i = 0; i < 5; ++i)
            listener.Write(MakeRecord(L"lost"));
        EXPECT_TRUE(OtherThreadCanWrite());
    }
    listener.Write(MakeRecord(L"kept"));
    EXPECT_THAT(Messages(), ElementsAre("kept"));
}

TEST_F(LogFileListener, NoMemoryForARecord_LosesThatOneAlone)
{
    auto listener = Listener();
    std::size_t lost = 0;
    for (bool bitten = true; bitten; ++lost)
    {
        const LogRecord record = MakeRecord(L"a message that is longer than what a text holds in itself");
        const AllocationFault fault(lost + 1);
        try
        {
            listener.Write(record);
        }
        catch (const std::bad_alloc&)
        {
            EXPECT_TRUE(Messages().empty());
        }
        bitten = AllocationFault::HasBitten();
    }
    EXPECT_GE(lost, 2u) << "at least one was lost";
    EXPECT_EQ(Messages().size(), 1u);
    EXPECT_TRUE(OtherThreadCanWrite());
}

TEST_F(LogFileListener, NoMemoryForTheListener_LeavesNothingLocked)
{
    m_folder.Add(m_folder.LogPath(), "foreign");
    for (std::size_t nth = 1;; ++nth)
    {
        const AllocationFault fault(nth);
        try
        {
            Listener(true);
        }
        catch (const std::bad_alloc&)
        {
        }
        if (!AllocationFault::HasBitten())
            break;
        const AllocationFault::Pause pause;
        EXPECT_TRUE(OtherThreadCanWrite()) << nth;
    }
    Listener().Write(MakeRecord(L"x"));
    EXPECT_THAT(Messages(), ElementsAre("x"));
}
} // namespace
