#include "simulator/machine/Commands.h"

#include "shared/OwnerTypes.h"
#include "simulator/model/CallPlan.h"

#include <windows.h>

#include <psapi.h>
#include <tlhelp32.h>
#include <winternl.h>

#include <string_view>

namespace Simulator
{
namespace
{
// Handles are multiples of 4, and the lowest free one is given out next: behind so many free ones there is none in use.
constexpr ULONG_PTR g_step = 4;
constexpr unsigned g_freeInARow = 128;

bool IsRegistryKey(HANDLE handle)
{
    alignas(PUBLIC_OBJECT_TYPE_INFORMATION) BYTE buffer[1024];
    ULONG size = 0;
    if (!NT_SUCCESS(NtQueryObject(handle, ObjectTypeInformation, buffer, sizeof(buffer), &size)))
        return false;
    const UNICODE_STRING& name = reinterpret_cast<const PUBLIC_OBJECT_TYPE_INFORMATION*>(buffer)->TypeName;
    return std::wstring_view(name.Buffer, name.Length / sizeof(wchar_t)) == L"Key";
}

struct Handles
{
    long m_nKeys = 0;
    long m_nOthers = 0;
};

// Wine counts no handles of a process, and its list of all handles crashes its server now and then.
Handles CountHandles()
{
    Handles count;
    unsigned freeInARow = 0;
    for (ULONG_PTR value = g_step; freeInARow < g_freeInARow; value += g_step)
    {
        const auto handle = reinterpret_cast<HANDLE>(value);
        DWORD flags = 0;
        const bool isOpen = GetHandleInformation(handle, &flags) != FALSE;
        freeInARow = isOpen ? 0 : freeInARow + 1;
        if (isOpen)
            ++(IsRegistryKey(handle) ? count.m_nKeys : count.m_nOthers);
    }
    return count;
}

unsigned CountThreads()
{
    const Orvik::Shared::UniqueHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
    THREADENTRY32 thread{};
    thread.dwSize = sizeof(thread);
    unsigned count = 0;
    for (BOOL found = Thread32First(snapshot.get(), &thread); found; found = Thread32Next(snapshot.get(), &thread))
        count += thread.th32OwnerProcessID == GetCurrentProcessId() ? 1 : 0;
    return count;
}

std::size_t CountMemory()
{
    PROCESS_MEMORY_COUNTERS counters{};
    K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
    return counters.WorkingSetSize / 1024;
}
} // namespace

// What the agent's process uses: open handles, open registry keys, threads, kilobytes of memory.
nlohmann::json CountResources(const nlohmann::json&)
{
    const Handles handles = CountHandles();
    // Wine 8 leaves a key open each time: not the agent's.
    const long factories = static_cast<long>(CallPlan::Instance().CallCount("RoGetActivationFactory"));
    return {{"handles", handles.m_nOthers},
            {"keys", handles.m_nKeys - factories},
            {"threads", CountThreads()},
            {"kilobytes", CountMemory()}};
}
} // namespace Simulator
