#pragma once

#include <windows.h>

namespace Simulator
{
// The threads that the agent starts itself are numbered 1, 2, 3 ... and journalled (kind "thread", subjects "started"
// and "ended", detail "number"): whoever waits for what such a thread does knows when nothing comes any more.

// Starts a thread as CreateThread does. The journal knows of it before it runs.
[[nodiscard]] HANDLE WINAPI StartAgentThread(LPSECURITY_ATTRIBUTES security, SIZE_T stackSize,
                                             LPTHREAD_START_ROUTINE routine, LPVOID parameter, DWORD flags,
                                             LPDWORD threadId);

// Number of the calling thread; 0 for one that the agent has not started: its main thread, and those of Windows.
[[nodiscard]] unsigned CurrentAgentThread() noexcept;
} // namespace Simulator
