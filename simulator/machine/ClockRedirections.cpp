#include "simulator/machine/Redirections.h"
#include "simulator/model/Facts.h"
#include "simulator/model/Journal.h"

#include <algorithm>

// The agent's long waits pass faster: fact /clock/factor says how many times. Each wait is journalled with the length
// that the agent asked for.
namespace Simulator
{
namespace
{
DWORD Shortened(const char* function, DWORD milliseconds)
{
    Journal::Instance().Append("clock", function, {{"milliseconds", milliseconds}});
    if (milliseconds == INFINITE)
        return milliseconds;
    const nlohmann::json factor = Facts::Instance().Get("/clock/factor");
    const double divisor = factor.is_number() ? std::max(factor.get<double>(), 1.0) : 1.0;
    return static_cast<DWORD>(milliseconds / divisor);
}

void WINAPI SleepOfMachine(DWORD milliseconds)
{
    Sleep(Shortened("Sleep", milliseconds));
}

DWORD WINAPI SleepExOfMachine(DWORD milliseconds, BOOL alertable)
{
    return SleepEx(Shortened("SleepEx", milliseconds), alertable);
}
} // namespace

void RedirectClockFunctions(Redirections& redirections)
{
    redirections.Add("Sleep", &SleepOfMachine);
    redirections.Add("SleepEx", &SleepExOfMachine);
}
} // namespace Simulator
