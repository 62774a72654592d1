#include "tests/notifications/RuntimeStringLedger.h"

#include <mutex>
#include <set>

namespace
{
struct Account
{
    std::mutex m_lock;
    std::multiset<HSTRING> m_setLive;
    std::size_t m_nDeletions = 0;
    decltype(WindowsCreateString)* m_pfnCreate = nullptr;
    decltype(WindowsDeleteString)* m_pfnDelete = nullptr;
};
Account g_account;

HRESULT WINAPI CountedCreate(LPCWSTR text, UINT32 length, HSTRING* string)
{
    const HRESULT hr = g_account.m_pfnCreate(text, length, string);
    const std::lock_guard lock(g_account.m_lock);
    if (SUCCEEDED(hr) && *string != nullptr)
        g_account.m_setLive.insert(*string);
    return hr;
}

HRESULT WINAPI CountedDelete(HSTRING string)
{
    {
        const std::lock_guard lock(g_account.m_lock);
        ++g_account.m_nDeletions;
        if (const auto found = g_account.m_setLive.find(string); found != g_account.m_setLive.end())
            g_account.m_setLive.erase(found);
    }
    return g_account.m_pfnDelete(string);
}

template <class Function>
Function* StandInFrontOf(Function*& before, const char* name, Function* replacement)
{
    const HMODULE combase = LoadLibraryExW(L"combase.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    before = reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(combase, name)));
    return replacement;
}
} // namespace

RuntimeStringLedger::RuntimeStringLedger()
    : m_create("WindowsCreateString", StandInFrontOf(g_account.m_pfnCreate, "WindowsCreateString", &CountedCreate)),
      m_delete("WindowsDeleteString", StandInFrontOf(g_account.m_pfnDelete, "WindowsDeleteString", &CountedDelete))
{
    const std::lock_guard lock(g_account.m_lock);
    g_account.m_setLive.clear();
    g_account.m_nDeletions = 0;
}

std::size_t RuntimeStringLedger::Live()
{
    const std::lock_guard lock(g_account.m_lock);
    return g_account.m_setLive.size();
}

std::size_t RuntimeStringLedger::Deletions()
{
    const std::lock_guard lock(g_account.m_lock);
    return g_account.m_nDeletions;
}
