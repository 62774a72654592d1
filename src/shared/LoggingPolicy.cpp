#include "shared/LoggingPolicy.h"

#include "shared/ModuleName.h"

#include <algorithm>

namespace Orvik::Shared
{
namespace
{
std::wstring ReadText(HKEY key, const wchar_t* valueName, std::size_t capacity)
{
    std::wstring text(capacity, L'\0');
    DWORD type = REG_NONE;
    auto size = static_cast<DWORD>(capacity * sizeof(wchar_t));
    const LSTATUS status =
        RegQueryValueExW(key, valueName, nullptr, &type, reinterpret_cast<BYTE*>(text.data()), &size);
    if (status != ERROR_SUCCESS || type != REG_SZ || size % sizeof(wchar_t) != 0)
        return {};
    text.resize(size / sizeof(wchar_t));
    text.resize(std::min(text.find(L'\0'), text.size()));
    return text;
}

std::optional<DWORD> ReadNumber(HKEY key, const wchar_t* valueName)
{
    DWORD number = 0;
    DWORD type = REG_NONE;
    DWORD size = sizeof(number);
    const LSTATUS status = RegQueryValueExW(key, valueName, nullptr, &type, reinterpret_cast<BYTE*>(&number), &size);
    if (status != ERROR_SUCCESS || type != REG_DWORD || size != sizeof(number))
        return std::nullopt;
    return number;
}
} // namespace

void OpenLoggingPolicyKeys(const std::wstring& productNameOverride, UniqueRegKey& productKey, UniqueRegKey& moduleKey)
{
    productKey.reset();
    moduleKey.reset();
    const std::wstring productName = productNameOverride.empty() ? ProductName() : productNameOverride;
    if (productName.empty())
        return;
    const std::wstring path = L"Software\\Policies\\Orvik\\" + productName;
    RegOpenKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, KEY_READ, ReceiveInto(productKey));
    if (!productKey)
        return;
    // An empty name would open the product's key a second time.
    if (const std::wstring moduleName = ModuleBaseName(); !moduleName.empty())
        RegOpenKeyExW(productKey.get(), moduleName.c_str(), 0, KEY_READ, ReceiveInto(moduleKey));
}

LoggingPolicy::LoggingPolicy()
{
    OpenLoggingPolicyKeys({}, m_hProductKey, m_hModuleKey);
}

std::wstring LoggingPolicy::Text(const wchar_t* valueName, std::size_t capacity) const
{
    for (const UniqueRegKey* key : {&m_hModuleKey, &m_hProductKey})
    {
        if (!*key)
            continue;
        if (std::wstring text = ReadText(key->get(), valueName, capacity); !text.empty())
            return text;
    }
    return {};
}

std::optional<DWORD> LoggingPolicy::Number(const wchar_t* valueName, DWORD minimum) const
{
    for (const UniqueRegKey* key : {&m_hModuleKey, &m_hProductKey})
    {
        if (!*key)
            continue;
        if (const std::optional<DWORD> number = ReadNumber(key->get(), valueName); number && *number >= minimum)
            return number;
    }
    return std::nullopt;
}
} // namespace Orvik::Shared
