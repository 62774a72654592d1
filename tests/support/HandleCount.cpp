#include "tests/support/HandleCount.h"

#include <windows.h>

namespace TestSupport
{
namespace
{
// Handles are multiples of 4, and the lowest free one is given out next: behind so many free ones there is none in use.
constexpr ULONG_PTR g_step = 4;
constexpr unsigned g_freeInARow = 128;
constexpr int g_times = 4;
} // namespace

// Asks for each handle of this process. The list of all handles of the system would be one call, but the server of Wine
// 8 crashes over it now and then while another process starts or ends.
unsigned OpenHandleCount()
{
    unsigned open = 0;
    unsigned freeInARow = 0;
    for (ULONG_PTR handle = g_step; freeInARow < g_freeInARow; handle += g_step)
    {
        DWORD flags = 0;
        const bool isOpen = GetHandleInformation(reinterpret_cast<HANDLE>(handle), &flags) != FALSE;
        open += isOpen ? 1 : 0;
        freeInARow = isOpen ? 0 : freeInARow + 1;
    }
    return open;
}

bool LeaksNoHandles(const std::function<void()>& action)
{
    unsigned before = OpenHandleCount();
    for (int i = 0; i < g_times; ++i)
    {
        action();
        const unsigned after = OpenHandleCount();
        if (after <= before)
            return true;
        before = after;
    }
    return false;
}
} // namespace TestSupport
