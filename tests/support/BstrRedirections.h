#pragma once

#include <windows.h>

#include <oleauto.h>

#include <cstddef>
#include <mutex>
#include <set>
#include <span>

namespace TestSupport
{
// The BSTRs that the redirected functions gave out and did not see freed.
struct BstrAccount
{
    std::mutex m_lock;
    std::set<BSTR> m_setLive;
    std::size_t m_nAllocations = 0;

    static BstrAccount& Instance();
    void Clear();
};

struct BstrRedirection
{
    const char* m_pFunctionName;
    void* m_pReplacement;
};

// The functions that keep the account. The first call looks the real ones up: before anything is redirected.
[[nodiscard]] std::span<const BstrRedirection> BstrRedirections();
} // namespace TestSupport
