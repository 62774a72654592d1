#pragma once

#include "wmievents/EventSink.h"

namespace Notifications::OrvikWmiEvents
{
// Event number and the event's data, which are valid during the call only.
using BiosEventCallbacks = EventCallbacks<int, VARIANT*>;

// Takes the deliveries of one firmware event number on WMI's threads and calls the hub there. A property name without
// memory leaves Indicate as _com_error; any other want of memory ends the batch with E_OUTOFMEMORY.
class WmiEventSink final : public EventSink<WmiEventSink, BiosEventCallbacks>
{
public:
    WmiEventSink(COrvikWmiEvents* owner, BiosEventCallbacks::Plain callback);
    WmiEventSink(COrvikWmiEvents* owner, BiosEventCallbacks::WithParams callback);

    HRESULT STDMETHODCALLTYPE Indicate(long lObjectCount, IWbemClassObject** apObjArray) override;
    HRESULT STDMETHODCALLTYPE SetStatus(long lFlags, HRESULT hResult, BSTR strParam,
                                        IWbemClassObject* pObject) override;

private:
    friend EventSink;
    ~WmiEventSink();
};
} // namespace Notifications::OrvikWmiEvents
