#include "simulator/console/Number.h"

#include "simulator/console/Failure.h"

#include <cstdio>

namespace Simulator
{
unsigned long ReadNumber(const nlohmann::json& value, const std::string& place, unsigned long most)
{
    std::uint64_t number = most + std::uint64_t{1};
    if (value.is_number_unsigned())
        number = value.get<std::uint64_t>();
    else if (value.is_string())
    {
        const std::string text = value;
        char* end = nullptr;
        const std::uint64_t read = std::strtoull(text.c_str(), &end, 0);
        if (!text.empty() && text[0] != '-' && *end == '\0')
            number = read;
    }
    if (number > most)
        throw UsageError(place + ": " + value.dump() + " is not a number from 0 to " + std::to_string(most));
    return static_cast<unsigned long>(number);
}

std::string HexText(unsigned long number, int digits)
{
    char text[16] = {};
    (void)std::snprintf(text, sizeof(text), "0x%0*lX", digits, number);
    return text;
}
} // namespace Simulator
