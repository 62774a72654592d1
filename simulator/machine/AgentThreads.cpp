#include "simulator/machine/AgentThreads.h"

#include "simulator/model/Journal.h"

#include <atomic>
#include <memory>

namespace Simulator
{
namespace
{
struct Start
{
    LPTHREAD_START_ROUTINE m_pfnRoutine;
    void* m_pParameter;
    unsigned m_nNumber;
};

std::atomic<unsigned> g_nLast = 0;

// Holds the number of each thread. Windows' own: the compiler's needs more of a thread than the agent's threads have.
DWORD NumberSlot()
{
    static const DWORD slot = TlsAlloc();
    return slot;
}

void Note(const char* what, unsigned number)
{
    Journal::Instance().Append("thread", what, {{"number", number}});
}

DWORD WINAPI RunThread(void* start)
{
    const std::unique_ptr<Start> thread(static_cast<Start*>(start));
    TlsSetValue(NumberSlot(), reinterpret_cast<void*>(ULONG_PTR{thread->m_nNumber}));
    const DWORD result = thread->m_pfnRoutine(thread->m_pParameter);
    Note("ended", thread->m_nNumber);
    return result;
}
} // namespace

HANDLE WINAPI StartAgentThread(LPSECURITY_ATTRIBUTES security, SIZE_T stackSize, LPTHREAD_START_ROUTINE routine,
                               LPVOID parameter, DWORD flags, LPDWORD threadId)
{
    auto start = std::make_unique<Start>(Start{routine, parameter, ++g_nLast});
    const unsigned number = start->m_nNumber;
    Note("started", number);
    const HANDLE thread = CreateThread(security, stackSize, &RunThread, start.get(), flags, threadId);
    if (thread != nullptr)
    {
        // The thread owns it from here on.
        static_cast<void>(start.release());
        return thread;
    }
    const DWORD error = GetLastError();
    Note("ended", number);
    SetLastError(error);
    return nullptr;
}

unsigned CurrentAgentThread() noexcept
{
    return static_cast<unsigned>(reinterpret_cast<ULONG_PTR>(TlsGetValue(NumberSlot())));
}
} // namespace Simulator
