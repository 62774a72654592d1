#include "tests/support/HandleCount.h"

#include "shared/OwnerTypes.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{
using namespace Orvik::Shared;
using TestSupport::LeaksNoHandles;
using TestSupport::OpenHandleCount;

TEST(HandleCount, KernelObjectsOfEveryKind_Count)
{
    const unsigned before = OpenHandleCount();
    EXPECT_GT(before, 0u);
    {
        const UniqueHandle event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
        const UniqueHandle mutex(CreateMutexW(nullptr, FALSE, nullptr));
        const UniqueHandle process(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, GetCurrentProcessId()));
        UniqueRegKey key;
        EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, L"Software", 0, KEY_READ, ReceiveInto(key)), ERROR_SUCCESS);
        EXPECT_EQ(OpenHandleCount(), before + 4);
    }
    EXPECT_EQ(OpenHandleCount(), before);
}

TEST(HandleCount, Counting_OpensNothing)
{
    const unsigned before = OpenHandleCount();
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(OpenHandleCount(), before);
}

UniqueHandle NewEvent()
{
    return UniqueHandle(CreateEventW(nullptr, TRUE, FALSE, nullptr));
}

TEST(LeaksNoHandles, HandleThatIsClosed_IsNoLeak)
{
    EXPECT_TRUE(LeaksNoHandles([] { NewEvent(); }));
}

TEST(LeaksNoHandles, HandleThatStaysOnce_IsNoLeak)
{
    UniqueHandle kept;
    EXPECT_TRUE(LeaksNoHandles(
        [&kept]
        {
            if (!kept)
                kept = NewEvent();
        }));
}

TEST(LeaksNoHandles, HandleThatStaysEachTime_IsALeak)
{
    std::vector<UniqueHandle> kept;
    EXPECT_FALSE(LeaksNoHandles([&kept] { kept.push_back(NewEvent()); }));
}
} // namespace
