#pragma once

#include "simulator/console/Options.h"

namespace Simulator
{
// Starts the agent and carries out what is typed on the standard input, line by line, until "quit" or the end of the
// input. False when the agent did not end as it should.
[[nodiscard]] bool RunInteractive(Options options);
} // namespace Simulator
