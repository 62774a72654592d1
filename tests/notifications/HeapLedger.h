#pragma once

#include <cstddef>

// Blocks that operator new gave out in this program and that were not given back: what finds an object that nobody
// counts. Code that runs for the first time may allocate what it keeps: run it once before the first count.
[[nodiscard]] std::size_t LiveHeapBlocks();
