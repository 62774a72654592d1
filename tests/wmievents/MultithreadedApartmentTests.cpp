#include "wmievents/MultithreadedApartment.h"

#include "simulator/doubles/JournalText.h"
#include "simulator/doubles/WmiDelivery.h"
#include "simulator/redirect/ImportRedirection.h"
#include "tests/support/HandleCount.h"
#include "tests/wmievents/MachineTest.h"

#include <gmock/gmock.h>

#include <atomic>
#include <thread>
#include <vector>

using Notifications::OrvikWmiEvents::MultithreadedApartment;
using Simulator::CallPlan;
using Simulator::Redirection;

namespace
{
class MultithreadedApartmentTest : public Tests::MachineTest
{
protected:
    static HRESULT Run(const std::function<HRESULT()>& work) { return MultithreadedApartment::Instance().Run(work); }

    static std::string ApartmentOfANewThread()
    {
        std::string apartment;
        Simulator::StartComThread([&] { apartment = Simulator::ApartmentText(); }).join();
        return apartment;
    }
};

// The error that a refused call leaves behind, 0 for none.
DWORD g_dwLeft = ERROR_NOT_ENOUGH_MEMORY;

HANDLE WINAPI RefusingCreateThread(LPSECURITY_ATTRIBUTES, SIZE_T, LPTHREAD_START_ROUTINE, LPVOID, DWORD, LPDWORD)
{
    SetLastError(g_dwLeft);
    return nullptr;
}

HANDLE WINAPI RefusingCreateEventW(LPSECURITY_ATTRIBUTES, WINBOOL, WINBOOL, LPCWSTR)
{
    SetLastError(g_dwLeft);
    return nullptr;
}

WINBOOL WINAPI RefusingSetEvent(HANDLE)
{
    SetLastError(g_dwLeft);
    return FALSE;
}
} // namespace

TEST_F(MultithreadedApartmentTest, Run_WorkRunsInTheApartmentOnAnotherThread)
{
    DWORD threadId = 0;
    std::string apartment;
    EXPECT_EQ(Run(
                  [&]
                  {
                      threadId = GetCurrentThreadId();
                      apartment = Simulator::ApartmentText();
                      return S_FALSE;
                  }),
              S_FALSE);
    EXPECT_NE(threadId, GetCurrentThreadId());
    EXPECT_EQ(apartment, "mta");
}

TEST_F(MultithreadedApartmentTest, Run_AlwaysTheSameThread)
{
    DWORD first = 0;
    DWORD second = 0;
    ASSERT_EQ(Run([&] { return first = GetCurrentThreadId(), S_OK; }), S_OK);
    ASSERT_EQ(Run([&] { return second = GetCurrentThreadId(), S_OK; }), S_OK);
    EXPECT_EQ(first, second);
    EXPECT_EQ(CallPlan::Instance().CallCount("CoInitializeEx"), 1u);
}

TEST_F(MultithreadedApartmentTest, Apartment_LivesOnBetweenTwoPiecesOfWork)
{
    EXPECT_EQ(ApartmentOfANewThread(), "none");
    ASSERT_EQ(Run([] { return S_OK; }), S_OK);
    EXPECT_EQ(ApartmentOfANewThread(), "implicit-mta");
}

