#pragma once

#include "simulator/machine/CallArguments.h"
#include "simulator/model/CallPlan.h"

#include <windows.h>

namespace Simulator
{
// How a Windows function tells its caller that it failed.
enum class FailsAs
{
    Hresult,   // returns the failure itself
    Win32Code, // returns an error number
    Zero,      // returns 0, null or FALSE and sets the last error
    MinusOne   // returns all bits set and sets the last error
};

template <std::size_t Size>
struct CallName
{
    char m_text[Size];

    consteval CallName(const char (&text)[Size]) : m_text{}
    {
        for (std::size_t i = 0; i < Size; ++i)
            m_text[i] = text[i];
    }
};

// The error number inside an HRESULT made from one; any other HRESULT stands for itself.
[[nodiscard]] constexpr DWORD ErrorNumber(HRESULT hr)
{
    return HRESULT_FACILITY(hr) == FACILITY_WIN32 ? static_cast<DWORD>(HRESULT_CODE(hr)) : static_cast<DWORD>(hr);
}

// The address of a function that the program may look up at run time; null when no loaded module of Windows has it.
[[nodiscard]] void* FindWindowsFunction(const char* name);

// A stand-in for one Windows function: journals the call with its readable arguments, fails when the call plan says so,
// and else does what the real function does.
template <CallName Name, FailsAs Failing, class Function>
class PlannedCall;

template <CallName Name, FailsAs Failing, class Result, class... Args>
class PlannedCall<Name, Failing, Result(Args...)>
{
public:
    static constexpr const char* FunctionName() { return Name.m_text; }

    static Result Call(Args... args)
    {
        // Neither journal nor plan may disturb what the agent reads by GetLastError.
        const DWORD lastError = GetLastError();
        const HRESULT hr = CallPlan::Instance().Enter(Name.m_text, DescribeArguments(args...));
        SetLastError(lastError);
        return FAILED(hr) ? Failure(hr) : Original()(args...);
    }

private:
    static Result (*Original())(Args...)
    {
        static auto* const original = reinterpret_cast<Result (*)(Args...)>(FindWindowsFunction(Name.m_text));
        return original;
    }

    static Result Failure(HRESULT hr)
    {
        if constexpr (Failing == FailsAs::Hresult)
            return hr;
        else if constexpr (Failing == FailsAs::Win32Code)
            return static_cast<Result>(ErrorNumber(hr));
        else
        {
            SetLastError(ErrorNumber(hr));
            if constexpr (Failing == FailsAs::MinusOne && std::is_pointer_v<Result>)
                return reinterpret_cast<Result>(~ULONG_PTR{0});
            else if constexpr (Failing == FailsAs::MinusOne)
                return static_cast<Result>(-1);
            else
                return Result{};
        }
    }
};
} // namespace Simulator
