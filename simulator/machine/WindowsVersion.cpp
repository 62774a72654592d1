#include "simulator/machine/WindowsVersion.h"

#include <windows.h>
#include <winternl.h>

namespace Simulator
{
int WindowsVersion()
{
    using RtlGetVersionFunction = NTSTATUS(NTAPI*)(OSVERSIONINFOW*);
    const auto rtlGetVersion = reinterpret_cast<RtlGetVersionFunction>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlGetVersion")));
    OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof(version);
    rtlGetVersion(&version);
    return static_cast<int>(version.dwMajorVersion * 100 + version.dwMinorVersion);
}

std::string WindowsName()
{
    switch (WindowsVersion())
    {
    case 601:
        return "Windows 7";
    case 602:
        return "Windows 8";
    case 603:
        return "Windows 8.1";
    case 1000:
        return "Windows 10";
    default:
        return "Windows " + std::to_string(WindowsVersion());
    }
}
} // namespace Simulator
