#pragma once

#include <functional>

namespace TestSupport
{
// Handles that this process has open, of every kind that the kernel knows: files, keys, events, threads, mutexes. A
// first use of a system component opens handles that it keeps: run the code under test once before the first count.
[[nodiscard]] unsigned OpenHandleCount();

// Whether what is done several times stops leaving handles open. A leak comes with every time; what the system opens
// and keeps, for a lock that had to be waited for say, comes at any time, and once.
[[nodiscard]] bool LeaksNoHandles(const std::function<void()>& action);
} // namespace TestSupport
