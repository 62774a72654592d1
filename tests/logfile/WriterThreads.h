#pragma once

#include "shared/OwnerTypes.h"
#include "simulator/redirect/ImportRedirection.h"

#include <process.h>
#include <windows.h>

#include <atomic>
#include <cstdint>
#include <mutex>
#include <vector>

// The threads that write queued records, for the life of the object: which were started, and when they have ended. Not
// those of the test itself. One at a time; its end waits for them.
class WriterThreads
{
public:
    WriterThreads();
    WriterThreads(const WriterThreads&) = delete;
    WriterThreads& operator=(const WriterThreads&) = delete;
    ~WriterThreads();

    // The next so many cannot be started.
    static void Refuse(unsigned count);
    [[nodiscard]] static unsigned Started();
    // Until all that were started have ended: false when one has not within 20 seconds.
    [[nodiscard]] static bool WaitForAll();

private:
    using Routine = unsigned(__stdcall*)(void*);
    static std::uintptr_t Begin(void* security, unsigned stackSize, Routine routine, void* argument, unsigned flags,
                                unsigned* id);

    static inline std::mutex s_lock;
    static inline std::vector<Orvik::Shared::UniqueHandle> s_lstThreads;
    static inline std::atomic<unsigned> s_nRefused = 0;
    static inline decltype(_beginthreadex)* s_pfnBegin = nullptr;

    Simulator::Redirection<decltype(_beginthreadex)> m_redirection;
};
