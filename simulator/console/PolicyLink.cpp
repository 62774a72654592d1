#include "simulator/console/PolicyLink.h"

#include "shared/OwnerTypes.h"
#include "simulator/console/Failure.h"

#include <windows.h>
#include <winternl.h>

namespace Simulator
{
namespace
{
constexpr wchar_t g_key[] = L"SOFTWARE\\Wow6432Node\\Policies";

bool IsLink(HKEY key)
{
    DWORD type = 0;
    return RegQueryValueExW(key, L"SymbolicLinkValue", nullptr, &type, nullptr, nullptr) == ERROR_SUCCESS &&
           type == REG_LINK;
}
} // namespace

void SeparatePolicyViews()
{
    Orvik::Shared::UniqueRegKey link;
    RegOpenKeyExW(HKEY_LOCAL_MACHINE, g_key, REG_OPTION_OPEN_LINK, KEY_ALL_ACCESS, Orvik::Shared::ReceiveInto(link));
    if (link && IsLink(link.get()))
    {
        // RegDeleteKeyW would follow the link.
        using NtDeleteKeyFunction = NTSTATUS(NTAPI*)(HANDLE);
        const auto ntDeleteKey = reinterpret_cast<NtDeleteKeyFunction>(
            reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtDeleteKey")));
        if (const NTSTATUS status = ntDeleteKey(link.get()); status < 0)
            throw UsageError(WindowsFailure("NtDeleteKey", static_cast<unsigned long>(status)));
    }
    link.reset();
    Orvik::Shared::UniqueRegKey own;
    if (const LSTATUS code = RegCreateKeyExW(HKEY_LOCAL_MACHINE, g_key, 0, nullptr, 0, KEY_READ, nullptr,
                                             Orvik::Shared::ReceiveInto(own), nullptr);
        code != ERROR_SUCCESS)
        throw UsageError(WindowsFailure("RegCreateKeyExW", static_cast<unsigned long>(code)));
}
} // namespace Simulator
