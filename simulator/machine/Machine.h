#pragma once

#include "simulator/machine/Protocol.h"

namespace Simulator
{
// Turns the process into the simulated machine: facts and control channel from the environment, redirections of the
// program, unsecured apartment. To be called once, before the program's own code runs. Refuses a machine that was not
// prepared.
[[nodiscard]] Protocol::StartResult StartMachine();
} // namespace Simulator
