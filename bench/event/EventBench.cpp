#include "bench/event/MeasuredEvents.h"
#include "bench/event/SimulatedAgent.h"
#include "bench/support/Bench.h"

#include <cstdio>
#include <exception>
#include <future>
#include <string>

namespace
{
using namespace EventBench;
using Bench::NoLimit;

// Of the quiet log. Several times what is measured: the agent's work is to vanish beside what it waits for.
constexpr double g_limit = 0.15;

void AddFigures(Bench::Comparison& comparison, const std::string& event, const EventFigures& figures, double limit)
{
    comparison.Number(event + ": agent, us", figures.m_agent, NoLimit);
    comparison.Number(event + ": doubles, us", figures.m_doubles, NoLimit);
    comparison.Number(event + ": Windows, us", figures.m_windows, NoLimit);
    comparison.Number(event + ": agent / doubles", figures.m_ratioToDoubles, limit);
    comparison.Number(event + ": agent / Windows", figures.m_ratioToWindows, NoLimit);
    comparison.Number(event + ": calls that leave the agent", figures.m_calls, NoLimit);
    comparison.Number(event + ": allocations of the agent", figures.m_allocations, NoLimit);
}

void AddEvent(Bench::Comparison& comparison, const std::string& event, const MeasuredEvent& measured)
{
    AddFigures(comparison, event, measured.m_quiet, g_limit);
    AddFigures(comparison, event + ", all logged", measured.m_logged, NoLimit);
}
} // namespace

int main(int argc, char** argv)
try
{
    const SimulatedAgent agent;
    const LogLevels levels = agent.Levels();
    // WMI delivers on threads of its own, which belong to the process's multithreaded apartment.
    const auto onWmisThread = [&levels](RaiseEvent raise)
    { return std::async(std::launch::async, [&levels, raise] { return Measure(raise, levels); }).get(); };
    const MeasuredEvent usbC = onWmisThread(&RaiseUsbCEvent);
    const MeasuredEvent smartAdapter = onWmisThread(&RaiseSmartAdapterEvent);
    const MeasuredEvent acpi = Measure(&RaiseAcpiEvent, levels);

    Bench::Comparison comparison("Event to toast, from Indicate or the completed request to Show");
    AddEvent(comparison, "USB-C by WMI", usbC);
    AddEvent(comparison, "smart adapter", smartAdapter);
    AddEvent(comparison, "USB-C by ACPI", acpi);
    comparison.Number("in the agent's time: the clock, us for each call", CostOfCrossing(), NoLimit);
    return comparison.Run(argc > 1 ? argv[1] : "build/bench/event.json");
}
catch (const std::exception& exception)
{
    std::printf("event: %s\n", exception.what());
    return 1;
}
