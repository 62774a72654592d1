#pragma once

#include "simulator/doubles/WbemServicesBase.h"

#include <string>

namespace Simulator
{
// A connection to one namespace.
//
// Queries: instances of a class are the fact "/wmi/classes/<Class>" = [{"Property": value}, ...]. Win32_OperatingSystem
// in root\cimv2 needs no fact: one instance whose "Version" is the fact "/wmi/os/version", by default that of the
// system;
// {"missing": true} leaves the property out, and "/wmi/os/instances" = 0 leaves the instance out. A query that cannot
// be read gives WBEM_E_INVALID_QUERY, a class that is not there WBEM_E_INVALID_CLASS.
//
// Notification queries: see WmiEventSource.h. With the fact "/wmi/event-classes", an array of names, other classes give
// WBEM_E_INVALID_CLASS. A cancelled query's sink gets SetStatus(WBEM_STATUS_COMPLETE, WBEM_E_CALL_CANCELLED) from
// another thread before CancelAsyncCall returns; with the fact "/wmi/status-after-cancel" = "later" shortly afterwards,
// "never" not at all. What a connection still has running ends with it.
//
// IClientSecurity is there for CoSetProxyBlanket; SetBlanket is journalled as "com".
class WbemServicesDouble final : public WbemServicesBase
{
public:
    explicit WbemServicesDouble(std::string normalNamespace);

    HRESULT STDMETHODCALLTYPE CancelAsyncCall(IWbemObjectSink* sink) override;
    HRESULT STDMETHODCALLTYPE ExecQuery(const BSTR language, const BSTR query, LONG flags, IWbemContext* context,
                                        IEnumWbemClassObject** objects) override;
    HRESULT STDMETHODCALLTYPE ExecNotificationQueryAsync(const BSTR language, const BSTR query, LONG flags,
                                                         IWbemContext* context, IWbemObjectSink* sink) override;

    HRESULT STDMETHODCALLTYPE QueryBlanket(IUnknown* proxy, DWORD* authentication, DWORD* authorisation,
                                           OLECHAR** principal, DWORD* authenticationLevel, DWORD* impersonationLevel,
                                           void** identity, DWORD* capabilities) override;
    HRESULT STDMETHODCALLTYPE SetBlanket(IUnknown* proxy, DWORD authentication, DWORD authorisation, OLECHAR* principal,
                                         DWORD authenticationLevel, DWORD impersonationLevel, void* identity,
                                         DWORD capabilities) override;
    HRESULT STDMETHODCALLTYPE CopyProxy(IUnknown* proxy, IUnknown** copy) override;

private:
    ~WbemServicesDouble() override;

    std::string m_strNamespace;
};
} // namespace Simulator
