#include "tests/wmievents/AskedPolicies.h"

namespace Tests
{
namespace
{
std::vector<std::wstring> g_lstAsked;
decltype(RegQueryValueExW)* g_pfnQueryValue;

LSTATUS WINAPI NotedQueryValueExW(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data, LPDWORD size)
{
    g_lstAsked.emplace_back(name);
    return g_pfnQueryValue(key, name, reserved, type, data, size);
}
} // namespace

AskedPolicies::AskedPolicies() : m_redirection("RegQueryValueExW", &NotedQueryValueExW)
{
    g_pfnQueryValue = m_redirection.Original();
    Clear();
}

const std::vector<std::wstring>& AskedPolicies::Names() const
{
    return g_lstAsked;
}

void AskedPolicies::Clear()
{
    g_lstAsked.clear();
}
} // namespace Tests
