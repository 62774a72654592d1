#include "shared/LogFilePath.h"

#include "tests/logfile/LogFileTest.h"

namespace
{
using namespace Orvik::Shared;
using testing::IsEmpty;

class LogFilePathTest : public LogFileTest
{
protected:
    // A folder under the test's own with which the path of the log file has so many characters.
    [[nodiscard]] std::wstring FolderForPathOf(std::size_t length) const
    {
        const std::size_t ending = m_folder.LogPath().size() - m_folder.ApplicationData().size();
        const std::size_t missing = length - ending - m_folder.ApplicationData().size() - 1;
        const std::wstring folder = m_folder.ApplicationData() + L"\\" + std::wstring(missing, L'x');
        EXPECT_TRUE(CreateDirectoryW(folder.c_str(), nullptr)) << GetLastError();
        return folder;
    }
};

TEST_F(LogFilePathTest, NoFolderYet_IsMade)
{
    EXPECT_EQ(LogFilePath(), m_folder.ApplicationData() + L"\\orvikLog\\logfile_tests.log");
    EXPECT_TRUE(Exists(m_folder.Folder()));
    EXPECT_THAT(m_folder.Names(), IsEmpty());
}

TEST_F(LogFilePathTest, FolderOfEarlierRuns_IsUsed)
{
    m_folder.Add(m_folder.Path(L"other.log"), "x");
    EXPECT_EQ(LogFilePath(), m_folder.LogPath());
    EXPECT_TRUE(Exists(m_folder.Path(L"other.log")));
}

TEST_F(LogFilePathTest, NoApplicationData_IsEmpty)
{
    const auto call = FailCall<decltype(SHGetFolderPathW)>("SHGetFolderPathW", 0, E_FAIL, ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(LogFilePath(), L"");
    EXPECT_FALSE(Exists(m_folder.Folder()));
}

TEST_F(LogFilePathTest, FolderThatCannotBeMade_IsEmpty)
{
    m_folder.Tell(m_folder.ApplicationData() + L"\\no such folder");
    EXPECT_EQ(LogFilePath(), L"");
}

TEST_F(LogFilePathTest, RefusedFolder_IsEmpty)
{
    const auto call = FailCall<decltype(CreateDirectoryW)>("CreateDirectoryW", 0, FALSE, ERROR_ACCESS_DENIED);
    EXPECT_EQ(LogFilePath(), L"");
}

TEST_F(LogFilePathTest, LongestPath_HasRoomForItsTerminator)
{
    m_folder.Tell(FolderForPathOf(259));
    EXPECT_EQ(LogFilePath().size(), 259u);
}

TEST_F(LogFilePathTest, PathOf260Characters_IsEmpty)
{
    m_folder.Tell(FolderForPathOf(260));
    EXPECT_EQ(LogFilePath(), L"");
}

TEST_F(LogFilePathTest, LongestPath_IsWrittenTo)
{
    m_folder.Tell(FolderForPathOf(259));
    Listener().Write(MakeRecord(L"x"));
    EXPECT_THAT(MessagesIn(BytesIn(LogFilePath())), testing::ElementsAre("x"));
}

TEST_F(LogFilePathTest, PathOf260Characters_MakesAListenerThatWritesNothing)
{
    const std::wstring folder = FolderForPathOf(260);
    m_folder.Tell(folder);
    for (const bool queued : {false, true})
        Listener(queued).Write(MakeRecord(L"x"));
    EXPECT_TRUE(RemoveDirectoryW((folder + L"\\orvikLog").c_str())) << "it is not empty";
}

TEST(LogMutexName, PathWithDrive_LosesItAndItsBackslashes)
{
    EXPECT_EQ(LogMutexName(L"C:\\Users\\ann\\AppData\\Roaming\\orvikLog\\OrvikNotifications.log"),
              L"Global\\.Users.ann.AppData.Roaming.orvikLog.OrvikNotifications.log");
}

TEST(LogMutexName, PathWithoutColon_IsWhole)
{
    EXPECT_EQ(LogMutexName(L"\\\\server\\share\\x.log"), L"Global\\..server.share.x.log");
    EXPECT_EQ(LogMutexName(L"x.log"), L"Global\\x.log");
}

TEST(LogMutexName, LeadingColon_Stays)
{
    EXPECT_EQ(LogMutexName(L":\\x.log"), L"Global\\:.x.log");
    EXPECT_EQ(LogMutexName(L":a:\\x.log"), L"Global\\:a:.x.log") << "only the first colon is looked at";
}

TEST(LogMutexName, FurtherColons_Stay)
{
    EXPECT_EQ(LogMutexName(L"C:\\x:stream.log"), L"Global\\.x:stream.log");
}

TEST_F(LogFilePathTest, Listener_MakesTheMutexOfThatName)
{
    std::wstring name;
    const auto call = Replace<decltype(CreateMutexW)>("CreateMutexW",
                                                      [&name](auto original, auto security, BOOL owned, LPCWSTR asked)
                                                      {
                                                          EXPECT_EQ(security, nullptr);
                                                          EXPECT_FALSE(owned);
                                                          name = asked;
                                                          return original(security, owned, asked);
                                                      });
    Listener();
    EXPECT_EQ(name, LogMutexName(m_folder.LogPath()));
}
} // namespace
