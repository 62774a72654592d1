#pragma once

#include "shared/WideString.h"
#include "wmievents/EventSink.h"

namespace Notifications::OrvikWmiEvents
{
// Class name and description of the event, which are valid during the call only.
using PublicEventCallbacks = EventCallbacks<const CStringW&, VARIANT*>;

// Takes the deliveries of one public event class on WMI's threads and calls the hub there. A property name without
// memory and a failed conversion of a value leave Indicate as _com_error; any other want of memory ends the batch with
// E_OUTOFMEMORY.
class PublicWMIEventSink final : public EventSink<PublicWMIEventSink, PublicEventCallbacks>
{
public:
    PublicWMIEventSink(COrvikWmiEvents* owner, PublicEventCallbacks::Plain callback);
    PublicWMIEventSink(COrvikWmiEvents* owner, PublicEventCallbacks::WithParams callback);

    HRESULT STDMETHODCALLTYPE Indicate(long lObjectCount, IWbemClassObject** apObjArray) override;
    HRESULT STDMETHODCALLTYPE SetStatus(long lFlags, HRESULT hResult, BSTR strParam,
                                        IWbemClassObject* pObject) override;

private:
    friend EventSink;
    ~PublicWMIEventSink();
};
} // namespace Notifications::OrvikWmiEvents
