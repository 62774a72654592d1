#include "tests/logfile/WriterThreads.h"

#include "tests/support/AllocationFault.h"

WriterThreads::WriterThreads() : m_redirection("_beginthreadex", &Begin)
{
    s_lstThreads.clear();
    s_nRefused = 0;
    s_pfnBegin = m_redirection.Original();
}

WriterThreads::~WriterThreads()
{
    static_cast<void>(WaitForAll());
}

void WriterThreads::Refuse(unsigned count)
{
    s_nRefused = count;
}

unsigned WriterThreads::Started()
{
    const std::lock_guard lock(s_lock);
    return static_cast<unsigned>(s_lstThreads.size());
}

bool WriterThreads::WaitForAll()
{
    for (std::size_t i = 0;; ++i)
    {
        HANDLE thread = nullptr;
        {
            const std::lock_guard lock(s_lock);
            if (i == s_lstThreads.size())
                return true;
            thread = s_lstThreads[i].get();
        }
        if (WaitForSingleObject(thread, 20'000) != WAIT_OBJECT_0)
            return false;
    }
}

std::uintptr_t WriterThreads::Begin(void* security, unsigned stackSize, Routine routine, void* argument, unsigned flags,
                                    unsigned* id)
{
    // The standard library starts its threads suspended.
    if (flags != 0)
        return s_pfnBegin(security, stackSize, routine, argument, flags, id);
    const AllocationFault::Pause pause;
    const std::lock_guard lock(s_lock);
    if (s_nRefused != 0)
    {
        --s_nRefused;
        return 0;
    }
    const std::uintptr_t thread = s_pfnBegin(security, stackSize, routine, argument, flags, id);
    HANDLE copy = nullptr;
    DuplicateHandle(GetCurrentProcess(), reinterpret_cast<HANDLE>(thread), GetCurrentProcess(), &copy, 0, FALSE,
                    DUPLICATE_SAME_ACCESS);
    s_lstThreads.emplace_back(copy);
    return thread;
}
