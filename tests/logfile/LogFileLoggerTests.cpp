#include "shared/ElapsedTimer.h"
#include "shared/Logger.h"

#include "tests/logfile/HeldDisk.h"
#include "tests/logfile/LogFileTest.h"
#include "tests/logfile/WriterThreads.h"
#include "tests/support/LogCapture.h"

namespace
{
using namespace Orvik::Shared;
using testing::ElementsAre;
using testing::IsEmpty;

class LogFileLogger : public LogFileTest
{
protected:
    // Of a logger whose policy or default names the file; whether it wrote with a thread of its own.
    bool IsQueued(unsigned defaultMask)
    {
        DeleteFileW(m_folder.LogPath().c_str());
        const WriterThreads threads;
        {
            const auto logger = CLogger::Create(Level::Error, defaultMask);
            logger->Log(Level::Error, "N::C::F", L"x");
        }
        EXPECT_THAT(Messages(), ElementsAre("x")) << "one listener for the file";
        return WriterThreads::Started() != 0;
    }
};

TEST_F(LogFileLogger, LoggingTypeFile_WritesDirectlyAndNowhereElse)
{
    m_product.Text(L"LoggingType", L"FILE");
    EXPECT_FALSE(IsQueued(ListenerKind::Event));
    EXPECT_TRUE(TestSupport::NothingLogged());
    EXPECT_FALSE(IsQueued(ListenerKind::FileQueued)) << "the default does not matter";
}

TEST_F(LogFileLogger, LoggingTypeFileAndEvent_WritesToBoth)
{
    m_product.Text(L"LoggingType", L"event, file");
    EXPECT_FALSE(IsQueued(ListenerKind::Debug));
    EXPECT_TRUE(TestSupport::Logged(Level::Error, "N::C::F", L"x"));
}

TEST_F(LogFileLogger, QueuedWritesPolicy_QueuesWhatTheTypeNames)
{
    m_product.Text(L"LoggingType", L"FILE").Number(L"QueuedWrites", 1);
    EXPECT_TRUE(IsQueued(ListenerKind::Event));
}

TEST_F(LogFileLogger, DefaultMask_NamesEitherKind)
{
    EXPECT_FALSE(IsQueued(ListenerKind::File));
    EXPECT_TRUE(IsQueued(ListenerKind::FileQueued));
    EXPECT_TRUE(IsQueued(ListenerKind::File | ListenerKind::FileQueued)) << "of the two the queued one wins";
}

TEST_F(LogFileLogger, QueuedWritesPolicy_OverridesTheDefaultMask)
{
    m_product.Number(L"QueuedWrites", 0);
    EXPECT_FALSE(IsQueued(ListenerKind::FileQueued));
    m_product.Number(L"QueuedWrites", 1);
    EXPECT_TRUE(IsQueued(ListenerKind::File));
}

TEST_F(LogFileLogger, LevelPolicy_HoldsForTheFile)
{
    m_product.Text(L"LoggingType", L"FILE").Text(L"MinLogLevel", L"Verbose").Text(L"MaxLogLevel", L"Warning");
    const auto logger = CLogger::Create(Level::Error, ListenerKind::Event);
    for (int level = Level::TraceIn; level <= Level::Diag; ++level)
        logger->Log(level, "N::C::F", L"%d", level);
    EXPECT_THAT(Messages(), ElementsAre("2", "3", "4"));
}

TEST_F(LogFileLogger, MaximumDiag_TurnsTimingOnAndTimesStandInTheFile)
{
    m_product.Text(L"LoggingType", L"FILE").Text(L"MaxLogLevel", L"Diag");
    const auto logger = CLogger::Create(Level::Error, ListenerKind::Event);
    ASSERT_TRUE(logger->IsDiagTimingOn());
    {
        const CElapsedTimer timer(*logger, "N::C::F");
    }
    EXPECT_THAT(Messages(), ElementsAre(testing::MatchesRegex("Elapsed time = +\\d+\\.\\d ms\\.")));
    EXPECT_THAT(BytesIn(m_folder.LogPath()), testing::HasSubstr("|Diag       |N::C::F|"));
}

TEST_F(LogFileLogger, MaximumDiagWithQueuedWrites_TurnsTimingOn)
{
    m_product.Text(L"LoggingType", L"FILE").Text(L"MaxLogLevel", L"Diag").Number(L"QueuedWrites", 1);
    EXPECT_TRUE(CLogger::Create(Level::Error, ListenerKind::Event)->IsDiagTimingOn());
}

TEST_F(LogFileLogger, MaximumBelowDiagOrNoFile_LeavesTimingOff)
{
    m_product.Text(L"LoggingType", L"FILE");
    EXPECT_FALSE(CLogger::Create(Level::Error, ListenerKind::Event)->IsDiagTimingOn());
    m_product.Text(L"LoggingType", L"EVENT").Text(L"MaxLogLevel", L"Diag");
    EXPECT_FALSE(CLogger::Create(Level::Error, ListenerKind::Event)->IsDiagTimingOn());
}

TEST_F(LogFileLogger, Finish_BringsQueuedRecordsIntoTheFile)
{
    m_product.Text(L"LoggingType", L"FILE").Number(L"QueuedWrites", 1);
    const WriterThreads threads;
    const auto logger = CLogger::Create(Level::Error, ListenerKind::Event);
    for (int i = 1; i <= 500; ++i)
        logger->Log(Level::Error, "N::C::F", L"message %d", i);
    logger->Finish();
    EXPECT_EQ(Messages(), Numbered("message", 500));
}

TEST_F(LogFileLogger, NoFolder_LogsToTheOthersAllTheSame)
{
    m_folder.Tell(m_folder.ApplicationData() + L"\\no such folder");
    m_product.Text(L"LoggingType", L"event, file");
    CLogger::Create(Level::Error, ListenerKind::Event)->Log(Level::Error, "N::C::F", L"x");
    EXPECT_TRUE(TestSupport::Logged(Level::Error, "N::C::F", L"x"));
}

TEST_F(LogFileLogger, FullDisk_KeepsTheCallersLastError)
{
    m_product.Text(L"LoggingType", L"FILE");
    const auto logger = CLogger::Create(Level::Error, ListenerKind::Event);
    const auto call = FailCall<decltype(_wfopen_s)>("_wfopen_s", 0, EACCES, ERROR_DISK_FULL);
    SetLastError(ERROR_FILE_NOT_FOUND);
    logger->Log(Level::Error, "N::C::F", L"x");
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
    EXPECT_THAT(Messages(), IsEmpty());
}
} // namespace
