#pragma once

#include "shared/OwnerTypes.h"

#include <windows.h>

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace TestSupport
{
// The four places of the Suppress values, in the order in which the agent looks.
inline constexpr const wchar_t* SuppressKeys[] = {
    L"SOFTWARE\\Policies\\Orvik\\Orvik Notifications",
    L"SOFTWARE\\Wow6432Node\\Policies\\Orvik\\Orvik Notifications",
    L"SOFTWARE\\Policies\\Brannock-Vale\\Orvik Notifications",
    L"SOFTWARE\\Wow6432Node\\Policies\\Brannock-Vale\\Orvik Notifications",
};

// Where the logging values of the product are; below it is a key per program, named after its file.
inline constexpr const wchar_t* LoggingKey = L"Software\\Policies\\Orvik\\OrvikNotifications Application";
[[nodiscard]] std::wstring LoggingModuleKey();

// A key under HKEY_LOCAL_MACHINE, empty at first, that exists with what is below it for the life of the object; parents
// that had to be made stay.
class PolicyKey
{
public:
    explicit PolicyKey(const std::wstring& path);
    PolicyKey(const PolicyKey&) = delete;
    PolicyKey& operator=(const PolicyKey&) = delete;
    ~PolicyKey();

    PolicyKey& Text(const wchar_t* name, std::wstring_view text, DWORD type = REG_SZ);
    PolicyKey& Number(const wchar_t* name, DWORD value);
    // Exactly these bytes under exactly that type.
    PolicyKey& Raw(const wchar_t* name, DWORD type, std::span<const unsigned char> bytes);
    PolicyKey& Remove(const wchar_t* name);

    [[nodiscard]] HKEY Handle() const noexcept { return m_hKey.get(); }

private:
    std::wstring m_strPath;
    Orvik::Shared::UniqueRegKey m_hKey;
};

// The bytes of a text; without a terminator unless the text holds one.
[[nodiscard]] std::vector<unsigned char> BytesOf(std::wstring_view text);

// One Suppress value set to "true" in the first place.
class SuppressPolicy
{
public:
    explicit SuppressPolicy(const wchar_t* valueName) : m_key(SuppressKeys[0]) { m_key.Text(valueName, L"true"); }

private:
    PolicyKey m_key;
};
} // namespace TestSupport
