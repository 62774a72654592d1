#include "tests/app/window/Broadcast.h"

#include <dbt.h>

#include <algorithm>
#include <cstddef>

namespace Tests
{
namespace
{
constexpr DWORD g_dwPage = 4096;
}

Broadcast::Broadcast(DWORD type, std::wstring_view name)
{
    constexpr std::size_t beginOfName = offsetof(DEV_BROADCAST_DEVICEINTERFACE_W, dbcc_name);
    const auto size = static_cast<DWORD>(beginOfName + (name.size() + 1) * sizeof(wchar_t));
    Allocate(size);
    *reinterpret_cast<DEV_BROADCAST_HDR*>(m_pStructure) = {size, type, 0};
    std::copy(name.begin(), name.end(), reinterpret_cast<wchar_t*>(m_pStructure + beginOfName));
}

Broadcast::Broadcast(DWORD type, DWORD size)
{
    Allocate(std::max<DWORD>(size, sizeof(DEV_BROADCAST_HDR)));
    std::fill_n(m_pStructure, size, static_cast<BYTE>(0xFF));
    *reinterpret_cast<DEV_BROADCAST_HDR*>(m_pStructure) = {size, type, 0};
}

Broadcast::~Broadcast()
{
    VirtualFree(m_pPages, 0, MEM_RELEASE);
}

void Broadcast::Allocate(DWORD size)
{
    m_pPages = VirtualAlloc(nullptr, 2 * g_dwPage, MEM_RESERVE, PAGE_NOACCESS);
    VirtualAlloc(m_pPages, g_dwPage, MEM_COMMIT, PAGE_READWRITE);
    // As near to the page that must not be read as Windows aligns its structures.
    m_pStructure = static_cast<BYTE*>(m_pPages) + g_dwPage -
                   (size + alignof(DEV_BROADCAST_HDR) - 1) / alignof(DEV_BROADCAST_HDR) * alignof(DEV_BROADCAST_HDR);
}
} // namespace Tests
