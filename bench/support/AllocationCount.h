#pragma once

#include <cstddef>

namespace Bench
{
// Calls of operator new so far, by the one thread that benchmarks run on.
[[nodiscard]] std::size_t AllocationCount() noexcept;
} // namespace Bench
