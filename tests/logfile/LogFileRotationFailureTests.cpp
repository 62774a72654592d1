#include "tests/logfile/RotationTest.h"
#include "tests/support/AllocationFault.h"

namespace
{
using testing::ElementsAre;

class LogFileRotationFailure : public RotationTest
{
protected:
    // Behind a rotation that did nothing.
    void ExpectUntouched(unsigned count) const
    {
        Strings expected{".log: current"};
        for (unsigned i = 1; i <= count; ++i)
            expected.push_back("_000" + std::to_string(i) + ".log: older " + std::to_string(i));
        EXPECT_EQ(Files(), expected);
    }

    // Makes the n-th move of a rotation with two older files fail: 1 and 2 go to temporary names, oldest first, 3 and 4
    // to numbers, 5 is the log file's.
    void RotateWithFailingMove(unsigned nth)
    {
        AddFiles(2);
        const auto call = FailCall<decltype(MoveFileW)>("MoveFileW", nth, FALSE, ERROR_ACCESS_DENIED);
        Rotate();
    }
};

TEST_F(LogFileRotationFailure, FullPathThatCannotBeTold_NothingMoves)
{
    AddFiles(2);
    const auto call = FailCall<decltype(GetFullPathNameW)>("GetFullPathNameW", 0, 0, ERROR_INVALID_NAME);
    Rotate();
    ExpectUntouched(2);
}

TEST_F(LogFileRotationFailure, FullPathTooLong_NothingMoves)
{
    AddFiles(2);
    for (const DWORD length : {260, 300})
    {
        const auto call =
            FailCall<decltype(GetFullPathNameW)>("GetFullPathNameW", 0, length, ERROR_INSUFFICIENT_BUFFER);
        Rotate();
        ExpectUntouched(2);
    }
}

TEST_F(LogFileRotationFailure, FullPathThatCannotBeTold_RecordGoesIntoTheLargeFile)
{
    m_product.Number(L"MaxLogSize", 1);
    const std::string large = std::string(ByteOrderMark).append(OldLine).append(2000, '.');
    m_folder.Add(m_folder.LogPath(), large);
    const auto call = FailCall<decltype(GetFullPathNameW)>("GetFullPathNameW", 0, 0, ERROR_INVALID_NAME);
    const LogRecord record = MakeRecord(L"x");
    Listener().Write(record);
    EXPECT_EQ(BytesIn(m_folder.LogPath()), large + LineOf(record));
}

TEST_F(LogFileRotationFailure, SearchThatFails_LogFileStaysBehindTheFirst)
{
    AddFiles(2);
    const auto call =
        FailCall<decltype(FindFirstFileW)>("FindFirstFileW", 0, INVALID_HANDLE_VALUE, ERROR_ACCESS_DENIED);
    Rotate();
    ExpectUntouched(2);
}

TEST_F(LogFileRotationFailure, SearchThatFailsWithoutOlderFiles_LogFileMoves)
{
    AddFiles(0);
    const auto call =
        FailCall<decltype(FindFirstFileW)>("FindFirstFileW", 0, INVALID_HANDLE_VALUE, ERROR_ACCESS_DENIED);
    Rotate();
    EXPECT_THAT(Files(), ElementsAre("_0001.log: current"));
}

TEST_F(LogFileRotationFailure, SearchThatBreaksOff_MovesWhatWasFound)
{
    AddFiles(3);
    const auto call = FailCall<decltype(FindNextFileW)>("FindNextFileW", 1, FALSE, ERROR_NO_MORE_FILES);
    Rotate();
    EXPECT_EQ(Files().size(), 4u) << "nothing is lost";
}

TEST_F(LogFileRotationFailure, OldestThatCannotBeDeleted_StaysAndNothingElseIsLost)
{
    AddFiles(9);
    const auto call = FailCall<decltype(DeleteFileW)>("DeleteFileW", 0, FALSE, ERROR_ACCESS_DENIED);
    Rotate();
    const Strings files = Files();
    EXPECT_EQ(files.size(), 10u);
    EXPECT_THAT(files, testing::IsSupersetOf(Shifted(7)));
    EXPECT_THAT(files, testing::Contains("_0009.log: older 9"));
    EXPECT_THAT(files, testing::Contains(testing::EndsWith(": older 8")));
}

TEST_F(LogFileRotationFailure, TemporaryFileThatCannotBeDeleted_StopsTheRenaming)
{
    AddFiles(1);
    wchar_t name[MAX_PATH];
    ASSERT_NE(GetTempFileNameW(m_folder.Folder().c_str(), L"_log_", 2, name), 0u);
    m_folder.Add(name, "left over");
    const auto call = FailCall<decltype(DeleteFileW)>("DeleteFileW", 0, FALSE, ERROR_ACCESS_DENIED);
    Rotate();
    EXPECT_THAT(Files(), testing::IsSupersetOf({".log: current", "_0001.log: older 1"}));
    EXPECT_EQ(BytesIn(name), "left over");
}

TEST_F(LogFileRotationFailure, NoTemporaryName_OlderFilesStay)
{
    AddFiles(2);
    const auto call = FailCall<decltype(GetTempFileNameW)>("GetTempFileNameW", 0, 0, ERROR_ACCESS_DENIED);
    Rotate();
    ExpectUntouched(2);
}

TEST_F(LogFileRotationFailure, FirstMoveToATemporaryName_StopsTheRenaming)
{
    RotateWithFailingMove(1);
    ExpectUntouched(2);
}

TEST_F(LogFileRotationFailure, SecondMoveToATemporaryName_FirstStillGetsItsNumber)
{
    RotateWithFailingMove(2);
    EXPECT_THAT(Files(), ElementsAre(".log: current", "_0001.log: older 1", "_0003.log: older 2"));
}

TEST_F(LogFileRotationFailure, MoveToANumber_LeavesTheFileUnderItsTemporaryName)
{
    RotateWithFailingMove(3);
    EXPECT_THAT(Files(), testing::UnorderedElementsAre("_0001.log: current", "_0002.log: older 1",
                                                       testing::EndsWith(": older 2")));
}

TEST_F(LogFileRotationFailure, MoveOfTheLogFile_LeavesItsPlaceFree)
{
    RotateWithFailingMove(5);
    EXPECT_THAT(Files(), ElementsAre(".log: current", "_0002.log: older 1", "_0003.log: older 2"));
}

TEST_F(LogFileRotationFailure, EveryMove_LosesNoFile)
{
    RotateWithFailingMove(0);
    ExpectUntouched(2);
}

TEST_F(LogFileRotationFailure, NoMemory_NothingIsChanged)
{
    for (std::size_t nth = 1;; ++nth)
    {
        AddFiles(9);
        bool bitten = false;
        {
            const AllocationFault fault(nth);
            try
            {
                Rotate();
            }
            catch (const std::bad_alloc&)
            {
            }
            bitten = AllocationFault::HasBitten();
        }
        if (!bitten)
        {
            EXPECT_GT(nth, 5u);
            break;
        }
        ExpectUntouched(9);
    }
    EXPECT_EQ(Files(), Shifted(8));
}

TEST_F(LogFileRotationFailure, NoMemoryInTheMiddle_OpensTheFileAgainAndFreesTheMutex)
{
    m_product.Number(L"MaxLogSize", 1);
    bool isWhole = false;
    for (std::size_t nth = 1; !isWhole; ++nth)
    {
        m_folder.Add(m_folder.LogPath(), std::string(ByteOrderMark).append(OldLine).append(2000, '.').append("\r\n"));
        auto listener = Listener();
        const LogRecord record = MakeRecord(L"x");
        {
            const AllocationFault fault(nth);
            try
            {
                listener.Write(record);
            }
            catch (const std::bad_alloc&)
            {
            }
            isWhole = !AllocationFault::HasBitten();
        }
        listener.Write(MakeRecord(L"after"));
        EXPECT_TRUE(BytesIn(m_folder.LogPath()).ends_with("|after\r\n")) << nth;
        EXPECT_TRUE(OtherThreadCanWrite()) << nth;
    }
}

TEST_F(LogFileRotationFailure, FileThatCannotBeOpenedAgain_LosesTheRecordAndFreesTheMutex)
{
    m_product.Number(L"MaxLogSize", 1);
    m_folder.Add(m_folder.LogPath(), std::string(ByteOrderMark).append(OldLine).append(2000, '.'));
    auto listener = Listener();
    {
        const auto call = FailCall<decltype(_wfopen_s)>("_wfopen_s", 2, EACCES, ERROR_ACCESS_DENIED);
        listener.Write(MakeRecord(L"lost"));
    }
    EXPECT_THAT(m_folder.Names(), ElementsAre(L"logfile_tests_0001.log"));
    EXPECT_TRUE(OtherThreadCanWrite());
    listener.Write(MakeRecord(L"kept"));
    EXPECT_THAT(Messages(), ElementsAre("kept"));
}

TEST_F(LogFileRotationFailure, ForeignFileMovedAsideAndNotOpenedAgain_FreesTheMutex)
{
    m_folder.Add(m_folder.LogPath(), "foreign");
    const auto call = FailCall<decltype(_wfopen_s)>("_wfopen_s", 2, EACCES, ERROR_ACCESS_DENIED);
    auto listener = Listener();
    EXPECT_TRUE(OtherThreadCanWrite());
    listener.Write(MakeRecord(L"kept"));
    EXPECT_THAT(Messages(), ElementsAre("kept"));
}
} // namespace
