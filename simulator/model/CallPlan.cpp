#include "simulator/model/CallPlan.h"

#include "simulator/model/Journal.h"
#include "simulator/model/ProcessEnd.h"

#include <algorithm>

namespace Simulator
{
CallPlan::CallPlan() : m_hRelease(CreateEventW(nullptr, TRUE, TRUE, nullptr)) {}

CallPlan& CallPlan::Instance()
{
    // Never freed: doubles are called until the process is gone.
    static CallPlan& plan = *new CallPlan;
    return plan;
}

HRESULT CallPlan::Decide(std::string_view call)
{
    HRESULT decision = S_OK;
    for (Rule& rule : m_lstRules)
    {
        if ((!rule.m_strCall.empty() && rule.m_strCall != call) || rule.m_nRemaining == 0)
            continue;
        if (--rule.m_nRemaining != 0)
            continue;
        if (rule.m_repeat == Repeat::Always)
            rule.m_nRemaining = 1;
        if (decision == S_OK)
            decision = rule.m_hr;
    }
    if (FAILED(decision))
        ++m_nFailed;
    return decision;
}

HRESULT CallPlan::Enter(std::string_view call, nlohmann::json details, std::string_view kind)
{
    if (ProcessIsEnding())
        return S_OK;
    DWORD delay = 0;
    bool hangs = false;
    HRESULT hr = S_OK;
    {
        const std::lock_guard lock(m_lock);
        ++m_nCalls;
        ++m_mapCounts.try_emplace(std::string(call), 0u).first->second;
        hr = Decide(call);
        if (const auto found = m_mapDelays.find(call); found != m_mapDelays.end())
            delay = found->second;
        hangs = std::ranges::find(m_lstHanging, call) != m_lstHanging.end();
    }
    if (FAILED(hr))
        details["planned-failure"] = static_cast<std::uint32_t>(hr);
    Journal::Instance().Append(kind, call, std::move(details));
    if (delay != 0)
        Sleep(delay);
    if (hangs)
        WaitForSingleObject(m_hRelease, INFINITE);
    return hr;
}

void CallPlan::Fail(std::string_view call, HRESULT hr, unsigned nth, Repeat repeat)
{
    const std::lock_guard lock(m_lock);
    m_lstRules.push_back({std::string(call), hr, nth, repeat});
}

void CallPlan::FailAny(HRESULT hr, unsigned nth, Repeat repeat)
{
    Fail("", hr, nth, repeat);
}

void CallPlan::Delay(std::string_view call, DWORD milliseconds)
{
    const std::lock_guard lock(m_lock);
    m_mapDelays[std::string(call)] = milliseconds;
}

void CallPlan::Hang(std::string_view call)
{
    const std::lock_guard lock(m_lock);
    m_lstHanging.emplace_back(call);
    ResetEvent(m_hRelease);
}

void CallPlan::ReleaseHung()
{
    const std::lock_guard lock(m_lock);
    m_lstHanging.clear();
    SetEvent(m_hRelease);
}

unsigned CallPlan::CallCount() const
{
    const std::lock_guard lock(m_lock);
    return m_nCalls;
}

unsigned CallPlan::CallCount(std::string_view call) const
{
    const std::lock_guard lock(m_lock);
    const auto found = m_mapCounts.find(call);
    return found == m_mapCounts.end() ? 0 : found->second;
}

unsigned CallPlan::FailedCount() const
{
    const std::lock_guard lock(m_lock);
    return m_nFailed;
}

void CallPlan::Reset()
{
    const std::lock_guard lock(m_lock);
    m_lstRules.clear();
    m_mapCounts.clear();
    m_mapDelays.clear();
    m_lstHanging.clear();
    m_nCalls = 0;
    m_nFailed = 0;
    SetEvent(m_hRelease);
}
} // namespace Simulator
