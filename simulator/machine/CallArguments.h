#pragma once

#include "simulator/doubles/JournalText.h"

#include <windows.h>

#include <nlohmann/json.hpp>
#include <type_traits>

namespace Simulator
{
// Adds one argument of a call to its journal entry: texts, numbers and GUIDs; pointers to anything else say nothing.
template <class Argument>
void AddArgument(nlohmann::json& arguments, const Argument& argument)
{
    if constexpr (std::is_same_v<Argument, const wchar_t*>)
    {
        // A small number in place of a text is a resource id or a window class atom.
        const auto number = reinterpret_cast<ULONG_PTR>(argument);
        if (number > 0xFFFF)
            arguments.push_back(Narrow(argument));
        else
            arguments.push_back(number);
    }
    else if constexpr (std::is_same_v<Argument, GUID>)
        arguments.push_back(GuidText(argument));
    else if constexpr (std::is_integral_v<Argument>)
        arguments.push_back(argument);
}

template <class... Args>
nlohmann::json DescribeArguments(const Args&... args)
{
    nlohmann::json arguments = nlohmann::json::array();
    (AddArgument(arguments, args), ...);
    return nlohmann::json{{"arguments", std::move(arguments)}};
}
} // namespace Simulator
