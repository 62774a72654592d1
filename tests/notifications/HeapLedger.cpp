#include "tests/notifications/HeapLedger.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace
{
std::atomic<std::size_t> g_liveBlocks;
} // namespace

std::size_t LiveHeapBlocks()
{
    return g_liveBlocks;
}

void* operator new(std::size_t size)
{
    void* block = std::malloc(size != 0 ? size : 1);
    if (block == nullptr)
        throw std::bad_alloc();
    ++g_liveBlocks;
    return block;
}

void operator delete(void* block) noexcept
{
    if (block == nullptr)
        return;
    --g_liveBlocks;
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    operator delete(block);
}
