#include "bench/startup/StartedProgram.h"

#include "shared/OwnerTypes.h"

#include <psapi.h>

#include <iterator>
#include <stdexcept>
#include <string>

using Orvik::Shared::UniqueHandle;

namespace
{
constexpr DWORD g_limitMilliseconds = 30'000;

UniqueHandle StartProcess(const wchar_t* path)
{
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(path, nullptr, nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process))
        throw std::runtime_error("a program cannot be started, error " + std::to_string(GetLastError()));
    const UniqueHandle thread(process.hThread);
    return UniqueHandle(process.hProcess);
}

HWND WaitForWindow(HANDLE process, const wchar_t* windowClass)
{
    const ULONGLONG end = GetTickCount64() + g_limitMilliseconds;
    while (GetTickCount64() < end && WaitForSingleObject(process, 1) == WAIT_TIMEOUT)
    {
        if (const HWND hwnd = FindWindowW(windowClass, nullptr); hwnd != nullptr)
            return hwnd;
    }
    throw std::runtime_error("a program that was started shows no window");
}
} // namespace

StartCost MeasureStart(const wchar_t* path, const wchar_t* windowClass)
{
    LARGE_INTEGER frequency{};
    LARGE_INTEGER start{};
    LARGE_INTEGER end{};
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&start);
    const UniqueHandle process = StartProcess(path);
    const HWND hwnd = WaitForWindow(process.get(), windowClass);
    // Answered by the message loop only: start-up is over then.
    DWORD_PTR answer = 0;
    if (SendMessageTimeoutW(hwnd, WM_NULL, 0, 0, SMTO_NORMAL, g_limitMilliseconds, &answer) == 0)
        throw std::runtime_error("a program that was started does not answer");
    QueryPerformanceCounter(&end);

    PROCESS_MEMORY_COUNTERS memory{};
    GetProcessMemoryInfo(process.get(), &memory, sizeof(memory));
    PostMessageW(hwnd, WM_CLOSE, 0, 0);
    if (WaitForSingleObject(process.get(), g_limitMilliseconds) != WAIT_OBJECT_0)
        throw std::runtime_error("a program that was started does not end");
    return {static_cast<double>(end.QuadPart - start.QuadPart) * 1000.0 / static_cast<double>(frequency.QuadPart),
            static_cast<double>(memory.PeakWorkingSetSize) / (1024.0 * 1024.0)};
}
