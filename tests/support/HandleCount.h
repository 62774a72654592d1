#pragma once

namespace TestSupport
{
// Handles that this process has open, of every kind that the kernel knows: files, keys, events, threads, mutexes. A
// first use of a system component opens handles that it keeps: run the code under test once before the first count.
[[nodiscard]] unsigned OpenHandleCount();
} // namespace TestSupport
