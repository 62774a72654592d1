#pragma once

#include <cstddef>

// The test program's operator new counts, per thread, and fails on request.
class AllocationFault
{
public:
    // The n-th allocation of this thread from now on (1 = the next) raises std::bad_alloc, once. Only allocations of at
    // least so many bytes count: a text that long tells those of the code under test from all others.
    explicit AllocationFault(std::size_t nth, std::size_t leastSize = 0);
    AllocationFault(const AllocationFault&) = delete;
    AllocationFault& operator=(const AllocationFault&) = delete;
    ~AllocationFault();

    // While one exists no allocation of its thread counts or fails: for a test's own book-keeping in between.
    class Pause
    {
    public:
        Pause();
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;
        ~Pause();

    private:
        std::size_t m_nRemaining;
    };

    [[nodiscard]] static bool HasBitten();
    // Allocations of this thread so far.
    [[nodiscard]] static std::size_t Count();
};

// Blocks that operator new gave out in this program and that were not given back: what finds an object that nobody
// counts. Code that runs for the first time may allocate what it keeps: run it once before the first count.
[[nodiscard]] std::size_t LiveHeapBlocks();
