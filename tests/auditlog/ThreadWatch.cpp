#include "tests/auditlog/ThreadWatch.h"

#include "tests/usbc/PlannedFunction.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

using Orvik::Shared::UniqueHandle;

namespace Tests
{
namespace
{
ThreadWatch* g_pWatch = nullptr;

// GoogleTest's own thread, that waits for the end of this one, is to be there before threads are watched.
template <class Function>
Function* AfterGoogleTestsThread(Function* function)
{
    SCOPED_TRACE("");
    return function;
}
} // namespace

ThreadWatch::ThreadWatch() : m_create("CreateThread", AfterGoogleTestsThread(&Create))
{
    g_pWatch = this;
}

ThreadWatch::~ThreadWatch()
{
    WaitForAll();
}

HANDLE WINAPI ThreadWatch::Create(LPSECURITY_ATTRIBUTES security, SIZE_T stackSize, LPTHREAD_START_ROUTINE routine,
                                  LPVOID parameter, DWORD flags, LPDWORD threadId)
{
    if (!EnterCall("CreateThread", {{"parameter", reinterpret_cast<LONG_PTR>(parameter)}}))
        return nullptr;
    // Under the lock, so that it is listed before it starts one itself.
    const std::lock_guard lock(g_pWatch->m_lock);
    DWORD id = 0;
    const HANDLE thread = g_pWatch->m_create.Original()(security, stackSize, routine, parameter, flags,
                                                        threadId != nullptr ? threadId : &id);
    if (thread == nullptr)
        return nullptr;
    HANDLE copy = nullptr;
    DuplicateHandle(GetCurrentProcess(), thread, GetCurrentProcess(), &copy, 0, FALSE, DUPLICATE_SAME_ACCESS);
    g_pWatch->m_lstThreads.push_back({routine, reinterpret_cast<LONG_PTR>(parameter), stackSize, flags,
                                      security != nullptr, threadId != nullptr ? *threadId : id, STILL_ACTIVE});
    g_pWatch->m_lstRunning.emplace_back(copy);
    return thread;
}

const std::vector<StartedThread>& ThreadWatch::WaitForAll()
{
    std::unique_lock lock(m_lock);
    while (!m_lstRunning.empty())
    {
        const std::size_t index = m_lstThreads.size() - m_lstRunning.size();
        const UniqueHandle thread = std::move(m_lstRunning.front());
        m_lstRunning.erase(m_lstRunning.begin());
        lock.unlock();
        DWORD exitCode = STILL_ACTIVE;
        WaitForSingleObject(thread.get(), INFINITE);
        GetExitCodeThread(thread.get(), &exitCode);
        lock.lock();
        m_lstThreads[index].m_dwExitCode = exitCode;
    }
    return m_lstThreads;
}

std::vector<StartedThread> ThreadWatch::WaitFor(LPTHREAD_START_ROUTINE routine)
{
    std::vector<StartedThread> found;
    std::ranges::copy_if(WaitForAll(), std::back_inserter(found),
                         [routine](const StartedThread& thread) { return thread.m_pfnRoutine == routine; });
    return found;
}

bool ThreadWatch::AreAllOver()
{
    const std::lock_guard lock(m_lock);
    return std::ranges::all_of(m_lstRunning, [](const UniqueHandle& thread)
                               { return WaitForSingleObject(thread.get(), 0) == WAIT_OBJECT_0; });
}

void ThreadWatch::Forget()
{
    WaitForAll();
    const std::lock_guard lock(m_lock);
    m_lstThreads.clear();
}
} // namespace Tests
