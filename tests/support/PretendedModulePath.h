#pragma once

#include "simulator/redirect/ImportRedirection.h"

#include <windows.h>

#include <string>

namespace TestSupport
{
// While it lives the program is told this path of its module, at most as many characters of it as there is room for.
// One at a time.
class PretendedModulePath
{
public:
    explicit PretendedModulePath(std::wstring path);

    // What the last call asked for, also of one that is over.
    [[nodiscard]] static HMODULE AskedModule() noexcept { return s_hAskedModule; }
    [[nodiscard]] static DWORD AskedCapacity() noexcept { return s_dwAskedCapacity; }

private:
    static DWORD WINAPI Tell(HMODULE module, LPWSTR buffer, DWORD capacity);

    static inline std::wstring s_strPath;
    static inline HMODULE s_hAskedModule = nullptr;
    static inline DWORD s_dwAskedCapacity = 0;

    Simulator::Redirection<decltype(GetModuleFileNameW)> m_redirection;
};
} // namespace TestSupport
