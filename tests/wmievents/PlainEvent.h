#pragma once

#include "simulator/doubles/WbemClassObjectBase.h"

#include <oleauto.h>

#include <cwchar>

namespace Tests
{
// A firmware event of either kind that keeps no journal and takes no memory but for its texts.
class PlainEvent final : public Simulator::WbemClassObjectBase
{
public:
    PlainEvent() : WbemClassObjectBase("PlainEvent") {}

    HRESULT STDMETHODCALLTYPE Get(LPCWSTR name, LONG, VARIANT* value, CIMTYPE*, LONG*) override
    {
        const bool isClass = std::wcscmp(name, L"__Class") == 0;
        if (!isClass && std::wcscmp(name, L"Description") != 0)
        {
            value->vt = m_vtNumbers;
            return S_OK;
        }
        value->bstrVal = SysAllocString(isClass ? m_pClass : m_pDescription);
        if (value->bstrVal == nullptr)
            return E_OUTOFMEMORY;
        value->vt = VT_BSTR;
        return S_OK;
    }

    const wchar_t* m_pClass = L"OrvikBIOS_BIOSEvent";
    const wchar_t* m_pDescription = L"Lid opened";
    // Type of the properties that should be numbers; their value is left as the reader made it.
    VARTYPE m_vtNumbers = VT_EMPTY;
};
} // namespace Tests
