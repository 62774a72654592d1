#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace Simulator
{
// A number from 0 to most, or a text such as "0xA0". Throws UsageError.
[[nodiscard]] unsigned long ReadNumber(const nlohmann::json& value, const std::string& place,
                                       unsigned long most = 0xFFFFFFFF);
// "0xA0", with so many digits at least.
[[nodiscard]] std::string HexText(unsigned long number, int digits);
} // namespace Simulator
