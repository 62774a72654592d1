#include "shared/LogDataList.h"

#include "tests/support/AllocationFault.h"

#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <string>

namespace
{
using namespace Orvik::Shared;
using LogData = COrvikLogListener::LogData;

std::wstring Text(std::size_t number)
{
    return std::to_wstring(number) + std::wstring(number % 511, L'\x20AC');
}

void PushNumbered(CLogDataList& list, std::size_t first, std::size_t last)
{
    for (std::size_t number = first; number <= last; ++number)
        list.PushBack(
            LogData(static_cast<int>(number % 7), std::string(number % 13, 'F').c_str(), Text(number).c_str()));
}

void ExpectNumbered(CLogDataList& list, std::size_t first, std::size_t last)
{
    for (std::size_t number = first; number <= last; ++number, list.PopFront())
    {
        ASSERT_FALSE(list.IsEmpty()) << number;
        const LogData data = list.Front();
        ASSERT_EQ(data.Message(), Text(number));
        ASSERT_EQ(data.FunctionName(), std::string(number % 13, 'F'));
        ASSERT_EQ(data.Level(), static_cast<int>(number % 7));
    }
    EXPECT_TRUE(list.IsEmpty());
}

TEST(LogDataList, NewList_IsEmpty)
{
    EXPECT_TRUE(CLogDataList().IsEmpty());
}

TEST(LogDataList, Records_ComeBackOldestFirst)
{
    CLogDataList list;
    PushNumbered(list, 1, 3'000);
    ExpectNumbered(list, 1, 3'000);
}

TEST(LogDataList, Record_KeepsTimeAndThreadOfItsOrigin)
{
    const LogData data(5, "N::C::F", L"text");
    CLogDataList list;
    list.PushBack(data);
    Sleep(20);
    const LogData copy = list.Front();
    EXPECT_EQ(std::memcmp(&copy.Time(), &data.Time(), sizeof(SYSTEMTIME)), 0);
    EXPECT_EQ(copy.ThreadId(), data.ThreadId());
    EXPECT_EQ(copy.GetLine(), data.GetLine());
}

TEST(LogDataList, LineThatWasMade_IsNotMadeAgain)
{
    const LogData data(5, "N::C::F", L"text");
    const_cast<std::wstring&>(data.LevelName()) = L"marked";
    const_cast<std::wstring&>(data.GetLine()) = L"marked line";
    CLogDataList list;
    list.PushBack(data);
    EXPECT_EQ(list.Front().LevelName(), L"marked");
    EXPECT_EQ(list.Front().GetLine(), L"marked line");
}

TEST(LogDataList, EmptyTexts_ComeBackEmpty)
{
    CLogDataList list;
    list.PushBack(LogData(0, nullptr, nullptr));
    EXPECT_EQ(list.Front().FunctionName(), "");
    EXPECT_EQ(list.Front().Message(), L"");
}

TEST(LogDataList, RecordsBehindSomeThatWereRead_StandBehindTheOthers)
{
    CLogDataList list;
    PushNumbered(list, 1, 10);
    for (int i = 0; i < 5; ++i)
        list.PopFront();
    PushNumbered(list, 11, 300);
    ExpectNumbered(list, 6, 300);
}

TEST(LogDataList, RecordOfAnySize_FindsRoom)
{
    const std::string name(70'001, 'N');
    const std::wstring message(70'002, L'm');
    const LogData data(5, name.c_str(), message.c_str());
    const std::wstring line = data.GetLine();
    CLogDataList list;
    PushNumbered(list, 1, 1);
    list.PushBack(data);
    PushNumbered(list, 2, 2);
    list.PopFront();
    EXPECT_EQ(list.Front().FunctionName(), name);
    EXPECT_EQ(list.Front().Message(), message);
    EXPECT_EQ(list.Front().GetLine(), line);
    list.PopFront();
    ExpectNumbered(list, 2, 2);
}

TEST(LogDataList, RecordsTaken_StandBehindTheOthers)
{
    CLogDataList list;
    CLogDataList other;
    PushNumbered(list, 1, 5);
    PushNumbered(other, 6, 9);
    list.PopFront();
    list.TakeAll(other);
    EXPECT_TRUE(other.IsEmpty());
    PushNumbered(other, 1, 2);
    PushNumbered(list, 10, 40);
    ExpectNumbered(list, 2, 40);
    ExpectNumbered(other, 1, 2);
}

TEST(LogDataList, ClearedList_CanBeUsedAgain)
{
    CLogDataList list;
    PushNumbered(list, 1, 100);
    list.Clear();
    EXPECT_TRUE(list.IsEmpty());
    PushNumbered(list, 1, 2);
    ExpectNumbered(list, 1, 2);
}

TEST(LogDataList, UsualRecords_ShareAllocations)
{
    const LogData data(5, "Notifications::OrvikWmiEvents::COrvikWmiEvents::ProcessSmartAdapterEvent",
                       L"a usual message");
    CLogDataList list;
    const std::size_t before = AllocationFault::Count();
    for (int i = 0; i < 12; ++i)
        list.PushBack(data);
    EXPECT_LE(AllocationFault::Count() - before, 2u);
}

TEST(LogDataList, NoMemory_KeepsWhatIsThere)
{
    const LogData data(5, std::string(5'000, 'N').c_str(), L"text");
    CLogDataList list;
    PushNumbered(list, 1, 20);
    for (const std::size_t nth : {1, 2})
    {
        const AllocationFault fault(nth);
        EXPECT_THROW(list.PushBack(data), std::bad_alloc) << nth;
    }
    PushNumbered(list, 21, 40);
    ExpectNumbered(list, 1, 40);
}

TEST(LogDataList, NoMemoryForTheCopyHandedOut_KeepsTheRecord)
{
    const LogData data(5, std::string(100, 'N').c_str(), L"a message that is longer than a text holds in itself");
    CLogDataList list;
    list.PushBack(data);
    {
        const AllocationFault fault(1);
        EXPECT_THROW(static_cast<void>(list.Front()), std::bad_alloc);
    }
    EXPECT_EQ(list.Front().GetLine(), data.GetLine());
}
} // namespace
