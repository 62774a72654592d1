#pragma once

#include <stdexcept>

namespace Orvik::Shared
{
// A caller broke the contract of this library; what() says how.
class CSharedException : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};
} // namespace Orvik::Shared
