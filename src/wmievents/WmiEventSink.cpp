#include "wmievents/WmiEventSink.h"

#include "shared/TraceScope.h"

#include <comdef.h>

#include <exception>

using Orvik::Shared::TraceScope;

namespace Notifications::OrvikWmiEvents
{
namespace
{
// The event's number, 0 when it cannot be read.
int ReadEventId(const TraceScope& trace, IWbemClassObject* object, const _bstr_t& name, VARIANT* id)
{
    if (FAILED(object->Get(name, 0, id, nullptr, nullptr)))
        return 0;
    trace.Verbose(L"Event ID: %d", id->lVal);
    return id->lVal;
}

HRESULT ReadEventData(const TraceScope& trace, IWbemClassObject* object, const _bstr_t& name, VARIANT* data)
{
    const HRESULT hr = object->Get(name, 0, data, nullptr, nullptr);
    if (SUCCEEDED(hr))
        trace.Verbose(L"Event data: %d", data->lVal);
    return hr;
}

void Deliver(const TraceScope& trace, IWbemClassObject* object, const BiosEventCallbacks& callbacks)
{
    trace.Verbose(L"Event occured");
    // The numbers are read whatever type comes back, so they start as 0: a value without one leaves them alone.
    _variant_t id(0L);
    _variant_t data(0L);
    id.vt = VT_EMPTY;
    data.vt = VT_EMPTY;
    const _bstr_t idName(L"EventID");
    const _bstr_t dataName(L"EventData");

    int eventId = 0;
    HRESULT dataStatus = E_POINTER;
    if (object != nullptr)
    {
        eventId = ReadEventId(trace, object, idName, &id);
        dataStatus = ReadEventData(trace, object, dataName, &data);
    }
    callbacks.Dispatch(dataStatus, eventId, &data);
}
} // namespace

WmiEventSink::WmiEventSink(COrvikWmiEvents* owner, BiosEventCallbacks::Plain callback)
    : EventSink({callback, nullptr, owner})
{
}

WmiEventSink::WmiEventSink(COrvikWmiEvents* owner, BiosEventCallbacks::WithParams callback)
    : EventSink({nullptr, callback, owner})
{
}

WmiEventSink::~WmiEventSink()
{
    const TraceScope trace(ORVIK_FUNCTION);
}

HRESULT WmiEventSink::Indicate(long lObjectCount, IWbemClassObject** apObjArray)
{
    TraceScope trace(ORVIK_FUNCTION);
    try
    {
        for (long i = 0; i < lObjectCount; ++i)
            Deliver(trace, apObjArray != nullptr ? apObjArray[i] : nullptr, m_callbacks);
        return trace.Exit(static_cast<HRESULT>(WBEM_S_NO_ERROR));
    }
    catch (const std::exception&)
    {
        return trace.Exit(E_OUTOFMEMORY);
    }
}

HRESULT WmiEventSink::SetStatus(long lFlags, HRESULT hResult, BSTR, IWbemClassObject*)
{
    return LogStatus(ORVIK_FUNCTION, lFlags, hResult);
}
} // namespace Notifications::OrvikWmiEvents
