#pragma once

#include "simulator/model/CallPlan.h"
#include "simulator/redirect/ImportRedirection.h"

#include <windows.h>

// For the life of the object a function that the program imports goes through the call plan under its own name; when
// the plan makes it fail it returns the given value, with that last-error code, and is not called. The tag tells
// functions of the same type apart:
//     FaultableFunction<struct CreateThreadTag, decltype(CreateThread)> thread("CreateThread", nullptr,
//     ERROR_OUTOFMEMORY);
template <class Tag, class Signature>
class FaultableFunction;

template <class Tag, class Result, class... Arguments>
class FaultableFunction<Tag, Result(Arguments...)>
{
public:
    FaultableFunction(const char* name, Result failure, DWORD lastError = ERROR_NOT_ENOUGH_MEMORY)
        : m_redirection(name, &Planned)
    {
        s_pszName = name;
        s_failure = failure;
        s_dwLastError = lastError;
        s_pfnOriginal = m_redirection.Original();
    }

private:
    static Result WINAPI Planned(Arguments... arguments)
    {
        if (SUCCEEDED(Simulator::CallPlan::Instance().Enter(s_pszName)))
            return s_pfnOriginal(arguments...);
        SetLastError(s_dwLastError);
        return s_failure;
    }

    inline static const char* s_pszName = nullptr;
    inline static Result s_failure{};
    inline static DWORD s_dwLastError = 0;
    inline static Result(WINAPI* s_pfnOriginal)(Arguments...) = nullptr;

    Simulator::Redirection<Result(Arguments...)> m_redirection;
};
