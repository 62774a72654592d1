#pragma once

#include "wmievents/EventCallbacks.h"

#include "shared/Log.h"

#include <wbemidl.h>
#include <windows.h>

namespace Notifications::OrvikWmiEvents
{
// What both sinks have in common: the count, the callbacks and the answers that do not depend on the event. The count
// starts at 1 and that first reference is never given back, so a sink lives until the process ends. Any thread.
template <class Sink, class Callbacks>
class EventSink : public IWbemObjectSink
{
public:
    EventSink(const EventSink&) = delete;
    EventSink& operator=(const EventSink&) = delete;

    // Leaves *ppObject alone when the interface is not one of the sink's.
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** ppObject) override
    {
        if (iid != IID_IUnknown && iid != IID_IWbemObjectSink)
            return E_NOINTERFACE;
        *ppObject = static_cast<IWbemObjectSink*>(this);
        AddRef();
        return S_OK;
    }

    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&m_nRefCount)); }

    ULONG STDMETHODCALLTYPE Release() override
    {
        const LONG count = InterlockedDecrement(&m_nRefCount);
        if (count == 0)
            delete static_cast<Sink*>(this);
        return static_cast<ULONG>(count);
    }

protected:
    ~EventSink() = default;

    static HRESULT LogStatus(const char* functionName, long lFlags, HRESULT hResult)
    {
        // 2 is the flag of intermediate progress; readers of the log know both under the one label.
        const bool isComplete = lFlags == 0 || lFlags == 2;
        Orvik::Shared::Log(Orvik::Shared::Level::TraceIn, functionName, L"hResult: 0x%08X, lFlags: 0x%08X (%s)",
                           hResult, lFlags, isComplete ? L"WBEM_STATUS_COMPLETE" : L"?");
        return WBEM_S_NO_ERROR;
    }

    LONG m_nRefCount = 1;
    const Callbacks m_callbacks;

private:
    friend Sink;
    explicit EventSink(const Callbacks& callbacks) : m_callbacks(callbacks) {}
};

// The sink of a subscription's callbacks; null when none of them is usable.
template <class Sink, class Callbacks>
[[nodiscard]] IWbemObjectSink* MakeSink(const Callbacks& callbacks)
{
    if (callbacks.IsPlainSet())
        return new Sink(callbacks.m_pOwner, callbacks.m_pfnCallback);
    if (callbacks.IsWithParamsSet())
        return new Sink(callbacks.m_pOwner, callbacks.m_pfnCallbackWithParams);
    return nullptr;
}
} // namespace Notifications::OrvikWmiEvents
