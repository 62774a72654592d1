#pragma once

#include "platform/ComApartment.h"

#include <comdef.h>
#include <wbemcli.h>

#include <string>

_COM_SMARTPTR_TYPEDEF(IWbemLocator, __uuidof(IWbemLocator));
_COM_SMARTPTR_TYPEDEF(IWbemServices, __uuidof(IWbemServices));
_COM_SMARTPTR_TYPEDEF(IWbemClassObject, __uuidof(IWbemClassObject));
_COM_SMARTPTR_TYPEDEF(IEnumWbemClassObject, __uuidof(IEnumWbemClassObject));

// Runs one WQL query at a time in one WMI namespace and reads its result objects one after the other. Logs nothing.
// Belongs to one thread: it initialises COM there and undoes that when it goes.
class WmiQuery
{
public:
    // Never fails: without a connection each Query says so.
    explicit WmiQuery(const wchar_t* namespacePath);
    WmiQuery(const WmiQuery&) = delete;
    WmiQuery& operator=(const WmiQuery&) = delete;

    // Leaves the present namespace first; a failure leaves none. Raises _com_error(E_OUTOFMEMORY) when a string cannot
    // be allocated.
    [[nodiscard]] HRESULT Connect(const wchar_t* namespacePath);

    // flags: WBEM_FLAG_*. Goes to the first object and gives the result of that step, WBEM_S_FALSE for an empty answer;
    // WBEM_E_INITIALIZATION_FAILURE without a connection, E_OUTOFMEMORY when a string cannot be allocated.
    [[nodiscard]] HRESULT Query(const wchar_t* text, long flags);

    // Waits at most 20,000 ms for the next object. WBEM_S_FALSE after the last, WBEM_S_TIMEDOUT: no object is current
    // then. WBEM_E_INVALID_CLASS before any query.
    [[nodiscard]] HRESULT Next();

    // A property of the current object as text, numbers in decimal; a null text counts as empty. WBEM_E_TYPE_MISMATCH
    // for a value that has no text, WBEM_E_NOT_FOUND without a current object, E_OUTOFMEMORY when the text cannot be
    // copied; text is unchanged on failure.
    [[nodiscard]] HRESULT GetPropertyText(const wchar_t* name, std::wstring& text) const;

private:
    [[nodiscard]] HRESULT ConnectServices(IWbemLocator& locator, const wchar_t* namespacePath);

    // Members go in reverse order: the enumerator, the object and the services before the thread leaves COM.
    ComApartment m_apartment;
    std::wstring m_strNamespace; // of the last connection that WMI accepted
    IWbemServicesPtr m_spServices;
    IWbemClassObjectPtr m_spObject;
    IEnumWbemClassObjectPtr m_spEnumerator;
};
