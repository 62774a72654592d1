#pragma once

#include "simulator/redirect/ImportRedirection.h"

#include <cstddef>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <utility>

// The type of fwrite; its own name carries attributes that a template argument cannot.
using WriteFunction = std::size_t(const void*, std::size_t, std::size_t, std::FILE*);

// For the life of the object a function that the program imports is the test's: the handler is called with the function
// that it stands for and with the arguments. Calls come from any thread; nobody calls while it is made or ends.
//     const auto move = Replace<decltype(MoveFileW)>("MoveFileW", [](auto original, auto... arguments) {...});
template <class Function, class Handler>
class ReplacedCall;

template <class Result, class... Arguments, class Handler>
class ReplacedCall<Result(Arguments...), Handler>
{
public:
    ReplacedCall(const char* name, Handler handler) : m_handler(std::move(handler)), m_redirection(name, &Call)
    {
        if (m_redirection.SlotCount() == 0)
            throw std::logic_error(std::string("the program does not import ") + name);
        s_pCurrent = this;
    }
    ReplacedCall(const ReplacedCall&) = delete;
    ReplacedCall& operator=(const ReplacedCall&) = delete;
    ~ReplacedCall() = default;

private:
    static Result Call(Arguments... arguments)
    {
        return s_pCurrent->m_handler(s_pCurrent->m_redirection.Original(), arguments...);
    }

    // The type of the handler is its own at each place, and so is this.
    static inline ReplacedCall* s_pCurrent = nullptr;

    Handler m_handler;
    Simulator::Redirection<Result(Arguments...)> m_redirection;
};

template <class Function, class Handler>
[[nodiscard]] auto Replace(const char* name, Handler handler)
{
    return ReplacedCall<Function, Handler>(name, std::move(handler));
}

// The n-th call from now on (1 is the next) gives the result, with that last-error code, and does nothing else; with n
// 0 every call does.
template <class Function, class Result>
[[nodiscard]] auto FailCall(const char* name, unsigned nth, Result result, unsigned long lastError)
{
    return Replace<Function>(name,
                             [=, calls = 0u](auto original, auto... arguments) mutable
                             {
                                 ++calls;
                                 if (nth != 0 && calls != nth)
                                     return original(arguments...);
                                 SetLastError(lastError);
                                 return static_cast<decltype(original(arguments...))>(result);
                             });
}
