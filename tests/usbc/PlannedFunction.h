#pragma once

#include "simulator/model/CallPlan.h"

#include <windows.h>

#include <nlohmann/json.hpp>

namespace Tests
{
// The last-error code that a planned failure stands for.
inline DWORD ErrorOf(HRESULT hr)
{
    return HRESULT_FACILITY(hr) == FACILITY_WIN32 ? static_cast<DWORD>(HRESULT_CODE(hr)) : static_cast<DWORD>(hr);
}

// Journals a call of the system and asks the plan: false, with the last-error code set, when it is to fail.
inline bool EnterCall(const char* call, nlohmann::json details)
{
    const HRESULT hr = Simulator::CallPlan::Instance().Enter(call, std::move(details));
    SetLastError(FAILED(hr) ? ErrorOf(hr) : ERROR_SUCCESS);
    return SUCCEEDED(hr);
}

inline BOOL FailWith(DWORD error)
{
    SetLastError(error);
    return FALSE;
}
} // namespace Tests
