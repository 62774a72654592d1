#pragma once

#include <stdexcept>
#include <string>

namespace Simulator
{
// The scenario or the command line cannot be understood, or the machine is not prepared: nothing was run.
class UsageError : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

// Something did not happen as the scenario says.
class StepFailure : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

// "CreateProcessW failed: The system cannot find the file specified. (2)"
[[nodiscard]] std::string WindowsFailure(const char* function, unsigned long code);
} // namespace Simulator
