#include "bench/support/Crossings.h"

#include <windows.h>

#include <objbase.h>
#include <oleauto.h>
#include <roapi.h>
#include <shlobj.h>
#include <winstring.h>

namespace EventBench
{
namespace
{
constexpr CLSID g_domDocument30 = {0xF5078F32, 0xC551, 0x11D3, {0x89, 0xB9, 0x00, 0x00, 0xF8, 0x1F, 0xE2, 0x21}};

// The XML parser is Windows' own, all other classes are the simulated machine's.
struct InActivation : Crossing
{
    InActivation(REFCLSID classId, LPUNKNOWN, DWORD, REFIID, LPVOID*)
        : Crossing(classId == g_domDocument30 ? Place::Windows : Place::Doubles)
    {
    }
};

struct SuspendAtEnd
{
    ~SuspendAtEnd() { EventClock::Suspend(); }
};

// The way to the main thread: what the posting thread does afterwards, no toast waits for.
struct InPosting : SuspendAtEnd, InWindows
{
};

template <Name name, class Function, class Watch = InWindows>
void Watched()
{
    FunctionCrossing<name, Watch, Function>::Install();
}

void WatchRedirectedFunctions()
{
    Watched<"CoCreateInstance", decltype(CoCreateInstance), InActivation>();
    Watched<"CoInitializeEx", decltype(CoInitializeEx), InDoubles>();
    Watched<"CoUninitialize", decltype(CoUninitialize), InDoubles>();
    Watched<"CLSIDFromProgID", decltype(CLSIDFromProgID), InDoubles>();
    Watched<"OleRun", decltype(OleRun), InDoubles>();
    Watched<"RoGetActivationFactory", decltype(RoGetActivationFactory), InDoubles>();
    Watched<"WindowsCreateString", decltype(WindowsCreateString), InDoubles>();
}

void WatchTexts()
{
    Watched<"SysAllocString", decltype(SysAllocString)>();
    Watched<"SysFreeString", decltype(SysFreeString)>();
    Watched<"SysStringLen", decltype(SysStringLen)>();
    Watched<"VariantInit", decltype(VariantInit)>();
    Watched<"VariantClear", decltype(VariantClear)>();
    Watched<"VariantCopy", decltype(VariantCopy)>();
    Watched<"VariantChangeType", decltype(VariantChangeType)>();
    Watched<"WindowsDeleteString", decltype(WindowsDeleteString)>();
    Watched<"LoadStringW", decltype(LoadStringW)>();
}

void WatchSystem()
{
    Watched<"RegOpenKeyExW", decltype(RegOpenKeyExW)>();
    Watched<"RegQueryValueExW", decltype(RegQueryValueExW)>();
    Watched<"RegCloseKey", decltype(RegCloseKey)>();
    Watched<"SHGetSpecialFolderPathW", decltype(SHGetSpecialFolderPathW)>();
    Watched<"GetModuleFileNameW", decltype(GetModuleFileNameW)>();
    Watched<"GetModuleHandleW", decltype(GetModuleHandleW)>();
    Watched<"CloseHandle", decltype(CloseHandle)>();
    Watched<"PostMessageW", decltype(PostMessageW), InPosting>();
    Watched<"GetLocalTime", decltype(GetLocalTime)>();
    Watched<"ReportEventW", decltype(ReportEventW)>();
}
} // namespace

void WatchFunctions()
{
    WatchRedirectedFunctions();
    WatchTexts();
    WatchSystem();
    // Last: every redirection before it makes itself the one that look-ups reach.
    Watched<"GetProcAddress", decltype(GetProcAddress), InDoubles>();
}
} // namespace EventBench
