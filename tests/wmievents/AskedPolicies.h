#pragma once

#include "simulator/redirect/ImportRedirection.h"

#include <windows.h>

#include <string>
#include <vector>

namespace Tests
{
// The names of the registry values that the code under test asks for, in order, while this object lives; one at a time.
class AskedPolicies
{
public:
    AskedPolicies();
    AskedPolicies(const AskedPolicies&) = delete;
    AskedPolicies& operator=(const AskedPolicies&) = delete;
    ~AskedPolicies() = default;

    [[nodiscard]] const std::vector<std::wstring>& Names() const;
    void Clear();

private:
    Simulator::Redirection<decltype(RegQueryValueExW)> m_redirection;
};
} // namespace Tests
