#pragma once

#include <objbase.h>

// The calling thread's membership in a COM apartment, for a scope on that thread. Result tells whether it is one: a
// thread that already lives in the other kind of apartment gives RPC_E_CHANGED_MODE and is left as it was.
class ComApartment
{
public:
    explicit ComApartment(DWORD flags) noexcept : m_hrResult(CoInitializeEx(nullptr, flags)) {}
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;
    ~ComApartment()
    {
        if (SUCCEEDED(m_hrResult))
            CoUninitialize();
    }

    [[nodiscard]] HRESULT Result() const noexcept { return m_hrResult; }

private:
    HRESULT m_hrResult;
};
