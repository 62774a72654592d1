#include "tests/wmievents/FailingBstr.h"

namespace Tests
{
FailingBstr::FailingBstr(unsigned nth)
{
    s_pfnReal = &SysAllocString;
    s_nRemaining = nth;
    m_redirection.emplace("SysAllocString", &Refusing);
    s_pfnReal = m_redirection->Original();
}

BSTR WINAPI FailingBstr::Refusing(const OLECHAR* text)
{
    if (s_nRemaining > 0 && --s_nRemaining == 0)
        return nullptr;
    return s_pfnReal(text);
}
} // namespace Tests
