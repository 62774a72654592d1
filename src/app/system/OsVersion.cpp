#include "app/system/OsVersion.h"

#include "platform/WmiNamespace.h"
#include "platform/WmiQuery.h"
#include "shared/TraceScope.h"

#include <cstdio>
#include <string>

using Orvik::Shared::TraceScope;

BOOL Win10AndHiger()
{
    TraceScope trace(ORVIK_FUNCTION);
    WmiQuery query(NamespacePath(WmiNamespace::Cimv2));
    const HRESULT hr = query.Query(L"select Version from Win32_OperatingSystem",
                                   WBEM_FLAG_FORWARD_ONLY | WBEM_FLAG_RETURN_IMMEDIATELY);
    if (FAILED(hr))
    {
        trace.Information(L"ExecuteQuery failed.");
        return trace.Exit(FALSE);
    }
    std::wstring text;
    if (FAILED(query.GetPropertyText(L"Version", text)))
    {
        trace.Information(L"GetPropertyValue for Version property failed.");
        return trace.Exit(FALSE);
    }
    int major = 0;
    int minor = 0;
    const bool isRead = std::swscanf(text.c_str(), L"%d.%d", &major, &minor) == 2;
    // Unsigned, so that absurd numbers wrap instead of overflowing.
    const int version =
        isRead ? static_cast<int>(static_cast<unsigned>(major) * 100u + static_cast<unsigned>(minor)) : 0;
    trace.ExitText(L"Major=%d  Minor=%d   Version=%d", major, minor, version);
    return version >= 1000;
}

BOOL IsWindows8OrGreater()
{
    TraceScope trace(ORVIK_FUNCTION);
    OSVERSIONINFOEXW wanted{};
    wanted.dwOSVersionInfoSize = sizeof(wanted);
    wanted.dwMajorVersion = HIBYTE(_WIN32_WINNT_WIN8);
    wanted.dwMinorVersion = LOBYTE(_WIN32_WINNT_WIN8);
    wanted.wServicePackMajor = 0;
    DWORDLONG condition = 0;
    for (const DWORD field : {VER_MAJORVERSION, VER_MINORVERSION, VER_SERVICEPACKMAJOR})
        condition = VerSetConditionMask(condition, field, VER_GREATER_EQUAL);
    return trace.Exit(
        VerifyVersionInfoW(&wanted, VER_MAJORVERSION | VER_MINORVERSION | VER_SERVICEPACKMAJOR, condition));
}
