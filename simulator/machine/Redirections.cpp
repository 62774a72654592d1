#include "simulator/machine/Redirections.h"

namespace Simulator
{
Redirections& Redirections::Instance()
{
    static Redirections& redirections = *new Redirections;
    return redirections;
}
} // namespace Simulator
