#include "simulator/toasts/EventPool.h"

#include <objbase.h>

#include <memory>

namespace Simulator
{
EventPool& EventPool::Instance()
{
    static EventPool& pool = *new EventPool;
    return pool;
}

EventPool::EventPool()
{
    InitializeThreadpoolEnvironment(&m_environment);
    // Without a pool of its own the process's default pool does the same.
    if (PTP_POOL pool = CreateThreadpool(nullptr); pool != nullptr)
        SetThreadpoolCallbackPool(&m_environment, pool);
}

void EventPool::Post(std::function<void()> work)
{
    {
        const std::lock_guard lock(m_lock);
        ++m_nPending;
    }
    auto context = std::make_unique<std::function<void()>>(std::move(work));
    if (TrySubmitThreadpoolCallback(&EventPool::Run, context.get(), &m_environment))
        static_cast<void>(context.release());
    else
        Done();
}

void CALLBACK EventPool::Run(PTP_CALLBACK_INSTANCE instance, void* context)
{
    // A handler may show a dialog and keep its thread for long.
    CallbackMayRunLong(instance);
    std::unique_ptr<std::function<void()>> work(static_cast<std::function<void()>*>(context));
    const HRESULT apartment = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    (*work)();
    work.reset();
    if (SUCCEEDED(apartment))
        CoUninitialize();
    Instance().Done();
}

void EventPool::Done()
{
    const std::lock_guard lock(m_lock);
    if (--m_nPending == 0)
        m_idle.notify_all();
}

void EventPool::Wait()
{
    std::unique_lock lock(m_lock);
    m_idle.wait(lock, [this] { return m_nPending == 0; });
}
} // namespace Simulator
