#include "simulator/machine/Redirections.h"
#include "simulator/model/Facts.h"
#include "simulator/model/Journal.h"
#include "simulator/model/LiveObjects.h"

#include <algorithm>

// The agent's long waits pass faster: fact /clock/factor says how many times. Each wait is journalled with the length
// that the agent asked for. Work does not pass faster: a wait that is shortened goes on, as long as it was asked for at
// most, while a reading of the event log is open, so that what is over before the end of the real wait is over before
// the end of the shortened one.
namespace Simulator
{
namespace
{
constexpr DWORD g_dwPollInterval = 10; // ms

DWORD Shortened(const char* function, DWORD milliseconds)
{
    Journal::Instance().Append("clock", function, {{"milliseconds", milliseconds}});
    if (milliseconds == INFINITE)
        return milliseconds;
    const nlohmann::json factor = Facts::Instance().Get("/clock/factor");
    const double divisor = factor.is_number() ? std::max(factor.get<double>(), 1.0) : 1.0;
    return static_cast<DWORD>(milliseconds / divisor);
}

void WaitForReadings(DWORD shortened, DWORD milliseconds)
{
    for (DWORD waited = shortened; waited < milliseconds && LiveObjects::Count("event log") != 0;
         waited += g_dwPollInterval)
        Sleep(g_dwPollInterval);
}

void WINAPI SleepOfMachine(DWORD milliseconds)
{
    const DWORD shortened = Shortened("Sleep", milliseconds);
    Sleep(shortened);
    WaitForReadings(shortened, milliseconds);
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
