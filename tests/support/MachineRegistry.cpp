#include "tests/support/MachineRegistry.h"

#include "shared/OwnerTypes.h"

#include <windows.h>

#include <stdexcept>

using Orvik::Shared::ReceiveInto;
using Orvik::Shared::UniqueRegKey;

namespace TestSupport
{
MachineRegistry::MachineRegistry()
    : m_strPath(L"Software\\OrvikTests\\Machine of process " + std::to_wstring(GetCurrentProcessId()))
{
    // A process of the same number may have died here.
    RegDeleteTreeW(HKEY_CURRENT_USER, m_strPath.c_str());
    UniqueRegKey key;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, m_strPath.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr,
                        ReceiveInto(key), nullptr) != ERROR_SUCCESS)
        throw std::runtime_error("no registry key for the test program");
    if (RegOverridePredefKey(HKEY_LOCAL_MACHINE, key.get()) != ERROR_SUCCESS)
        throw std::runtime_error("HKEY_LOCAL_MACHINE cannot be redirected");
}

MachineRegistry::~MachineRegistry()
{
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    RegDeleteTreeW(HKEY_CURRENT_USER, m_strPath.c_str());
}
} // namespace TestSupport
