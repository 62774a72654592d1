#include "shared/LogData.h"

#include "simulator/redirect/ImportRedirection.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <type_traits>

namespace
{
using namespace Orvik::Shared;
using LogData = COrvikLogListener::LogData;

static_assert(std::has_virtual_destructor_v<LogData>);
static_assert(std::is_copy_constructible_v<LogData> && std::is_copy_assignable_v<LogData>);

void WINAPI TimeOfTheTest(LPSYSTEMTIME time)
{
    *time = {1999, 12, 5, 31, 23, 59, 58, 987};
}

TEST(LogData, NewRecord_HoldsWhatItWasGiven)
{
    const LogData data(3, "N::C::F", L"text");
    EXPECT_EQ(data.Level(), 3);
    EXPECT_EQ(data.FunctionName(), "N::C::F");
    EXPECT_EQ(data.Message(), L"text");
    EXPECT_EQ(data.LevelName(), L"Information");
    EXPECT_EQ(data.ThreadId(), GetCurrentThreadId());
}

TEST(LogData, NewRecord_TakesTheLocalTime)
{
    const Simulator::Redirection<decltype(GetLocalTime)> localTime("GetLocalTime", &TimeOfTheTest);
    const LogData data(3, "F", L"");
    EXPECT_EQ(data.Time().wYear, 1999);
    EXPECT_EQ(data.Time().wMonth, 12);
    EXPECT_EQ(data.Time().wDay, 31);
    EXPECT_EQ(data.Time().wHour, 23);
    EXPECT_EQ(data.Time().wMinute, 59);
    EXPECT_EQ(data.Time().wSecond, 58);
    EXPECT_EQ(data.Time().wMilliseconds, 987);
    EXPECT_TRUE(data.GetLine().starts_with(L"1999/12/31 23:59:58.987|")) << data.GetLine();
}

TEST(LogData, NullNameAndMessage_CountAsEmpty)
{
    const LogData data(2, nullptr, nullptr);
    EXPECT_EQ(data.FunctionName(), "");
    EXPECT_EQ(data.Message(), L"");
    EXPECT_TRUE(data.GetLine().ends_with(L"|Verbose    ||")) << data.GetLine();
}

// Function names are made of every byte that a narrow string can hold.
TEST(LogData, Line_EqualsThePrintf)
{
    std::string name;
    for (int c = 1; c <= 0xFF; ++c)
        name.push_back(static_cast<char>(c));
    const LogData data(4, name.c_str(), L"100 % | \x20AC \xD83D\xDE00");
    const SYSTEMTIME& time = data.Time();
    wchar_t expected[512];
    _snwprintf(expected, 512, L"%04d/%02d/%02d %02d:%02d:%02d.%03d|%08X|%-11s|%S|%s", time.wYear, time.wMonth,
               time.wDay, time.wHour, time.wMinute, time.wSecond, time.wMilliseconds, data.ThreadId(), L"Warning",
               name.c_str(), L"100 % | \x20AC \xD83D\xDE00");
    EXPECT_EQ(data.GetLine(), expected);
}

TEST(LogData, LevelOutsideTheNames_PrintsUndefinedPaddedToEleven)
{
    const LogData data(7, "F", L"text");
    EXPECT_NE(data.GetLine().find(L"|Undefined  |F|text"), std::wstring::npos) << data.GetLine();
}

// Nothing but the record itself can tell whether it made its line again: a mark in the first one must come back.
TEST(LogData, SecondLine_ComesFromTheCache)
{
    const LogData data(5, "N::C::F", L"text");
    const_cast<std::wstring&>(data.GetLine()) = L"marked line";
    EXPECT_EQ(data.GetLine(), L"marked line");
    const_cast<std::wstring&>(data.LevelName()) = L"marked name";
    EXPECT_EQ(data.LevelName(), L"marked name");
}

TEST(LogData, Line_ShowsTheNameThatIsKept)
{
    const LogData data(5, "F", L"text");
    const_cast<std::wstring&>(data.LevelName()) = L"marked name";
    EXPECT_TRUE(data.GetLine().ends_with(L"|marked name|F|text")) << data.GetLine();
}

TEST(LogData, Copy_HoldsEverything)
{
    LogData copy(0, "", L"");
    {
        const LogData data(5, "N::C::F", L"a message that is too long for the buffer inside a string");
        const std::wstring line = data.GetLine();
        copy = data;
        EXPECT_EQ(copy.GetLine(), line);
    }
    EXPECT_EQ(copy.Level(), 5);
    EXPECT_EQ(copy.FunctionName(), "N::C::F");
    EXPECT_EQ(copy.Message(), L"a message that is too long for the buffer inside a string");
    EXPECT_EQ(copy.LevelName(), L"Error");
}

TEST(LogData, CopyMadeBeforeTheLine_GivesTheSameLine)
{
    const LogData data(5, "N::C::F", L"text");
    const LogData copy(data);
    Sleep(20);
    EXPECT_EQ(copy.GetLine(), data.GetLine());
}

TEST(LogData, ShortLine_IsNameAndMessage)
{
    EXPECT_EQ(LogData(2, "N::C::F", L"text").ShortLine(), L"N::C::F : text\r\n");
    EXPECT_EQ(LogData(2, "", L"").ShortLine(), L" : \r\n");
}
} // namespace
