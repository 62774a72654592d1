#include "shared/RecordPrefix.h"

#include "shared/LogLevel.h"

#include <gtest/gtest.h>

#include <climits>
#include <cwchar>
#include <random>
#include <string>

namespace
{
using namespace Orvik::Shared;

std::wstring ByPrintf(const SYSTEMTIME& time, DWORD threadId, int level)
{
    wchar_t buffer[RecordPrefixCapacity];
    const std::wstring name(LevelName(level));
    const int length = _snwprintf(buffer, RecordPrefixCapacity, L"%04d/%02d/%02d %02d:%02d:%02d.%03d|%08X|%-11s|",
                                  time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond,
                                  time.wMilliseconds, threadId, name.c_str());
    return std::wstring(buffer, static_cast<std::size_t>(length));
}

std::wstring ByHand(const SYSTEMTIME& time, DWORD threadId, int level)
{
    wchar_t buffer[RecordPrefixCapacity];
    wmemset(buffer, L'#', RecordPrefixCapacity);
    const std::size_t length = WriteRecordPrefix(buffer, time, threadId, LevelName(level));
    EXPECT_LT(length, RecordPrefixCapacity);
    EXPECT_EQ(buffer[length], L'\0');
    return std::wstring(buffer, length);
}

TEST(RecordPrefix, ExampleOfARecord_HasTheDocumentedShape)
{
    const SYSTEMTIME time{2024, 3, 2, 5, 14, 7, 9, 42};
    EXPECT_EQ(ByHand(time, 0x1A2C, Level::Information), L"2024/03/05 14:07:09.042|00001A2C|Information|");
}

TEST(RecordPrefix, UndefinedLevel_IsPaddedToElevenCharacters)
{
    const SYSTEMTIME time{2024, 3, 2, 5, 14, 7, 9, 42};
    EXPECT_EQ(ByHand(time, 0, 7), L"2024/03/05 14:07:09.042|00000000|Undefined  |");
}

TEST(RecordPrefix, LargestNumbers_FillTheBufferExactly)
{
    const SYSTEMTIME time{65535, 65535, 65535, 65535, 65535, 65535, 65535, 65535};
    EXPECT_EQ(ByHand(time, 0xFFFFFFFF, Level::Information).size(), RecordPrefixCapacity - 1);
}

// Every value that a field can hold, one field at a time.
TEST(RecordPrefix, EveryValueOfEveryField_EqualsThePrintf)
{
    WORD SYSTEMTIME::* const fields[] = {&SYSTEMTIME::wYear,        &SYSTEMTIME::wMonth,  &SYSTEMTIME::wDay,
                                         &SYSTEMTIME::wHour,        &SYSTEMTIME::wMinute, &SYSTEMTIME::wSecond,
                                         &SYSTEMTIME::wMilliseconds};
    for (const auto field : fields)
    {
        for (unsigned value = 0; value <= 0xFFFF; ++value)
        {
            SYSTEMTIME time{2024, 3, 2, 5, 14, 7, 9, 42};
            time.*field = static_cast<WORD>(value);
            ASSERT_EQ(ByHand(time, value * 65537u, Level::Warning), ByPrintf(time, value * 65537u, Level::Warning));
        }
    }
}

TEST(RecordPrefix, EveryLevel_EqualsThePrintf)
{
    const SYSTEMTIME time{1999, 12, 5, 31, 23, 59, 59, 999};
    for (int level = -200; level <= 200; ++level)
        ASSERT_EQ(ByHand(time, 0xDEADBEEF, level), ByPrintf(time, 0xDEADBEEF, level));
    for (const int level : {INT_MIN, INT_MAX})
        ASSERT_EQ(ByHand(time, 0xDEADBEEF, level), ByPrintf(time, 0xDEADBEEF, level));
}

TEST(RecordPrefix, ArbitraryInput_EqualsThePrintf)
{
    std::mt19937 random(20240305);
    const auto word = [&random] { return static_cast<WORD>(random() >> (random() & 15)); };
    for (int i = 0; i < 200'000; ++i)
    {
        const SYSTEMTIME time{word(), word(), word(), word(), word(), word(), word(), word()};
        const DWORD threadId = random();
        const int level = static_cast<int>(random() % 9) - 1;
        ASSERT_EQ(ByHand(time, threadId, level), ByPrintf(time, threadId, level));
    }
}
} // namespace
