#include "shared/OrvikReg.h"

#include "shared/OwnerTypes.h"
#include "shared/SharedException.h"

#include <algorithm>
#include <cwchar>

namespace Orvik::Shared
{
COrvikReg::COrvikReg(HKEY root, const wchar_t* subKey, const wchar_t* valueName, bool validate) : m_hRoot(root)
{
    if (validate && subKey == nullptr)
        throw CSharedException("Invalid parameter value. lpszSubKey is a nullptr.");
    if (validate && valueName == nullptr)
        throw CSharedException("Invalid parameter value. lpszValueName is a nullptr.");
    CopyName(m_szSubKey, subKey);
    CopyName(m_szValueName, valueName);
}

void COrvikReg::CopyName(wchar_t (&target)[NameCapacity], const wchar_t* source) noexcept
{
    if (source != nullptr)
        std::copy_n(source, wcsnlen(source, NameCapacity - 1), target);
}

LSTATUS COrvikReg::GetValue(DWORD* length, void* buffer) const
{
    if (length == nullptr || (buffer != nullptr && *length == 0))
        return ERROR_BAD_ARGUMENTS;
    return ReadValue(m_hRoot, m_szSubKey, m_szValueName, nullptr, buffer, length, m_dwExtraFlags);
}

LSTATUS COrvikReg::ReadValue(HKEY root, const wchar_t* subKey, const wchar_t* valueName, DWORD* type, void* buffer,
                             DWORD* length, DWORD extraFlags)
{
    if ((buffer != nullptr && length == nullptr) || root == nullptr || subKey == nullptr)
        return ERROR_BAD_ARGUMENTS;
    UniqueRegKey key;
    const LSTATUS opened = RegOpenKeyExW(root, subKey, 0, KEY_READ | extraFlags, ReceiveInto(key));
    if (opened != ERROR_SUCCESS)
        return opened;
    return RegQueryValueExW(key.get(), valueName, nullptr, type, static_cast<BYTE*>(buffer), length);
}
} // namespace Orvik::Shared
