#include "simulator/model/ProcessEnd.h"

#include <windows.h>

namespace Simulator
{
bool ProcessIsEnding() noexcept
{
    using RtlDllShutdownInProgressFunction = BOOLEAN(NTAPI*)();
    // Looked up early: a process that ends must not wait for the loader.
    static const auto rtlDllShutdownInProgress = reinterpret_cast<RtlDllShutdownInProgressFunction>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlDllShutdownInProgress")));
    return rtlDllShutdownInProgress() != FALSE;
}
} // namespace Simulator
