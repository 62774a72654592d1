#pragma once

#include "platform/WmiQuery.h"
#include "shared/TraceScope.h"
#include "wmievents/UnsecuredStub.h"

#include <wbemidl.h>
#include <windows.h>

namespace Notifications::OrvikWmiEvents
{
// One asynchronous notification query in "ROOT\WMI": the steps that subscriptions by event number and by class name
// share. Every record is written through the trace of the operation that runs. Not reference counted; belongs to the
// hub, registered and unregistered on one thread.
class WmiSubscription
{
public:
    WmiSubscription(const WmiSubscription&) = delete;
    WmiSubscription& operator=(const WmiSubscription&) = delete;

protected:
    // Room for a query with its terminating zero, in wide characters; a longer one is cut.
    static constexpr std::size_t QueryCapacity = 64;

    WmiSubscription() = default;
    // Neither cancels the query nor releases the interfaces: whoever destroys a registered object unregisters first.
    ~WmiSubscription();

    // Connects and starts the query, with the stub of a new sink that CreateSink makes. A failure on the way leaves
    // what was reached so far in place: while a connection or a stub is held, another call is refused. Out of memory
    // for a BSTR leaves as _com_error.
    [[nodiscard]] HRESULT Subscribe(const Orvik::Shared::TraceScope& trace, const wchar_t* query);

    // Cancels the query and releases what is held; the result of CancelAsyncCall, 0 when nothing was to be cancelled.
    [[nodiscard]] HRESULT CancelSubscription(const Orvik::Shared::TraceScope& trace);

    // Connection and the sink's stub; null until Subscribe gets that far.
    IWbemServicesPtr m_pWbemSvcs;
    IWbemObjectSinkPtr m_pWbemObjSink;

private:
    [[nodiscard]] virtual bool HasCallback() const = 0;
    // A new sink with its creation reference; null when no callback is usable.
    [[nodiscard]] virtual IWbemObjectSink* CreateSink() const = 0;

    HRESULT CheckUnused(const Orvik::Shared::TraceScope& trace) const;
    HRESULT Connect(const Orvik::Shared::TraceScope& trace, IWbemLocator* locator);
    HRESULT Secure(const Orvik::Shared::TraceScope& trace);
    HRESULT StartQuery(const Orvik::Shared::TraceScope& trace, const wchar_t* query);
};
} // namespace Notifications::OrvikWmiEvents
