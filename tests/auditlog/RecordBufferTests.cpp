#include "wmievents/RecordBuffer.h"

#include "simulator/redirect/ImportRedirection.h"

#include <gtest/gtest.h>

#include <algorithm>

using Notifications::OrvikWmiEvents::RecordBuffer;

namespace
{
using ReallocFunction = void*(void*, std::size_t);

void* NoMemory(void*, std::size_t)
{
    return nullptr;
}
} // namespace

TEST(RecordBuffer, BeforeItGrows_HasNothing)
{
    RecordBuffer buffer;
    EXPECT_EQ(buffer.Data(), nullptr);
    EXPECT_EQ(buffer.Size(), 0u);
    EXPECT_TRUE(buffer.First(10).empty());
}

TEST(RecordBuffer, Growing_KeepsTheBytes)
{
    RecordBuffer buffer;
    ASSERT_TRUE(buffer.Grow(4));
    EXPECT_EQ(buffer.Size(), 4u);
    std::fill_n(buffer.Data(), 4, std::byte{7});
    ASSERT_TRUE(buffer.Grow(100000));
    EXPECT_EQ(buffer.Size(), 100000u);
    EXPECT_TRUE(std::all_of(buffer.Data(), buffer.Data() + 4, [](std::byte value) { return value == std::byte{7}; }));
    std::fill_n(buffer.Data(), 100000, std::byte{8});
}

TEST(RecordBuffer, GrowingWithoutMemory_LeavesItAsItWas)
{
    RecordBuffer buffer;
    {
        const Simulator::Redirection<ReallocFunction> noMemory("realloc", &NoMemory);
        EXPECT_GT(noMemory.SlotCount(), 0u);
        EXPECT_FALSE(buffer.Grow(4));
        EXPECT_EQ(buffer.Data(), nullptr);
        EXPECT_EQ(buffer.Size(), 0u);
    }
    ASSERT_TRUE(buffer.Grow(4));
    const std::byte* const data = buffer.Data();
    const Simulator::Redirection<ReallocFunction> noMemory("realloc", &NoMemory);
    EXPECT_FALSE(buffer.Grow(8));
    EXPECT_EQ(buffer.Data(), data);
    EXPECT_EQ(buffer.Size(), 4u);
}

TEST(RecordBuffer, First_IsNeverMoreThanThereIs)
{
    RecordBuffer buffer;
    ASSERT_TRUE(buffer.Grow(4));
    EXPECT_EQ(buffer.First(0).size(), 0u);
    EXPECT_EQ(buffer.First(3).size(), 3u);
    EXPECT_EQ(buffer.First(4).size(), 4u);
    EXPECT_EQ(buffer.First(5).size(), 4u);
    EXPECT_EQ(buffer.First(0xFFFFFFFF).size(), 4u);
    EXPECT_EQ(buffer.First(4).data(), buffer.Data());
}

TEST(RecordBuffer, Freed_CanGrowAgain)
{
    RecordBuffer buffer;
    ASSERT_TRUE(buffer.Grow(4));
    buffer.Free();
    EXPECT_EQ(buffer.Data(), nullptr);
    EXPECT_EQ(buffer.Size(), 0u);
    EXPECT_TRUE(buffer.First(4).empty());
    EXPECT_TRUE(buffer.Grow(16));
}
