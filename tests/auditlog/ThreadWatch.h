#pragma once

#include "shared/OwnerTypes.h"
#include "simulator/redirect/ImportRedirection.h"

#include <windows.h>

#include <mutex>
#include <vector>

namespace Tests
{
// A thread that the program started, and how it ended.
struct StartedThread
{
    LPTHREAD_START_ROUTINE m_pfnRoutine;
    LONG_PTR m_nParameter;
    SIZE_T m_nStackSize;
    DWORD m_dwFlags;
    bool m_bHasSecurity;
    DWORD m_dwThreadId;
    DWORD m_dwExitCode;
};

// For the life of the object CreateThread of the program is journalled and goes through the call plan under its name,
// and every thread is waited for at the end. One at a time; any thread.
class ThreadWatch
{
public:
    ThreadWatch();
    ThreadWatch(const ThreadWatch&) = delete;
    ThreadWatch& operator=(const ThreadWatch&) = delete;
    ~ThreadWatch();

    // Waits for all threads that were started, also by such threads. All since the object was made or Forget was
    // called, in the order of their start.
    const std::vector<StartedThread>& WaitForAll();
    // The same for those of one routine.
    [[nodiscard]] std::vector<StartedThread> WaitFor(LPTHREAD_START_ROUTINE routine);
    // Whether all of them have ended.
    [[nodiscard]] bool AreAllOver();
    void Forget();

private:
    static HANDLE WINAPI Create(LPSECURITY_ATTRIBUTES security, SIZE_T stackSize, LPTHREAD_START_ROUTINE routine,
                                LPVOID parameter, DWORD flags, LPDWORD threadId);

    std::mutex m_lock;
    std::vector<StartedThread> m_lstThreads;
    std::vector<Orvik::Shared::UniqueHandle> m_lstRunning; // of the last of them
    Simulator::Redirection<decltype(CreateThread)> m_create;
};
} // namespace Tests
