#include "simulator/console/Failure.h"

#include <system_error>

namespace Simulator
{
std::string WindowsFailure(const char* function, unsigned long code)
{
    return std::string(function) + " failed: " + std::system_category().message(static_cast<int>(code)) + " (" +
           std::to_string(code) + ")";
}
} // namespace Simulator
