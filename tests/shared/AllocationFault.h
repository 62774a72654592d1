#pragma once

#include <cstddef>

// The test program's operator new counts, per thread, and fails on request.
class AllocationFault
{
public:
    // The n-th allocation of this thread from now on (1 = the next) raises std::bad_alloc, once.
    explicit AllocationFault(std::size_t nth);
    AllocationFault(const AllocationFault&) = delete;
    AllocationFault& operator=(const AllocationFault&) = delete;
    ~AllocationFault();

    [[nodiscard]] static bool HasBitten();
    // Allocations of this thread so far.
    [[nodiscard]] static std::size_t Count();
};
