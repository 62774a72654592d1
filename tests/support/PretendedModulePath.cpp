#include "tests/support/PretendedModulePath.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace TestSupport
{
PretendedModulePath::PretendedModulePath(std::wstring path) : m_redirection("GetModuleFileNameW", &Tell)
{
    s_strPath = std::move(path);
}

DWORD WINAPI PretendedModulePath::Tell(HMODULE module, LPWSTR buffer, DWORD capacity)
{
    s_hAskedModule = module;
    s_dwAskedCapacity = capacity;
    const std::size_t length = std::min<std::size_t>(s_strPath.size(), capacity);
    std::memcpy(buffer, s_strPath.data(), length * sizeof(wchar_t));
    if (length < capacity)
        buffer[length] = L'\0';
    return static_cast<DWORD>(length);
}
} // namespace TestSupport
