#pragma once

#include <string>

namespace TestSupport
{
// For the life of the object HKEY_LOCAL_MACHINE of this process is an empty key of its own, so that test programs that
// run at the same time write policies without seeing each other's. Classes (HKEY_CLASSES_ROOT, CoCreateInstance) go on
// coming from the real registry. The key is volatile and removed at the end.
class MachineRegistry
{
public:
    // Raises std::runtime_error when the system refuses.
    MachineRegistry();
    MachineRegistry(const MachineRegistry&) = delete;
    MachineRegistry& operator=(const MachineRegistry&) = delete;
    ~MachineRegistry();

private:
    std::wstring m_strPath;
};
} // namespace TestSupport
