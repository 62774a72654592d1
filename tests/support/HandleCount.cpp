#include "tests/support/HandleCount.h"

#include <windows.h>
#include <winternl.h>

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <vector>

namespace TestSupport
{
namespace
{
// NtQuerySystemInformation with a plain number: the headers' enumeration lacks class 64, the handles of all processes.
using QuerySystemInformation = NTSTATUS NTAPI(ULONG informationClass, void* buffer, ULONG size, ULONG* needed);
constexpr ULONG g_extendedHandleInformation = 64;
constexpr auto g_infoLengthMismatch = static_cast<NTSTATUS>(0xC0000004);

struct HandleEntry
{
    void* m_pObject;
    ULONG_PTR m_nProcessId;
    ULONG_PTR m_nHandle;
    ULONG m_dwAccess;
    USHORT m_nCreatorBackTrace;
    USHORT m_nObjectType;
    ULONG m_dwAttributes;
    ULONG m_dwReserved;
};
static_assert(sizeof(HandleEntry) == 40);

struct HandleList
{
    ULONG_PTR m_nCount;
    ULONG_PTR m_nReserved;
};
} // namespace

unsigned OpenHandleCount()
{
    auto* query = reinterpret_cast<QuerySystemInformation*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
    std::vector<std::byte> buffer(1 << 16);
    ULONG needed = 0;
    NTSTATUS status = 0;
    while ((status = query(g_extendedHandleInformation, buffer.data(), static_cast<ULONG>(buffer.size()), &needed)) ==
           g_infoLengthMismatch)
        buffer.resize(buffer.size() * 2);
    if (status != 0)
        throw std::runtime_error("the system does not list its handles");
    const auto* list = reinterpret_cast<const HandleList*>(buffer.data());
    const auto* first = reinterpret_cast<const HandleEntry*>(list + 1);
    return static_cast<unsigned>(std::count_if(first, first + list->m_nCount,
                                               [](const HandleEntry& entry)
                                               { return entry.m_nProcessId == GetCurrentProcessId(); }));
}
} // namespace TestSupport
