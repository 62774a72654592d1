#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace Simulator
{
// One registry value that a scenario sets or removes, of any type, also one that does not fit its data: a text without
// terminator, an odd length, a number of three bytes.
struct RegistryValue
{
    std::wstring m_strKey; // below HKEY_LOCAL_MACHINE
    std::wstring m_strName;
    unsigned long m_dwType = 0;
    std::vector<unsigned char> m_lstData;
    bool m_bRemove = false;    // the value goes
    bool m_bRemoveKey = false; // the key goes with all below it
    bool m_bKeyOnly = false;   // the key is made and no value
};

// {"key": "SOFTWARE\\...", "name": "...", "data": text | number | [bytes] | null, "type": "REG_SZ" ...}.
// Without a type, texts are REG_SZ and numbers REG_DWORD; bytes are stored as they are under any type. Data null
// removes the value; {"key", "remove": true} removes the key; {"key"} alone makes it. Throws UsageError.
[[nodiscard]] RegistryValue ReadRegistryValue(const nlohmann::json& object, const std::string& place);

// A list of them.
[[nodiscard]] std::vector<RegistryValue> ReadRegistryValues(const nlohmann::json& list, const std::string& place);
// {"SuppressAllNotifications": "true"}: values of the agent's policy key in its first location.
[[nodiscard]] std::vector<RegistryValue> ReadPolicyValues(const nlohmann::json& values, const std::string& place);
// The same for the policy of the agent's logger: {"LoggingType": "EVENT"}.
[[nodiscard]] std::vector<RegistryValue> ReadLoggingValues(const nlohmann::json& values, const std::string& place);

// Writes or removes it. Throws StepFailure.
void Apply(const RegistryValue& value);
} // namespace Simulator
