#include "wmievents/MultithreadedApartment.h"

#include "shared/LastErrorResult.h"

#include <objbase.h>

using Orvik::Shared::UniqueHandle;

namespace Notifications::OrvikWmiEvents
{
namespace
{
// An auto-reset event in place of what the owner held.
HRESULT MakeEvent(UniqueHandle& handle)
{
    handle.reset(CreateEventW(nullptr, FALSE, FALSE, nullptr));
    return handle ? S_OK : LastErrorResult();
}
} // namespace

MultithreadedApartment& MultithreadedApartment::Instance()
{
    // Its thread runs until the very end of the process, past the destruction of statics.
    static auto* const instance = new MultithreadedApartment;
    return *instance;
}

HRESULT MultithreadedApartment::Run(const std::function<HRESULT()>& work)
{
    const Orvik::Shared::CriticalSectionLock lock(m_cs);
    if (!m_hThread)
    {
        const HRESULT hr = Start();
        if (FAILED(hr))
            return hr;
    }
    m_pWork = &work;
    if (!SetEvent(m_hRequested.get()))
        return LastErrorResult();
    WaitForSingleObject(m_hDone.get(), INFINITE);
    return m_hrResult;
}

HRESULT MultithreadedApartment::Start()
{
    HRESULT hr = MakeEvent(m_hRequested);
    if (SUCCEEDED(hr))
        hr = MakeEvent(m_hDone);
    if (FAILED(hr))
        return hr;

    UniqueHandle thread(CreateThread(nullptr, 0, ThreadRoutine, this, 0, nullptr));
    if (!thread)
        return LastErrorResult();
    WaitForSingleObject(m_hDone.get(), INFINITE);
    if (FAILED(m_hrResult))
    {
        WaitForSingleObject(thread.get(), INFINITE);
        return m_hrResult;
    }
    m_hThread = std::move(thread);
    return S_OK;
}

DWORD WINAPI MultithreadedApartment::ThreadRoutine(void* apartment)
{
    static_cast<MultithreadedApartment*>(apartment)->Serve();
    return 0;
}

void MultithreadedApartment::Serve()
{
    m_hrResult = CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    const bool isInitialised = SUCCEEDED(m_hrResult);
    SetEvent(m_hDone.get());
    while (isInitialised && WaitForSingleObject(m_hRequested.get(), INFINITE) == WAIT_OBJECT_0)
    {
        m_hrResult = (*m_pWork)();
        SetEvent(m_hDone.get());
    }
}
} // namespace Notifications::OrvikWmiEvents
