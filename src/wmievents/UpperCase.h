#pragma once

#include <string>

namespace Notifications::OrvikWmiEvents
{
// The text in upper case by the rules of no particular language, letter for letter.
[[nodiscard]] std::wstring UpperCase(std::wstring text);
} // namespace Notifications::OrvikWmiEvents
