#pragma once

#include "simulator/doubles/ComDouble.h"
#include "simulator/doubles/WmiSubscriptions.h"

#include <windows.h>

#include <wbemcli.h>

#include <string>

namespace Simulator
{
// What WMI calls in the sink's place. It holds the sink and hands each call on, on the calling thread; what the sink
// throws ends here as it does in COM's remote call: journalled (kind "wmi", subject "exception"), RPC_E_SERVERFAULT.
//
// COM's threads have no apartment of their own. Once the process's multithreaded apartment is gone, the stub that lived
// in it is disconnected: called on a thread without an apartment it does not reach the sink and gives
// RPC_E_DISCONNECTED.
//
// With the fact "/doubles/probe-sink" = true each Release of a stub journals the sink's own reference count
// ("sink-count"), taken by an AddRef and a Release of the sink.
class UnsecuredApartmentStubDouble final : public ComDouble<IWbemObjectSink>
{
public:
    explicit UnsecuredApartmentStubDouble(std::shared_ptr<IWbemObjectSink> spSink);

    HRESULT STDMETHODCALLTYPE Indicate(LONG count, IWbemClassObject** objects) override;
    HRESULT STDMETHODCALLTYPE SetStatus(LONG flags, HRESULT result, BSTR text, IWbemClassObject* object) override;

private:
    [[nodiscard]] nlohmann::json ReleaseDetails() override;

    std::shared_ptr<IWbemObjectSink> m_spSink;
};
} // namespace Simulator
