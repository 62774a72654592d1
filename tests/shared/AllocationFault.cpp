#include "tests/shared/AllocationFault.h"

#include <cstdlib>
#include <new>

namespace
{
constinit thread_local std::size_t g_count = 0;
constinit thread_local std::size_t g_failing = 0;
} // namespace

AllocationFault::AllocationFault(std::size_t nth)
{
    g_failing = g_count + nth;
}

AllocationFault::~AllocationFault()
{
    g_failing = 0;
}

bool AllocationFault::HasBitten()
{
    return g_count >= g_failing;
}

std::size_t AllocationFault::Count()
{
    return g_count;
}

void* operator new(std::size_t size)
{
    if (++g_count == g_failing)
        throw std::bad_alloc();
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
