#pragma once

#include <windows.h>

#include <cstdint>
#include <map>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace Simulator
{
// How long a rule of the plan holds.
enum class Repeat
{
    Once,
    Always
};

// Decides for every call into the simulated machine whether it works, fails, is slow or hangs, and counts and journals
// it. Each double starts each of its methods with
//     if (const HRESULT hr = CallPlan::Instance().Enter("IWbemLocator::ConnectServer"); FAILED(hr)) return hr;
// and each redirected function does the same under its own name ("CoCreateInstance"). One per process, any thread.
class CallPlan
{
public:
    static CallPlan& Instance();

    // Journals the call, waits as the plan says, and returns S_OK or the failure that the call must give.
    // A failure that is not an HRESULT in the real interface (a Win32 error, a BOOL) is translated by the caller.
    // kind: the journal's; "com" keeps what COM itself calls on the product's behalf out of the list of "call"s.
    [[nodiscard]] HRESULT Enter(std::string_view call, nlohmann::json details = nlohmann::json::object(),
                                std::string_view kind = "call");

    // The n-th call of that name from now on (1 = the next) fails; with Always, every one from the n-th on.
    void Fail(std::string_view call, HRESULT hr, unsigned nth = 1, Repeat repeat = Repeat::Once);
    // The n-th call of any name from now on fails: the means of a fault sweep.
    void FailAny(HRESULT hr, unsigned nth, Repeat repeat);
    // Every call of that name takes that long.
    void Delay(std::string_view call, DWORD milliseconds);
    // Every call of that name waits until ReleaseHung.
    void Hang(std::string_view call);
    void ReleaseHung();

    // Calls of all names since the last Reset, and whether a rule made one of them fail.
    [[nodiscard]] unsigned CallCount() const;
    [[nodiscard]] unsigned CallCount(std::string_view call) const;
    [[nodiscard]] unsigned FailedCount() const;

    // Forgets rules and counts and lets hanging calls go.
    void Reset();

private:
    struct Rule
    {
        std::string m_strCall; // empty: any call
        HRESULT m_hr;
        unsigned m_nRemaining; // calls that still pass before the rule bites, plus one
        Repeat m_repeat;
    };

    CallPlan();
    HRESULT Decide(std::string_view call);

    mutable std::mutex m_lock;
    std::vector<Rule> m_lstRules;
    std::map<std::string, unsigned, std::less<>> m_mapCounts;
    std::map<std::string, DWORD, std::less<>> m_mapDelays;
    std::vector<std::string> m_lstHanging;
    unsigned m_nCalls = 0;
    unsigned m_nFailed = 0;
    HANDLE m_hRelease; // manual-reset event, set while nothing hangs; lives as long as the process
};
} // namespace Simulator
