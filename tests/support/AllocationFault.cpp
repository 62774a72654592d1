#include "tests/support/AllocationFault.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace
{
constinit std::atomic<std::size_t> g_liveBlocks = 0;
constinit thread_local std::size_t g_count = 0;
constinit thread_local std::size_t g_remaining = 0; // until one fails; 0: none will
constinit thread_local std::size_t g_leastSize = 0;
} // namespace

AllocationFault::AllocationFault(std::size_t nth, std::size_t leastSize)
{
    g_remaining = nth;
    g_leastSize = leastSize;
}

AllocationFault::~AllocationFault()
{
    g_remaining = 0;
}

AllocationFault::Pause::Pause() : m_nRemaining(g_remaining)
{
    g_remaining = 0;
}

AllocationFault::Pause::~Pause()
{
    g_remaining = m_nRemaining;
}

bool AllocationFault::HasBitten()
{
    return g_remaining == 0;
}

std::size_t AllocationFault::Count()
{
    return g_count;
}

std::size_t LiveHeapBlocks()
{
    return g_liveBlocks;
}

void* operator new(std::size_t size)
{
    ++g_count;
    if (g_remaining != 0 && size >= g_leastSize && --g_remaining == 0)
        throw std::bad_alloc();
    void* memory = std::malloc(size != 0 ? size : 1);
    if (memory == nullptr)
        throw std::bad_alloc();
    ++g_liveBlocks;
    return memory;
}

void operator delete(void* memory) noexcept
{
    if (memory == nullptr)
        return;
    --g_liveBlocks;
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    operator delete(memory);
}
