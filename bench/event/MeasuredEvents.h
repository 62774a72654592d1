#pragma once

#include "bench/event/SimulatedAgent.h"
#include "bench/support/EventClock.h"

#include <cstddef>

namespace EventBench
{
// An event that ends in one toast; raises it on the calling thread and returns when it was handled.
using RaiseEvent = void (*)();

// By WMI, for a thread such as COM makes for incoming calls.
void RaiseUsbCEvent();
void RaiseSmartAdapterEvent();
// By the ACPI event device, whose monitor runs on the calling thread here too; for the main thread.
void RaiseAcpiEvent();

// What one kind of event costs, as medians over the rounds.
struct EventFigures
{
    double m_agent; // microseconds, as the next two
    double m_doubles;
    double m_windows;
    double m_ratioToDoubles; // of the agent's time
    double m_ratioToWindows;
    double m_calls; // that left the agent
    double m_allocations;
};

struct MeasuredEvent
{
    EventFigures m_quiet;  // with the log as it is without a policy
    EventFigures m_logged; // with every record written
};

inline constexpr int RoundCount = 15;

// In each round the event is raised many times with either log, and the one that took the least time as a whole counts,
// so that a neighbour's time slice does not. Raises std::runtime_error when a toast is missing.
[[nodiscard]] MeasuredEvent Measure(RaiseEvent raise, const LogLevels& levels);

// What the clock adds to the agent's share for each call that leaves the agent, in microseconds.
[[nodiscard]] double CostOfCrossing();
} // namespace EventBench
