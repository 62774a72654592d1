#include "simulator/machine/PlannedCall.h"
#include "simulator/machine/Redirections.h"
#include "simulator/machine/WindowsVersion.h"
#include "simulator/model/Facts.h"

#include <algorithm>
#include <array>
#include <set>

// Wine has every library whatever version of Windows it says: what an old Windows lacks is hidden here.
namespace Simulator
{
namespace
{
constexpr int g_firstVersionWithWindowsRuntime = 602;
constexpr std::array g_windowsRuntimeLibraries = {"combase.dll", "api-ms-win-core-winrt-l1-1-0.dll",
                                                  "api-ms-win-core-winrt-string-l1-1-0.dll"};

std::string BaseName(const std::string& path)
{
    std::string name = path.substr(path.find_last_of("\\/") + 1);
    std::ranges::transform(name, name.begin(), [](unsigned char c) { return std::tolower(c); });
    return name.find('.') == std::string::npos ? name + ".dll" : name;
}

// Fact /windows/missing-libraries: names in lower case; without it, what the version of Windows lacks.
bool IsMissing(const wchar_t* path)
{
    const std::string name = BaseName(Narrow(path));
    const nlohmann::json missing = Facts::Instance().Get("/windows/missing-libraries");
    if (missing.is_array())
        return missing.get<std::set<std::string>>().contains(name);
    return WindowsVersion() < g_firstVersionWithWindowsRuntime &&
           std::ranges::find(g_windowsRuntimeLibraries, name) != g_windowsRuntimeLibraries.end();
}

HMODULE Decide(const char* function, const wchar_t* path, HMODULE (*load)(const wchar_t*, DWORD), DWORD flags)
{
    const HRESULT hr = CallPlan::Instance().Enter(function, DescribeArguments(path));
    if (FAILED(hr) || (path != nullptr && IsMissing(path)))
    {
        SetLastError(FAILED(hr) ? ErrorNumber(hr) : ERROR_MOD_NOT_FOUND);
        return nullptr;
    }
    return load(path, flags);
}

HMODULE WINAPI LoadLibraryWOfMachine(LPCWSTR path)
{
    return Decide("LoadLibraryW", path, [](const wchar_t* name, DWORD) { return LoadLibraryW(name); }, 0);
}

HMODULE WINAPI LoadLibraryExWOfMachine(LPCWSTR path, HANDLE, DWORD flags)
{
    return Decide(
        "LoadLibraryExW", path, [](const wchar_t* name, DWORD how) { return LoadLibraryExW(name, nullptr, how); },
        flags);
}

HMODULE WINAPI GetModuleHandleWOfMachine(LPCWSTR path)
{
    // The program's own module: not a question about the machine.
    if (path == nullptr)
        return GetModuleHandleW(nullptr);
    return Decide("GetModuleHandleW", path, [](const wchar_t* name, DWORD) { return GetModuleHandleW(name); }, 0);
}
} // namespace

void RedirectLibraryFunctions(Redirections& redirections)
{
    redirections.Add("LoadLibraryW", &LoadLibraryWOfMachine);
    redirections.Add("LoadLibraryExW", &LoadLibraryExWOfMachine);
    redirections.Add("GetModuleHandleW", &GetModuleHandleWOfMachine);
}
} // namespace Simulator
