#pragma once

#include <windows.h>

#include <hstring.h>

#include <string_view>

namespace WindowsRuntime
{
// The activation factory of a Windows Runtime class. combase.dll, which Windows 7 does not have, is looked up on each
// call; where it or a function of it is missing the result is the look-up's own error. The caller's thread must be in
// an apartment. On failure *factory is null.
[[nodiscard]] HRESULT GetActivationFactory(std::wstring_view className, REFIID iid, void** factory);

// Owns one string of the Windows Runtime. Belongs to one thread.
class RuntimeString
{
public:
    RuntimeString() = default;
    RuntimeString(const RuntimeString&) = delete;
    RuntimeString& operator=(const RuntimeString&) = delete;
    ~RuntimeString();

    // Once per object; the text may hold null characters, and an empty one gives the null string. Fails with the
    // look-up's error on systems without the Windows Runtime.
    [[nodiscard]] HRESULT Create(std::wstring_view text);
    [[nodiscard]] HSTRING Get() const noexcept { return m_hString; }

private:
    HSTRING m_hString = nullptr;
    HRESULT(WINAPI* m_pfnWindowsDeleteString)(HSTRING) = nullptr; // set whenever m_hString is
};
} // namespace WindowsRuntime
