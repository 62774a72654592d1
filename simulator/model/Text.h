#pragma once

#include <string>
#include <string_view>

namespace Simulator
{
// UTF-16 and UTF-8, each way; what is not valid becomes U+FFFD, so that any text of the product can be journalled.
[[nodiscard]] std::string Narrow(std::wstring_view text);
[[nodiscard]] std::wstring Wide(std::string_view text);
} // namespace Simulator
