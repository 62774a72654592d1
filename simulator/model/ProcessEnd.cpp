#include "simulator/model/ProcessEnd.h"

#include <windows.h>

namespace Simulator
{
namespace
{
using RtlDllShutdownInProgressFunction = BOOLEAN(NTAPI*)();

// Looked up before the program's first line: a process that ends must not wait for the loader, and a redirected
// GetModuleHandleW asks for it itself.
const auto g_pfnRtlDllShutdownInProgress = reinterpret_cast<RtlDllShutdownInProgressFunction>(
    reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlDllShutdownInProgress")));
} // namespace

bool ProcessIsEnding() noexcept
{
    return g_pfnRtlDllShutdownInProgress != nullptr && g_pfnRtlDllShutdownInProgress() != FALSE;
}
} // namespace Simulator
