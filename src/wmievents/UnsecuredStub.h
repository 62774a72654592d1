#pragma once

#include "platform/ComPointers.h"

#include <wbemidl.h>
#include <windows.h>

namespace Notifications::OrvikWmiEvents
{
_COM_SMARTPTR_TYPEDEF(IUnsecuredApartment, __uuidof(IUnsecuredApartment));
_COM_SMARTPTR_TYPEDEF(IWbemObjectSink, __uuidof(IWbemObjectSink));

// A sink's stub in the unsecured apartment, through which WMI may call the sink without being checked. Apartment and
// stub are made, held and released in the multithreaded apartment, so that deliveries come on COM's own threads and
// never through the message loop of whoever registers. One thread, in its own apartment, uses the object.
class UnsecuredStub
{
public:
    UnsecuredStub() = default;
    UnsecuredStub(const UnsecuredStub&) = delete;
    UnsecuredStub& operator=(const UnsecuredStub&) = delete;
    // Releases the stub, then the apartment.
    ~UnsecuredStub();

    [[nodiscard]] HRESULT CreateApartment();
    // Only after CreateApartment. The sink may be null: what becomes of it is the apartment's to say.
    [[nodiscard]] HRESULT CreateObjectStub(IWbemObjectSink* sink);
    // Only after CreateObjectStub: the stub's sink interface, marshalled to the calling thread's apartment.
    [[nodiscard]] HRESULT QuerySink(IWbemObjectSinkPtr& spSink);

private:
    IUnsecuredApartmentPtr m_spApartment;
    IUnknownPtr m_spStub;
};
} // namespace Notifications::OrvikWmiEvents
