#include "tests/support/PolicyKey.h"

#include "shared/ModuleName.h"

#include <stdexcept>

using Orvik::Shared::ReceiveInto;

namespace TestSupport
{
namespace
{
void Check(LSTATUS status)
{
    if (status != ERROR_SUCCESS)
        throw std::runtime_error("the test's registry refused with " + std::to_string(status));
}
} // namespace

std::wstring LoggingModuleKey()
{
    return LoggingKey + (L"\\" + Orvik::Shared::ModuleBaseName());
}

PolicyKey::PolicyKey(const std::wstring& path) : m_strPath(path)
{
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, path.c_str());
    Check(RegCreateKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr,
                          ReceiveInto(m_hKey), nullptr));
}

PolicyKey::~PolicyKey()
{
    m_hKey.reset();
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, m_strPath.c_str());
}

PolicyKey& PolicyKey::Text(const wchar_t* name, std::wstring_view text, DWORD type)
{
    std::wstring terminated(text);
    terminated.push_back(L'\0');
    return Raw(name, type, BytesOf(terminated));
}

PolicyKey& PolicyKey::Number(const wchar_t* name, DWORD value)
{
    return Raw(name, REG_DWORD, {reinterpret_cast<const unsigned char*>(&value), sizeof(value)});
}

PolicyKey& PolicyKey::Raw(const wchar_t* name, DWORD type, std::span<const unsigned char> bytes)
{
    // The system lengthens a text without terminator when zeros happen to follow it in memory.
    std::vector<unsigned char> guarded(bytes.begin(), bytes.end());
    guarded.insert(guarded.end(), {0xFF, 0xFF});
    Check(RegSetValueExW(m_hKey.get(), name, 0, type, guarded.data(), static_cast<DWORD>(bytes.size())));
    return *this;
}

PolicyKey& PolicyKey::Remove(const wchar_t* name)
{
    Check(RegDeleteValueW(m_hKey.get(), name));
    return *this;
}

std::vector<unsigned char> BytesOf(std::wstring_view text)
{
    const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
    return {bytes, bytes + text.size() * sizeof(wchar_t)};
}
} // namespace TestSupport
