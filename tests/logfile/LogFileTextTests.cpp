#include "tests/logfile/LogFileTest.h"

namespace
{
using testing::ElementsAre;

class LogFileText : public LogFileTest
{
protected:
    // The message as the file has it, in UTF-8.
    std::string Written(std::wstring_view message)
    {
        DeleteFileW(m_folder.LogPath().c_str());
        Listener().Write(MakeRecord(message));
        const std::string bytes = BytesIn(m_folder.LogPath());
        const std::string start = LineOf(MakeRecord(L""));
        // The time differs, the length does not.
        const std::size_t prefix = ByteOrderMark.size() + start.size() - 2;
        EXPECT_TRUE(bytes.starts_with(ByteOrderMark) && bytes.size() >= prefix + 2) << bytes;
        EXPECT_TRUE(bytes.ends_with("\r\n")) << bytes;
        return bytes.substr(prefix, bytes.size() - prefix - 2);
    }
};

TEST_F(LogFileText, Records_StandByteForByteBehindOneMark)
{
    auto listener = Listener();
    std::string expected(ByteOrderMark);
    for (const wchar_t* message : {L"first", L"second", L"", L"a | b"})
    {
        const LogRecord record = MakeRecord(message);
        listener.Write(record);
        expected += LineOf(record);
        EXPECT_EQ(BytesIn(m_folder.LogPath()), expected);
    }
}

TEST_F(LogFileText, EachLevel_ShowsItsName)
{
    auto listener = Listener();
    std::string expected(ByteOrderMark);
    for (int level = Orvik::Shared::Level::TraceIn; level <= Orvik::Shared::Level::Diag; ++level)
    {
        const LogRecord record(level, "N::C::F", L"x");
        listener.Write(record);
        expected += LineOf(record);
    }
    EXPECT_EQ(BytesIn(m_folder.LogPath()), expected);
    EXPECT_THAT(expected, testing::HasSubstr("|Information|N::C::F|x\r\n"));
}

TEST_F(LogFileText, FourWritersOfTheSameFile_MakeOneMark)
{
    for (int i = 0; i < 4; ++i)
        Listener(i % 2 != 0).Write(MakeRecord(L"x"));
    EXPECT_THAT(Messages(), ElementsAre("x", "x", "x", "x"));
}

TEST_F(LogFileText, CharactersOutsideAscii_AreUtf8)
{
    EXPECT_EQ(Written(L"\u00E4\u20AC\u65E5\u0416"), "\xC3\xA4\xE2\x82\xAC\xE6\x97\xA5\xD0\x96");
    EXPECT_EQ(Written(L"\xD83D\xDE00"), "\xF0\x9F\x98\x80") << "a pair of surrogates is one character";
    EXPECT_EQ(Written(L"\uFEFF"), ByteOrderMark) << "a mark within a message is its own";
}

TEST_F(LogFileText, UnpairedSurrogates_BecomeReplacementCharacters)
{
    constexpr const char* replacement = "\xEF\xBF\xBD";
    EXPECT_EQ(Written(L"a\xD83Dz"), std::string("a") + replacement + "z");
    EXPECT_EQ(Written(L"a\xDE00z"), std::string("a") + replacement + "z");
    EXPECT_EQ(Written(L"a\xD83D"), std::string("a") + replacement) << "at the end of the line";
}

TEST_F(LogFileText, RecordAfterAnUnpairedSurrogate_IsWhole)
{
    auto listener = Listener();
    listener.Write(MakeRecord(L"a\xD83D"));
    listener.Write(MakeRecord(L"b"));
    EXPECT_THAT(Messages(), ElementsAre("a\xEF\xBF\xBD", "b"));
}

TEST_F(LogFileText, LineEndsWithinAMessage_AreThoseOfText)
{
    EXPECT_EQ(Written(L"a\nb"), "a\r\nb");
}

TEST_F(LogFileText, LongestMessage_IsWhole)
{
    EXPECT_EQ(Written(std::wstring(511, L'x')), std::string(511, 'x'));
    std::string expected;
    for (int i = 0; i < 511; ++i)
        expected += "\xE6\x97\xA5";
    EXPECT_EQ(Written(std::wstring(511, L'\u65E5')), expected);
}

TEST_F(LogFileText, FarLongerText_IsWhole)
{
    EXPECT_EQ(Written(std::wstring(20'000, L'x')), std::string(20'000, 'x'));
}

// The runtime converts what it writes piece by piece and separates the two of a pair that lies in two pieces.
TEST_F(LogFileText, ManyPairsOfSurrogates_DamageNothingElse)
{
    constexpr std::string_view character = "\xF0\x9F\x98\x80";
    constexpr std::string_view separated = "\xEF\xBF\xBD\xEF\xBF\xBD";
    std::string expected(ByteOrderMark);
    CLogFile file{LoggingPolicy()};
    ASSERT_TRUE(file.OpenAndLock());
    for (std::size_t offset = 0; offset < 200; ++offset)
    {
        std::wstring message(offset, L'.');
        while (message.size() + 2 <= 511)
            message += L"\xD83D\xDE00";
        const LogRecord record = MakeRecord(message);
        file.WriteRecord(record);
        expected += LineOf(record);
    }
    file.CloseAndUnlock();
    std::string bytes = BytesIn(m_folder.LogPath());
    for (std::size_t at = bytes.find(separated); at != std::string::npos; at = bytes.find(separated, at))
        bytes.replace(at, separated.size(), character);
    EXPECT_TRUE(bytes == expected);
}

TEST_F(LogFileText, FileOpenedByAReader_IsWrittenMeanwhile)
{
    auto listener = Listener();
    listener.Write(MakeRecord(L"a"));
    const Orvik::Shared::UniqueHandle reader(CreateFileW(m_folder.LogPath().c_str(), GENERIC_READ,
                                                         FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0,
                                                         nullptr));
    listener.Write(MakeRecord(L"b"));
    EXPECT_THAT(Messages(), ElementsAre("a", "b"));
}
} // namespace
