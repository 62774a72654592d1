#include "bench/support/AllocationCount.h"

#include <cstdlib>
#include <new>

namespace
{
// Benchmarks allocate on one thread; a thread-local counter would cost more than what it counts.
constinit std::size_t g_count = 0;
} // namespace

std::size_t Bench::AllocationCount() noexcept
{
    return g_count;
}

void* operator new(std::size_t size)
{
    ++g_count;
    if (void* memory = std::malloc(size != 0 ? size : 1))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
