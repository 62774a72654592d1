#include "tests/logfile/LogFileTest.h"

namespace
{
using testing::ElementsAre;

// "2024/03/05 14:07:09.042|" has a mark at these positions.
constexpr std::size_t g_marks[] = {4, 7, 10, 13, 16, 19, 23};

class LogFileStart : public LogFileTest
{
protected:
    // Makes a listener over such a log file; whether it was moved aside, where it must stand unchanged.
    bool IsMovedAside(const std::string& bytes)
    {
        DeleteFileW(m_folder.Older(1).c_str());
        m_folder.Add(m_folder.LogPath(), bytes);
        Listener();
        if (!Exists(m_folder.Older(1)))
        {
            EXPECT_EQ(BytesIn(m_folder.LogPath()), bytes);
            return false;
        }
        EXPECT_EQ(BytesIn(m_folder.Older(1)), bytes);
        EXPECT_EQ(BytesIn(m_folder.LogPath()), ByteOrderMark);
        return true;
    }

    [[nodiscard]] static std::string Marked(std::string_view text) { return std::string(ByteOrderMark).append(text); }
};

TEST_F(LogFileStart, NoFile_IsMadeWithAMark)
{
    Listener();
    EXPECT_THAT(m_folder.Names(), ElementsAre(L"logfile_tests.log"));
    EXPECT_EQ(BytesIn(m_folder.LogPath()), ByteOrderMark);
}

TEST_F(LogFileStart, MarkAndRecord_IsKept)
{
    EXPECT_FALSE(IsMovedAside(Marked(OldLine)));
}

TEST_F(LogFileStart, RecordWithoutMark_IsKept)
{
    EXPECT_FALSE(IsMovedAside(std::string(OldLine)));
}

TEST_F(LogFileStart, KeptFile_IsAppendedTo)
{
    m_folder.Add(m_folder.LogPath(), Marked(OldLine));
    Listener().Write(MakeRecord(L"new"));
    EXPECT_THAT(Messages(), ElementsAre("old", "new"));
}

TEST_F(LogFileStart, KeptFile_IsAppendedToByTheWriterOfTheCheckItself)
{
    m_folder.Add(m_folder.LogPath(), Marked(OldLine));
    CLogFile file{LoggingPolicy()};
    ASSERT_TRUE(file.OpenAndLock());
    file.MoveForeignFileAside();
    file.WriteRecord(MakeRecord(L"behind the read"));
    file.CloseAndUnlock();
    EXPECT_THAT(Messages(), ElementsAre("old", "behind the read"));
}

TEST_F(LogFileStart, EmptyFile_IsKept)
{
    m_folder.Add(m_folder.LogPath(), "");
    Listener();
    EXPECT_FALSE(Exists(m_folder.Older(1)));
    EXPECT_THAT(BytesIn(m_folder.LogPath()), testing::AnyOf("", ByteOrderMark));
}

TEST_F(LogFileStart, FileOfAMarkAlone_IsKept)
{
    EXPECT_FALSE(IsMovedAside(Marked("")));
}

TEST_F(LogFileStart, FileOfAMarkAlone_IsWrittenTo)
{
    m_folder.Add(m_folder.LogPath(), ByteOrderMark);
    Listener().Write(MakeRecord(L"x"));
    EXPECT_THAT(Messages(), ElementsAre("x"));
}

TEST_F(LogFileStart, OneCharacterLessThanAStart_IsMovedAside)
{
    EXPECT_TRUE(IsMovedAside(Marked(OldLine.substr(0, 23))));
    EXPECT_FALSE(IsMovedAside(Marked(OldLine.substr(0, 24))));
}

TEST_F(LogFileStart, ShortFiles_AreMovedAside)
{
    for (const char* text : {"a", "ab", "abc", "\r\n", "2024/03/05\r\n"})
    {
        EXPECT_TRUE(IsMovedAside(text)) << text;
        EXPECT_TRUE(IsMovedAside(Marked(text))) << text << " behind a mark";
    }
}

TEST_F(LogFileStart, OtherText_IsMovedAsideHoweverSmall)
{
    EXPECT_TRUE(IsMovedAside("These are the notes of somebody else, and no log.\r\n"));
    EXPECT_TRUE(IsMovedAside(Marked("These are the notes of somebody else, and no log.\r\n")));
    EXPECT_TRUE(IsMovedAside(Marked(" ").append(OldLine))) << "a blank before the record";
    EXPECT_TRUE(IsMovedAside(Marked("\r\n").append(OldLine))) << "an empty line before the record";
}

TEST_F(LogFileStart, EachMarkWrong_IsMovedAside)
{
    for (const std::size_t mark : g_marks)
    {
        std::string line(OldLine);
        line[mark] = 'x';
        EXPECT_TRUE(IsMovedAside(Marked(line))) << mark;
    }
}

TEST_F(LogFileStart, AnyCharacterBetweenTheMarks_IsKept)
{
    std::string line(OldLine.size(), 'x');
    for (const std::size_t mark : g_marks)
        line[mark] = OldLine[mark];
    EXPECT_FALSE(IsMovedAside(Marked(line)));
}

TEST_F(LogFileStart, BytesThatAreNoText_AreMovedAside)
{
    EXPECT_TRUE(IsMovedAside(std::string(40, '\xFF')));
    EXPECT_TRUE(IsMovedAside(Marked(std::string(40, '\xFF'))));
    EXPECT_TRUE(IsMovedAside(std::string(40, '\0')));
    EXPECT_TRUE(IsMovedAside("\xFF"));
    EXPECT_TRUE(IsMovedAside("\xFF\x81"));
    EXPECT_TRUE(IsMovedAside("\xC3\xC3\xC3"));
}

TEST_F(LogFileStart, StartThatCannotBeRead_IsMovedAside)
{
    const auto call = FailCall<decltype(fgetws)>("fgetws", 0, nullptr, ERROR_READ_FAULT);
    EXPECT_TRUE(IsMovedAside(Marked(OldLine)));
    EXPECT_TRUE(IsMovedAside("abc")) << "as long as a byte-order mark, and none";
}

TEST_F(LogFileStart, FileMovedAside_LeavesTheMutexFree)
{
    m_folder.Add(m_folder.LogPath(), "foreign");
    const auto listener = Listener();
    EXPECT_TRUE(OtherThreadCanWrite());
}

TEST_F(LogFileStart, FileMovedAside_LeavesTheOlderOnesInOrder)
{
    m_folder.Add(m_folder.LogPath(), "foreign").Add(m_folder.Older(1), "older", 5);
    Listener();
    EXPECT_EQ(BytesIn(m_folder.Older(1)), "foreign");
    EXPECT_EQ(BytesIn(m_folder.Older(2)), "older");
}

TEST_F(LogFileStart, FileThatCannotBeMovedAside_IsAppendedTo)
{
    m_folder.Add(m_folder.LogPath(), Marked("foreign\r\n"));
    const auto call = FailCall<decltype(MoveFileW)>("MoveFileW", 0, FALSE, ERROR_ACCESS_DENIED);
    const LogRecord record = MakeRecord(L"x");
    Listener().Write(record);
    EXPECT_EQ(BytesIn(m_folder.LogPath()), Marked("foreign\r\n") + LineOf(record));
}

TEST_F(LogFileStart, RecordsOfAnotherListener_AreKept)
{
    auto first = Listener();
    first.Write(MakeRecord(L"a"));
    auto second = Listener();
    second.Write(MakeRecord(L"b"));
    first.Write(MakeRecord(L"c"));
    EXPECT_THAT(Messages(), ElementsAre("a", "b", "c"));
}
} // namespace
