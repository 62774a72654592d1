#include "wmievents/PublicWmiEvent.h"

#include "shared/TraceScope.h"

#include <strsafe.h>

using Orvik::Shared::TraceScope;

namespace Notifications::OrvikWmiEvents
{
namespace
{
// What "%d" shows of a name: the low half of the address of its text. Readers of the log know the record so.
int AsShownNumber(const CStringW& name)
{
    return static_cast<int>(reinterpret_cast<INT_PTR>(name.c_str()));
}
} // namespace

PublicWmiEvent::~PublicWmiEvent()
{
    const TraceScope trace(ORVIK_FUNCTION);
}

HRESULT PublicWmiEvent::RegisterEvent(const CStringW& eventName, COrvikWmiEvents* owner,
                                      PublicEventCallbacks::WithParams callback)
{
    TraceScope trace(ORVIK_FUNCTION, L"nEventName: %d, callback: %p", AsShownNumber(eventName), FirstWord(callback));
    if (callback == nullptr)
    {
        trace.Information(L"Callback function is null");
        return trace.Exit(E_INVALIDARG);
    }
    m_callbacks = {nullptr, callback, owner};
    return trace.Exit(RegisterPublicWMIEvent(eventName));
}

HRESULT PublicWmiEvent::Unregister()
{
    TraceScope trace(ORVIK_FUNCTION, L"m_pWbemSvcs: %p, m_pWbemObjSink: %p", m_pWbemSvcs.GetInterfacePtr(),
                     m_pWbemObjSink.GetInterfacePtr());
    return trace.Exit(CancelSubscription(trace));
}

HRESULT PublicWmiEvent::RegisterPublicWMIEvent(const CStringW& eventName)
{
    TraceScope trace(ORVIK_FUNCTION, L"nEventName: %d", AsShownNumber(eventName));
    const CStringW text = L"SELECT * FROM " + eventName;
    wchar_t query[QueryCapacity]{};
    // The text is the format: a per cent sign in a class name is formatted. The one class in use has none.
    StringCchPrintfW(query, QueryCapacity, text.c_str());
    return trace.Exit(Subscribe(trace, query));
}

bool PublicWmiEvent::HasCallback() const
{
    return m_callbacks.IsUsable();
}

IWbemObjectSink* PublicWmiEvent::CreateSink() const
{
    return MakeSink<PublicWMIEventSink>(m_callbacks);
}
} // namespace Notifications::OrvikWmiEvents