TEST_F(MultithreadedApartmentTest, Thread_WaitsIdle)
{
    HANDLE thread = nullptr;
    ASSERT_EQ(Run(
                  [&]
                  {
                      DuplicateHandle(GetCurrentProcess(), GetCurrentThread(), GetCurrentProcess(), &thread, 0, FALSE,
                                      DUPLICATE_SAME_ACCESS);
                      return S_OK;
                  }),
              S_OK);
    const Orvik::Shared::UniqueHandle owner(thread);
    const auto cpuTime = [&]
    {
        FILETIME created{}, ended{}, kernel{}, user{};
        GetThreadTimes(thread, &created, &ended, &kernel, &user);
        return (static_cast<ULONGLONG>(kernel.dwHighDateTime) << 32 | kernel.dwLowDateTime) +
               (static_cast<ULONGLONG>(user.dwHighDateTime) << 32 | user.dwLowDateTime);
    };
    Sleep(20);
    const ULONGLONG before = cpuTime();
    Sleep(300);
    // 100-nanosecond units; the clock of thread times moves in steps of 10 ms.
    EXPECT_LE(cpuTime() - before, 100'000u);
}

TEST_F(MultithreadedApartmentTest, Run_NoComForTheThread_ReturnsTheCodeAndTheNextCallStartsAgain)
{
    CallPlan::Instance().Fail("CoInitializeEx", RPC_E_CHANGED_MODE);
    bool hasRun = false;
    EXPECT_EQ(Run([&] { return hasRun = true, S_OK; }), RPC_E_CHANGED_MODE);
    EXPECT_FALSE(hasRun);
    EXPECT_EQ(Run([&] { return hasRun = true, S_OK; }), S_OK);
    EXPECT_TRUE(hasRun);
}

TEST_F(MultithreadedApartmentTest, Run_NoThread_ReturnsTheErrorAndTheNextCallStartsAgain)
{
    {
        const Redirection<decltype(CreateThread)> refusing("CreateThread", &RefusingCreateThread);
        EXPECT_EQ(Run([] { return S_OK; }), HRESULT_FROM_WIN32(ERROR_NOT_ENOUGH_MEMORY));
    }
    EXPECT_EQ(Run([] { return S_OK; }), S_OK);
}

TEST_F(MultithreadedApartmentTest, Run_NoEvent_ReturnsTheErrorAndTheNextCallStartsAgain)
{
    {
        const Redirection<decltype(CreateEventW)> refusing("CreateEventW", &RefusingCreateEventW);
        EXPECT_EQ(Run([] { return S_OK; }), HRESULT_FROM_WIN32(ERROR_NOT_ENOUGH_MEMORY));
    }
    EXPECT_EQ(Run([] { return S_OK; }), S_OK);
}

TEST_F(MultithreadedApartmentTest, Run_RequestCannotBeSignalled_ReturnsTheErrorInsteadOfWaiting)
{
    ASSERT_EQ(Run([] { return S_OK; }), S_OK);
    bool hasRun = false;
    {
        const Redirection<decltype(SetEvent)> refusing("SetEvent", &RefusingSetEvent);
        EXPECT_EQ(Run([&] { return hasRun = true, S_OK; }), HRESULT_FROM_WIN32(ERROR_NOT_ENOUGH_MEMORY));
    }
    EXPECT_FALSE(hasRun);
    EXPECT_EQ(Run([&] { return hasRun = true, S_OK; }), S_OK);
}

TEST_F(MultithreadedApartmentTest, Run_RefusedCallLeavesNoError_IsAFailureAllTheSame)
{
    g_dwLeft = ERROR_SUCCESS;
    bool hasRun = false;
    const auto work = [&] { return hasRun = true, S_OK; };
    {
        const Redirection<decltype(CreateEventW)> refusing("CreateEventW", &RefusingCreateEventW);
        EXPECT_EQ(Run(work), E_FAIL);
    }
    {
        const Redirection<decltype(CreateThread)> refusing("CreateThread", &RefusingCreateThread);
        EXPECT_EQ(Run(work), E_FAIL);
    }
    ASSERT_EQ(Run([] { return S_OK; }), S_OK);
    {
        const Redirection<decltype(SetEvent)> refusing("SetEvent", &RefusingSetEvent);
        EXPECT_EQ(Run(work), E_FAIL);
    }
    EXPECT_FALSE(hasRun);
}

TEST_F(MultithreadedApartmentTest, Run_FailedStarts_LeaveNoHandleBehind)
{
    const auto failOnce = []
    {
        CallPlan::Instance().Fail("CoInitializeEx", E_FAIL);
        EXPECT_EQ(Run([] { return S_OK; }), E_FAIL);
    };
    failOnce();
    const unsigned before = TestSupport::OpenHandleCount();
    for (int i = 0; i < 5; ++i)
        failOnce();
    EXPECT_LE(TestSupport::OpenHandleCount(), before);
}

TEST_F(MultithreadedApartmentTest, Run_FromManyThreads_OneAtATime)
{
    std::atomic<int> inside = 0;
    std::atomic<int> overlaps = 0;
    int count = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back(
            [&]
            {
                for (int n = 0; n < 100; ++n)
                    static_cast<void>(Run(
                        [&]
                        {
                            overlaps += ++inside != 1;
                            ++count;
                            --inside;
                            return S_OK;
                        }));
            });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(count, 400);
    EXPECT_EQ(overlaps, 0);
}
