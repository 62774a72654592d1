#pragma once

#include "shared/OwnerTypes.h"

#include <cstddef>
#include <optional>
#include <string>

namespace Orvik::Shared
{
// Opens, for reading, the two keys under HKEY_LOCAL_MACHINE that hold the logging policy: the product's key, named
// after the override or else after the product name in the program's version resource, and below it the key named after
// the program's file. A key that does not exist stays null; what the two held before is closed.
void OpenLoggingPolicyKeys(const std::wstring& productNameOverride, UniqueRegKey& productKey, UniqueRegKey& moduleKey);

// The logging policy of this machine for this program. Missing keys and unreadable values are no failure.
class LoggingPolicy
{
public:
    LoggingPolicy();

    // A REG_SZ value, from the module's key or else from the product's. Empty when neither gives text: the value is
    // missing, empty, of another type, of odd byte length, or its data is longer than capacity characters, a stored
    // terminator included. A missing terminator is tolerated.
    [[nodiscard]] std::wstring Text(const wchar_t* valueName, std::size_t capacity) const;

    // A REG_DWORD value, from the module's key or else from the product's. A number below the minimum counts as
    // missing.
    [[nodiscard]] std::optional<DWORD> Number(const wchar_t* valueName, DWORD minimum = 0) const;

private:
    UniqueRegKey m_hProductKey;
    UniqueRegKey m_hModuleKey;
};
} // namespace Orvik::Shared
