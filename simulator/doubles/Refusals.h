#pragma once

#include "simulator/model/CallPlan.h"

namespace Simulator
{
// The plan's failure, or else the one that the double itself has to give.
[[nodiscard]] constexpr HRESULT FirstFailure(HRESULT planned, HRESULT own)
{
    return FAILED(planned) ? planned : own;
}

// A method that no double gives an answer to: the call is journalled all the same.
[[nodiscard]] inline HRESULT NotImplemented(std::string_view call)
{
    return FirstFailure(CallPlan::Instance().Enter(call, {{"not-implemented", true}}), E_NOTIMPL);
}
} // namespace Simulator
