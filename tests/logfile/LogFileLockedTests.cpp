#include "tests/logfile/RotationTest.h"

namespace
{
using Orvik::Shared::UniqueHandle;
using testing::ElementsAre;

// Files that somebody else has open and does not share.
class LogFileLocked : public RotationTest
{
protected:
    [[nodiscard]] static UniqueHandle Lock(const std::wstring& path)
    {
        const HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
        EXPECT_NE(file, INVALID_HANDLE_VALUE) << GetLastError();
        return UniqueHandle(file);
    }
};

TEST_F(LogFileLocked, OldestFile_StopsTheRenamingBeforeItBegins)
{
    AddFiles(3);
    {
        const UniqueHandle lock = Lock(m_folder.Older(3));
        Rotate();
    }
    EXPECT_THAT(Files(),
                ElementsAre(".log: current", "_0001.log: older 1", "_0002.log: older 2", "_0003.log: older 3"));
}

TEST_F(LogFileLocked, FileInTheMiddle_LeavesTheYoungerOnes)
{
    AddFiles(3);
    {
        const UniqueHandle lock = Lock(m_folder.Older(2));
        Rotate();
    }
    EXPECT_THAT(Files(), ElementsAre(".log: current", "_0001.log: older 1", "_0002.log: older 2", "_0004.log: older 3"))
        << "what had its temporary name gets its number";
}

TEST_F(LogFileLocked, YoungestFile_KeepsTheLogFileInItsPlace)
{
    AddFiles(2);
    {
        const UniqueHandle lock = Lock(m_folder.Older(1));
        Rotate();
    }
    EXPECT_THAT(Files(), ElementsAre(".log: current", "_0001.log: older 1", "_0003.log: older 2"));
}

TEST_F(LogFileLocked, OldestOfNine_IsNotDeletedAndTheOthersMoveUp)
{
    AddFiles(9);
    {
        const UniqueHandle lock = Lock(m_folder.Older(9));
        Rotate();
    }
    Strings expected = Shifted(7);
    expected.emplace_back("_0009.log: older 9");
    const Strings files = Files();
    EXPECT_THAT(files, testing::IsSupersetOf(expected));
    EXPECT_EQ(files.size(), 10u) << "older 8 waits under its temporary name";
}

TEST_F(LogFileLocked, LogFileItself_StaysAndTheOlderOnesMoveUp)
{
    AddFiles(2);
    {
        const UniqueHandle lock = Lock(m_folder.LogPath());
        Rotate();
    }
    EXPECT_THAT(Files(), ElementsAre(".log: current", "_0002.log: older 1", "_0003.log: older 2"));
}

TEST_F(LogFileLocked, AfterTheLock_NextRotationIsWhole)
{
    AddFiles(3);
    {
        const UniqueHandle lock = Lock(m_folder.Older(2));
        Rotate();
    }
    Rotate();
    EXPECT_EQ(Files(), Shifted(3));
}

TEST_F(LogFileLocked, RotationThatCannotMoveTheLogFile_LosesNoRecord)
{
    m_product.Number(L"MaxLogSize", 1);
    auto listener = Listener();
    const UniqueHandle lock = Lock((m_folder.Add(m_folder.Older(1), "locked"), m_folder.Older(1)));
    for (int i = 1; i <= 100; ++i)
        listener.Write(MakeRecord(L"message " + std::to_wstring(i)));
    EXPECT_EQ(Messages(), Numbered("message", 100));
}

TEST_F(LogFileLocked, LogFile_LosesTheRecordsWhileItIsLocked)
{
    auto listener = Listener();
    listener.Write(MakeRecord(L"before"));
    {
        const UniqueHandle lock = Lock(m_folder.LogPath());
        listener.Write(MakeRecord(L"meanwhile"));
        EXPECT_TRUE(OtherThreadCanWrite());
    }
    listener.Write(MakeRecord(L"after"));
    EXPECT_THAT(Messages(), ElementsAre("before", "after"));
}

TEST_F(LogFileLocked, LogFileAtTheStart_ListenerWritesWhenItIsFree)
{
    m_folder.Add(m_folder.LogPath(), "");
    UniqueHandle lock = Lock(m_folder.LogPath());
    auto listener = Listener();
    listener.Write(MakeRecord(L"meanwhile"));
    lock.reset();
    listener.Write(MakeRecord(L"after"));
    EXPECT_THAT(Messages(), ElementsAre("after"));
}
} // namespace
