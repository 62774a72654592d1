#pragma once

#include "simulator/redirect/ImportRedirection.h"

#include <windows.h>

#include <oleauto.h>

#include <optional>

namespace Tests
{
// For the life of the object the n-th BSTR that the program makes of a text (1 = the next) is refused for want of
// memory.
class FailingBstr
{
public:
    explicit FailingBstr(unsigned nth);
    FailingBstr(const FailingBstr&) = delete;
    FailingBstr& operator=(const FailingBstr&) = delete;

    [[nodiscard]] static bool HasBitten() { return s_nRemaining == 0; }

private:
    static BSTR WINAPI Refusing(const OLECHAR* text);

    static inline decltype(SysAllocString)* s_pfnReal = nullptr;
    static inline unsigned s_nRemaining = 0;
    std::optional<Simulator::Redirection<decltype(SysAllocString)>> m_redirection;
};
} // namespace Tests
