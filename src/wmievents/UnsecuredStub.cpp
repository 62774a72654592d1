#include "wmievents/UnsecuredStub.h"

#include "wmievents/MultithreadedApartment.h"

#include <objbase.h>

namespace Notifications::OrvikWmiEvents
{
namespace
{
_COM_SMARTPTR_TYPEDEF(IStream, __uuidof(IStream));

HRESULT MarshalSink(IUnknown* stub, IStreamPtr& spStream)
{
    if (stub == nullptr)
        return E_POINTER;
    IWbemObjectSink* sink = nullptr;
    const HRESULT hr = stub->QueryInterface(IID_IWbemObjectSink, reinterpret_cast<void**>(&sink));
    if (FAILED(hr))
        return hr;
    if (sink == nullptr)
        return E_POINTER;
    const IWbemObjectSinkPtr spSink(sink, false);
    return CoMarshalInterThreadInterfaceInStream(IID_IWbemObjectSink, spSink, &spStream);
}
} // namespace

UnsecuredStub::~UnsecuredStub()
{
    if (!m_spStub && !m_spApartment)
        return;
    // Whoever holds one of the two got it from the apartment's thread, which then runs for good.
    static_cast<void>(MultithreadedApartment::Instance().Run(
        [this]
        {
            m_spStub = nullptr;
            m_spApartment = nullptr;
            return S_OK;
        }));
}

HRESULT UnsecuredStub::CreateApartment()
{
    return MultithreadedApartment::Instance().Run(
        [this]
        {
            const HRESULT hr = CoCreateInstance(CLSID_UnsecuredApartment, nullptr, CLSCTX_LOCAL_SERVER,
                                                IID_IUnsecuredApartment, reinterpret_cast<void**>(&m_spApartment));
            return SUCCEEDED(hr) && !m_spApartment ? E_POINTER : hr;
        });
}

HRESULT UnsecuredStub::CreateObjectStub(IWbemObjectSink* sink)
{
    return MultithreadedApartment::Instance().Run([this, sink]
                                                  { return m_spApartment->CreateObjectStub(sink, &m_spStub); });
}

HRESULT UnsecuredStub::QuerySink(IWbemObjectSinkPtr& spSink)
{
    IStreamPtr spStream;
    const HRESULT hr =
        MultithreadedApartment::Instance().Run([this, &spStream] { return MarshalSink(m_spStub, spStream); });
    if (FAILED(hr))
        return hr;
    // The call releases the stream whatever becomes of it.
    return CoGetInterfaceAndReleaseStream(spStream.Detach(), IID_IWbemObjectSink, reinterpret_cast<void**>(&spSink));
}
} // namespace Notifications::OrvikWmiEvents
