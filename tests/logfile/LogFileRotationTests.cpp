#include "tests/logfile/RotationTest.h"

namespace
{
using Orvik::Shared::UniqueHandle;
using testing::Contains;
using testing::ElementsAre;

class LogFileRotation : public RotationTest
{
};

TEST_F(LogFileRotation, NoOlderFile_LogFileIsTheFirst)
{
    AddFiles(0);
    Rotate();
    EXPECT_THAT(Files(), ElementsAre("_0001.log: current"));
}

TEST_F(LogFileRotation, OneOlderFile_MovesUp)
{
    AddFiles(1);
    Rotate();
    EXPECT_EQ(Files(), Shifted(1));
}

TEST_F(LogFileRotation, EightOlderFiles_AllMoveUp)
{
    AddFiles(8);
    Rotate();
    EXPECT_EQ(Files(), Shifted(8));
}

TEST_F(LogFileRotation, NineOlderFiles_LoseTheOldest)
{
    AddFiles(9);
    Rotate();
    EXPECT_EQ(Files(), Shifted(8));
}

TEST_F(LogFileRotation, TenAndElevenOlderFiles_LoseNone)
{
    AddFiles(10);
    Rotate();
    EXPECT_EQ(Files(), Shifted(10));
    AddFiles(11);
    Rotate();
    EXPECT_EQ(Files(), Shifted(11));
}

TEST_F(LogFileRotation, NumbersAgainstTheAge_AreThoseOfTheAgeAfterwards)
{
    AddFiles(0);
    for (unsigned i = 1; i <= 9; ++i)
        m_folder.Add(m_folder.Older(i), "older " + std::to_string(10 - i), 10 - i);
    Rotate();
    EXPECT_EQ(Files(), Shifted(8));
}

TEST_F(LogFileRotation, GapsInTheNumbers_Close)
{
    AddFiles(0);
    m_folder.Add(m_folder.Older(4), "older 1", 1).Add(m_folder.Older(8), "older 2", 2);
    Rotate();
    EXPECT_EQ(Files(), Shifted(2));
}

TEST_F(LogFileRotation, ForeignNamesThatMatch_GetNumbersByAge)
{
    AddFiles(1);
    AddForeign(L"logfile_tests_backup.log", "older 3", 3);
    AddForeign(L"logfile_tests_.log", "older 2", 2);
    Rotate();
    EXPECT_EQ(Files(), Shifted(3));
}

TEST_F(LogFileRotation, ForeignNamesThatMatch_CountAmongTheNine)
{
    AddFiles(8);
    AddForeign(L"logfile_tests_backup.log", "a backup", 20);
    Rotate();
    EXPECT_EQ(Files(), Shifted(8)) << "the oldest is the backup";
}

TEST_F(LogFileRotation, NamesThatDoNotMatch_StayAsTheyAre)
{
    AddFiles(1);
    AddForeign(L"logfile_tests-0001.log", "another", 5);
    AddForeign(L"other_0001.log", "another", 6);
    AddForeign(L"logfile_tests_0001.txt", "another", 7);
    Rotate();
    EXPECT_THAT(Files(), ElementsAre("-0001.log: another", "_0001.log: current", "_0001.txt: another",
                                     "_0002.log: older 1", "other_0001.log: another"));
}

TEST_F(LogFileRotation, FolderThatMatches_StaysAndDoesNotCount)
{
    AddFiles(8);
    ASSERT_TRUE(CreateDirectoryW(m_folder.Path(L"logfile_tests_folder.log").c_str(), nullptr));
    Rotate();
    Strings expected = Shifted(8);
    expected.emplace_back("_folder.log: a folder");
    EXPECT_EQ(Files(), expected);
}

TEST_F(LogFileRotation, EqualTimes_OneOfTheTwoStays)
{
    AddFiles(1);
    AddForeign(L"logfile_tests_a.log", "a", 5);
    AddForeign(L"logfile_tests_b.log", "b", 5);
    Rotate();
    const Strings files = Files();
    EXPECT_EQ(files.size(), 4u);
    EXPECT_THAT(files, Contains("_0001.log: current"));
    EXPECT_THAT(files, Contains("_0002.log: older 1"));
    if (Exists(m_folder.Path(L"logfile_tests_a.log")))
        EXPECT_THAT(files, testing::IsSupersetOf({"_a.log: a", "_0003.log: b"}));
    else
        EXPECT_THAT(files, testing::IsSupersetOf({"_b.log: b", "_0003.log: a"}));
}

TEST_F(LogFileRotation, NineOfWhichTwoHaveEqualTimes_LoseNone)
{
    AddFiles(8);
    AddForeign(L"logfile_tests_twin.log", "a twin", 8);
    Rotate();
    EXPECT_EQ(Files().size(), 10u);
    EXPECT_THAT(Files(), testing::IsSupersetOf(Shifted(7)));
}

TEST_F(LogFileRotation, TimesOneTickApart_AreNotEqual)
{
    AddFiles(0);
    AddForeign(L"logfile_tests_a.log", "a", 5);
    AddForeign(L"logfile_tests_b.log", "b", 5);
    const UniqueHandle file(CreateFileW(m_folder.Path(L"logfile_tests_b.log").c_str(),
                                        FILE_READ_ATTRIBUTES | FILE_WRITE_ATTRIBUTES, FILE_SHARE_READ, nullptr,
                                        OPEN_EXISTING, 0, nullptr));
    FILETIME time;
    ASSERT_TRUE(GetFileTime(file.get(), nullptr, nullptr, &time));
    ++time.dwLowDateTime;
    ASSERT_TRUE(SetFileTime(file.get(), nullptr, nullptr, &time));
    const_cast<UniqueHandle&>(file).reset();
    Rotate();
    EXPECT_THAT(Files(), ElementsAre("_0001.log: current", "_0002.log: b", "_0003.log: a"));
}

TEST_F(LogFileRotation, TimesWithEqualLowParts_AreNotEqual)
{
    AddFiles(0);
    ULONGLONG value = 130'000'000'000'000'000;
    for (const wchar_t* name : {L"logfile_tests_a.log", L"logfile_tests_b.log"})
    {
        AddForeign(name, name == std::wstring_view(L"logfile_tests_a.log") ? "a" : "b", 1);
        const FILETIME time{static_cast<DWORD>(value), static_cast<DWORD>(value >> 32)};
        const UniqueHandle file(
            CreateFileW(m_folder.Path(name).c_str(), FILE_WRITE_ATTRIBUTES, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        ASSERT_TRUE(SetFileTime(file.get(), nullptr, nullptr, &time));
        value += 1ULL << 32;
    }
    Rotate();
    EXPECT_THAT(Files(), ElementsAre("_0001.log: current", "_0002.log: b", "_0003.log: a"));
}

TEST_F(LogFileRotation, NoLogFile_OlderOnesMoveUpAllTheSame)
{
    AddFiles(2);
    DeleteFileW(m_folder.LogPath().c_str());
    Rotate();
    EXPECT_THAT(Files(), ElementsAre("_0002.log: older 1", "_0003.log: older 2"));
}

TEST_F(LogFileRotation, ReadOnlyOlderFile_MovesUp)
{
    AddFiles(2);
    ASSERT_TRUE(SetFileAttributesW(m_folder.Older(1).c_str(), FILE_ATTRIBUTE_READONLY));
    Rotate();
    EXPECT_EQ(Files(), Shifted(2));
    EXPECT_TRUE(SetFileAttributesW(m_folder.Older(2).c_str(), FILE_ATTRIBUTE_NORMAL));
}

TEST_F(LogFileRotation, LeftOverTemporaryFile_IsReplaced)
{
    AddFiles(1);
    wchar_t name[MAX_PATH];
    ASSERT_NE(GetTempFileNameW(m_folder.Folder().c_str(), L"_log_", 2, name), 0u);
    m_folder.Add(name, "left over");
    Rotate();
    EXPECT_EQ(Files(), Shifted(1));
}

TEST_F(LogFileRotation, ManyRotations_KeepTheLastNine)
{
    for (unsigned i = 1; i <= 25; ++i)
    {
        m_folder.Add(m_folder.LogPath(), "log " + std::to_string(i), 100 - i);
        Rotate();
        EXPECT_EQ(Files().size(), std::min(i, 9u));
    }
    for (unsigned i = 1; i <= 9; ++i)
        EXPECT_EQ(BytesIn(m_folder.Older(i)), "log " + std::to_string(26 - i));
}

TEST_F(LogFileRotation, LastDotOfThePath_EndsTheStem)
{
    m_folder.Add(m_folder.Path(L"a.b.log"), "current").Add(m_folder.Path(L"a.b_0001.log"), "older", 1);
    Rotate(m_folder.Path(L"a.b.log"));
    EXPECT_THAT(Files(), ElementsAre("a.b_0001.log: current", "a.b_0002.log: older"));
}

// The names of the older files are longer than that of the log file.
TEST_F(LogFileRotation, LongestPath_IsRotatedOrLeftWhole)
{
    const std::size_t missing = 258 - m_folder.LogPath().size();
    const std::wstring folder = m_folder.ApplicationData() + L"\\" + std::wstring(missing, L'x');
    ASSERT_TRUE(CreateDirectoryW(folder.c_str(), nullptr));
    m_folder.Tell(folder);
    m_product.Number(L"MaxLogSize", 1);
    auto listener = Listener();
    for (int i = 0; i < 40; ++i)
        listener.Write(MakeRecord(L"message " + std::to_wstring(i)));
    const std::wstring path = folder + L"\\orvikLog\\logfile_tests.log";
    Strings messages;
    for (const std::wstring& name :
         {path.substr(0, path.size() - 4) + L"_0002.log", path.substr(0, path.size() - 4) + L"_0001.log", path})
    {
        if (Exists(name))
            std::ranges::copy(MessagesIn(BytesIn(name)), std::back_inserter(messages));
    }
    EXPECT_EQ(messages.size(), 40u);
    EXPECT_EQ(messages.back(), "message 39");
}
} // namespace
