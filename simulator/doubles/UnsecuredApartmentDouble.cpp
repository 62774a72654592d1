#include "simulator/doubles/UnsecuredApartmentDouble.h"

#include "simulator/doubles/JournalText.h"
#include "simulator/doubles/Refusals.h"
#include "simulator/doubles/UnsecuredApartmentStubDouble.h"
#include "simulator/model/CallPlan.h"

namespace Simulator
{
UnsecuredApartmentDouble::UnsecuredApartmentDouble() : ComDouble("UnsecuredApartment") {}

HRESULT UnsecuredApartmentDouble::CreateObjectStub(IUnknown* object, IUnknown** stub)
{
    const HRESULT hr = CallPlan::Instance().Enter("IUnsecuredApartment::CreateObjectStub",
                                                  {{"apartment", ApartmentText()}, {"object", object != nullptr}});
    if (stub == nullptr)
        return FirstFailure(hr, E_POINTER);
    *stub = nullptr;
    if (FAILED(hr))
        return hr;
    if (object == nullptr)
        return E_POINTER;
    // A sink may leave the pointer as it was when it refuses.
    void* sink = nullptr;
    if (const HRESULT query = object->QueryInterface(IID_IWbemObjectSink, &sink); FAILED(query))
        return query;
    *stub = new UnsecuredApartmentStubDouble(
        {static_cast<IWbemObjectSink*>(sink), [](IWbemObjectSink* held) { held->Release(); }});
    return S_OK;
}
} // namespace Simulator
