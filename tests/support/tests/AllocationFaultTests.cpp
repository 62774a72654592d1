#include "tests/support/AllocationFault.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <new>
#include <thread>

namespace
{
bool CanAllocate()
{
    try
    {
        const auto memory = std::make_unique<int>(1);
        return *memory == 1;
    }
    catch (const std::bad_alloc&)
    {
        return false;
    }
}

TEST(AllocationFault, ThatAllocation_FailsAndNoOther)
{
    const AllocationFault fault(2);
    EXPECT_TRUE(CanAllocate());
    EXPECT_FALSE(AllocationFault::HasBitten());
    const bool second = CanAllocate();
    EXPECT_TRUE(AllocationFault::HasBitten());
    EXPECT_FALSE(second);
    EXPECT_TRUE(CanAllocate());
}

TEST(AllocationFault, ItsEnd_CallsItOff)
{
    {
        const AllocationFault fault(1);
    }
    EXPECT_TRUE(CanAllocate());
}

TEST(AllocationFault, OtherThreads_AreSpared)
{
    std::atomic<bool> go{false};
    bool there = false;
    std::thread thread(
        [&]
        {
            while (!go)
                std::this_thread::yield();
            there = CanAllocate();
        });
    {
        const AllocationFault fault(1);
        go = true;
        thread.join();
        EXPECT_FALSE(AllocationFault::HasBitten());
        EXPECT_FALSE(CanAllocate());
    }
    EXPECT_TRUE(there);
}

TEST(AllocationFault, OfLargeBlocks_SparesSmallerOnes)
{
    const AllocationFault fault(1, 1000);
    EXPECT_TRUE(CanAllocate());
    EXPECT_THROW((void)std::make_unique<char[]>(1000), std::bad_alloc);
    EXPECT_TRUE(AllocationFault::HasBitten());
}

TEST(LiveHeapBlocks, ABlock_CountsUntilItIsGivenBack)
{
    const std::size_t before = LiveHeapBlocks();
    {
        const auto memory = std::make_unique<int>(1);
        EXPECT_EQ(LiveHeapBlocks(), before + 1);
    }
    EXPECT_EQ(LiveHeapBlocks(), before);
}
} // namespace
