#include "tests/simulator/doubles/registry/RegisteredServer.h"

#include "simulator/doubles/DoubleClasses.h"

namespace Simulator
{
namespace
{
std::wstring PathBesideProgram(const wchar_t* name)
{
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::wstring program = path;
    return program.substr(0, program.rfind(L'\\') + 1) + name;
}

template <class Function>
void Find(HMODULE module, const char* name, Function& function)
{
    function = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}
} // namespace

RegisteredServer::RegisteredServer() : m_strPath(PathBesideProgram(L"orvik_doubles_server.dll"))
{
    for (const RegistryEntry& entry : RegistryEntries(m_strPath))
    {
        const LSTATUS written = RegSetKeyValueW(
            HKEY_LOCAL_MACHINE, entry.m_strKey.c_str(), entry.m_strName.empty() ? nullptr : entry.m_strName.c_str(),
            REG_SZ, entry.m_strValue.c_str(), static_cast<DWORD>((entry.m_strValue.size() + 1) * sizeof(wchar_t)));
        if (written != ERROR_SUCCESS && m_dwError == 0)
            m_dwError = static_cast<DWORD>(written);
    }
    const HMODULE module = LoadLibraryW(m_strPath.c_str());
    if (module == nullptr && m_dwError == 0)
        m_dwError = GetLastError();
    if (module == nullptr)
        return;
    Find(module, "SetServerFact", m_pfnSetFact);
    Find(module, "CountServerObjects", m_pfnCountObjects);
    Find(module, "DllGetClassObject", m_pfnGetClassObject);
}
} // namespace Simulator
