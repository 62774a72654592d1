#pragma once

#include <windows.h>

#include <string>

namespace Simulator
{
// The DLL of doubles beside the test program, entered into this machine's registry as its owner says.
class RegisteredServer
{
public:
    // Writes the entries and loads the DLL.
    RegisteredServer();

    // LSTATUS of the first entry that could not be written, or why the DLL could not be loaded; 0 when all is well.
    [[nodiscard]] DWORD Error() const noexcept { return m_dwError; }
    [[nodiscard]] const std::wstring& Path() const noexcept { return m_strPath; }

    void SetFact(const char* pointer, const char* json) const { m_pfnSetFact(pointer, json); }
    // The class factory of one of the DLL's classes, past COM.
    [[nodiscard]] HRESULT ClassObject(REFCLSID classId, REFIID iid, void** object) const
    {
        return m_pfnGetClassObject(classId, iid, object);
    }
    [[nodiscard]] long ObjectCount() const { return m_pfnCountObjects(); }

private:
    std::wstring m_strPath;
    DWORD m_dwError = 0;
    void(WINAPI* m_pfnSetFact)(const char*, const char*) = nullptr;
    long(WINAPI* m_pfnCountObjects)() = nullptr;
    HRESULT(WINAPI* m_pfnGetClassObject)(REFCLSID, REFIID, void**) = nullptr;
};
} // namespace Simulator
