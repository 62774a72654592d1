#pragma once

#include <windows.h>

namespace Orvik::Shared
{
// Names one registry value and reads it. Not for concurrent use of one object.
class COrvikReg
{
public:
    COrvikReg() = default;
    // Names longer than 259 characters are cut. With validate, a null name raises CSharedException; without, it counts
    // as empty.
    COrvikReg(HKEY root, const wchar_t* subKey, const wchar_t* valueName, bool validate);
    virtual ~COrvikReg() = default;

    // Flags or-ed into the access mask when the key is opened, such as KEY_WOW64_64KEY; 0 at first.
    void SetExtraFlags(DWORD extraFlags) noexcept { m_dwExtraFlags = extraFlags; }

    // Reads the value. *length: bytes of room, then bytes of data; a null buffer asks for the size only. Returns a
    // Win32 error code, ERROR_BAD_ARGUMENTS when length is null or a buffer has no room.
    [[nodiscard]] LSTATUS GetValue(DWORD* length, void* buffer) const;

    // Opens, queries and closes. type, buffer and length may be null; a buffer needs a length. Returns a Win32 error
    // code, ERROR_BAD_ARGUMENTS for a buffer without a length and for a null root or sub-key.
    [[nodiscard]] static LSTATUS ReadValue(HKEY root, const wchar_t* subKey, const wchar_t* valueName, DWORD* type,
                                           void* buffer, DWORD* length, DWORD extraFlags);

private:
    static constexpr size_t NameCapacity = 260;

    static void CopyName(wchar_t (&target)[NameCapacity], const wchar_t* source) noexcept;

    wchar_t m_szValueName[NameCapacity]{};
    wchar_t m_szSubKey[NameCapacity]{};
    HKEY m_hRoot = nullptr;
    DWORD m_dwExtraFlags = 0;
};
} // namespace Orvik::Shared
