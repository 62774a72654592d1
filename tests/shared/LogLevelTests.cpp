#include "shared/LogLevel.h"

#include <gtest/gtest.h>

#include <climits>

namespace
{
using namespace Orvik::Shared;

constexpr const wchar_t* g_names[] = {L"TraceIn", L"TraceOut", L"Verbose", L"Information",
                                      L"Warning", L"Error",    L"Diag"};

TEST(LogLevel, Numbers_HaveTheirNames)
{
    for (int level = 0; level <= 6; ++level)
        EXPECT_EQ(LevelName(level), g_names[level]);
}

TEST(LogLevel, OtherNumbers_AreUndefined)
{
    for (const int level : {-1, 7, 30, 31, 98, 99, 100, INT_MAX, INT_MIN})
        EXPECT_EQ(LevelName(level), L"Undefined") << level;
}

TEST(LogLevel, Names_HaveTheirNumbersInAnyCase)
{
    for (int level = 0; level <= 6; ++level)
    {
        std::wstring name = g_names[level];
        EXPECT_EQ(LevelFromName(name), level);
        _wcsupr(name.data());
        EXPECT_EQ(LevelFromName(name), level);
        _wcslwr(name.data());
        EXPECT_EQ(LevelFromName(name), level);
    }
}

TEST(LogLevel, UnknownNames_GiveNever)
{
    for (const wchar_t* name : {L"", L"Never", L"never", L"Verb", L"Verbose ", L" Verbose", L"VerboseVerbose", L"2",
                                L"Undefined", L"Trace", L"\u0130nformation"})
        EXPECT_EQ(LevelFromName(name), 99) << name;
}

TEST(LogLevel, NameWithoutTerminator_IsReadToItsEndOnly)
{
    const std::wstring_view text = L"ErrorDiag";
    EXPECT_EQ(LevelFromName(text.substr(0, 5)), Level::Error);
    EXPECT_EQ(LevelFromName(text.substr(5)), Level::Diag);
}
} // namespace
