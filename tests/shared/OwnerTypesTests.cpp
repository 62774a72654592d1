#include "shared/OwnerTypes.h"

#include "tests/support/HandleCount.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <utility>

namespace
{
using namespace Orvik::Shared;

TEST(OwnerTypes, HandleAndKey_AreClosedWithTheirOwner)
{
    UniqueRegKey warmUp;
    RegOpenKeyExW(HKEY_CURRENT_USER, L"Software", 0, KEY_READ, ReceiveInto(warmUp));
    const unsigned before = TestSupport::OpenHandleCount();
    {
        const UniqueHandle event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
        UniqueRegKey key;
        EXPECT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, L"Software", 0, KEY_READ, ReceiveInto(key)), ERROR_SUCCESS);
        EXPECT_TRUE(event && key);
        EXPECT_EQ(TestSupport::OpenHandleCount(), before + 2);
        UniqueRegKey moved = std::move(key);
        EXPECT_EQ(TestSupport::OpenHandleCount(), before + 2);
    }
    EXPECT_EQ(TestSupport::OpenHandleCount(), before);
}

TEST(OwnerTypes, FailingCall_LeavesTheOwnerEmpty)
{
    UniqueRegKey key;
    RegOpenKeyExW(HKEY_CURRENT_USER, L"Software", 0, KEY_READ, ReceiveInto(key));
    ASSERT_TRUE(key);
    EXPECT_NE(RegOpenKeyExW(HKEY_CURRENT_USER, L"No such key", 0, KEY_READ, ReceiveInto(key)), ERROR_SUCCESS);
    EXPECT_FALSE(key);
}

TEST(OwnerTypes, CriticalSection_LetsOneThreadIn)
{
    CriticalSection section;
    int counter = 0;
    const auto count = [&]
    {
        for (int i = 0; i < 20'000; ++i)
        {
            const CriticalSectionLock lock(section);
            counter = counter + 1;
        }
    };
    std::thread other(count);
    count();
    other.join();
    EXPECT_EQ(counter, 40'000);
}
} // namespace
