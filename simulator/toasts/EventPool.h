#pragma once

#include <windows.h>

#include <condition_variable>
#include <functional>
#include <mutex>

namespace Simulator
{
// The threads on which toasts call their handlers, as the Windows Runtime has threads of its own: never the caller's,
// never the one that draws. Each call runs in the multithreaded apartment. One per process, never freed.
class EventPool
{
public:
    static EventPool& Instance();

    void Post(std::function<void()> work);
    // Returns when everything posted so far has run. Not for the pool's own threads.
    void Wait();

private:
    EventPool();

    static void CALLBACK Run(PTP_CALLBACK_INSTANCE instance, void* context);
    void Done();

    TP_CALLBACK_ENVIRON m_environment{};
    std::mutex m_lock;
    std::condition_variable m_idle;
    unsigned m_nPending = 0;
};
} // namespace Simulator
