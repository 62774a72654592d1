#include "wmievents/WmiEvent.h"

#include "shared/TraceScope.h"

#include <strsafe.h>

using Orvik::Shared::TraceScope;

namespace Notifications::OrvikWmiEvents
{
WmiEvent::~WmiEvent()
{
    const TraceScope trace(ORVIK_FUNCTION);
}

HRESULT WmiEvent::Register(int nEventID, COrvikWmiEvents* owner, BiosEventCallbacks::WithParams callbackWithParams)
{
    TraceScope trace(ORVIK_FUNCTION, L"nEventID: %d, callbackWithParams: %p", nEventID, FirstWord(callbackWithParams));
    if (callbackWithParams == nullptr)
    {
        trace.Information(L"Callback function is null");
        return trace.Exit(E_INVALIDARG);
    }
    m_callbacks = {nullptr, callbackWithParams, owner};
    return trace.Exit(RegisterWMIEvent(nEventID));
}

HRESULT WmiEvent::Register(int nEventID, COrvikWmiEvents* owner, BiosEventCallbacks::Plain callback)
{
    TraceScope trace(ORVIK_FUNCTION, L"nEventID: %d, callback: %p", nEventID, FirstWord(callback));
    if (callback == nullptr)
    {
        trace.Information(L"Callback function is null");
        return trace.Exit(E_INVALIDARG);
    }
    m_callbacks = {callback, nullptr, owner};
    return trace.Exit(RegisterWMIEvent(nEventID));
}

HRESULT WmiEvent::Unregister()
{
    TraceScope trace(ORVIK_FUNCTION, L"m_pWbemSvcs: %p, m_pWbemObjSink: %p", m_pWbemSvcs.GetInterfacePtr(),
                     m_pWbemObjSink.GetInterfacePtr());
    return trace.Exit(CancelSubscription(trace));
}

HRESULT WmiEvent::RegisterWMIEvent(int nEventID)
{
    TraceScope trace(ORVIK_FUNCTION);
    wchar_t query[QueryCapacity]{};
    StringCchPrintfW(query, QueryCapacity, L"SELECT * FROM orvikBEvnt WHERE EventID = %d", nEventID);
    return trace.Exit(Subscribe(trace, query));
}

bool WmiEvent::HasCallback() const
{
    return m_callbacks.IsUsable();
}

IWbemObjectSink* WmiEvent::CreateSink() const
{
    return MakeSink<WmiEventSink>(m_callbacks);
}
} // namespace Notifications::OrvikWmiEvents
