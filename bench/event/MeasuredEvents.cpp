#include "bench/event/MeasuredEvents.h"

#include "bench/support/Crossings.h"
#include "shared/Logger.h"
#include "simulator/doubles/WmiEventSource.h"
#include "simulator/model/CallPlan.h"
#include "simulator/model/Journal.h"
#include "simulator/toasts/ToastDesktop.h"
#include "usbc/AcpiUsbCMonitor.h"
#include "usbc/UsbCState.h"

#include <windows.h>

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <vector>

using Simulator::WmiEventBatch;
using Simulator::WmiEventSource;

namespace EventBench
{
namespace
{
constexpr int g_eventsPerRound = 25;

double Median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

// The doubles remember every call and every toast.
void ForgetEverything()
{
    Simulator::ToastDesktop::Instance().Reset();
    Simulator::Journal::Instance().Clear();
    Simulator::CallPlan::Instance().Reset();
}

EventCost CostOf(RaiseEvent raise)
{
    ForgetEverything();
    EventClock::Start();
    EventClock::Suspend();
    raise();
    if (!EventClock::IsFinished() || Simulator::ToastDesktop::Instance().VisibleCount() != 1)
        throw std::runtime_error("an event was not followed by one toast");
    return EventClock::Cost();
}

EventCost CheapestOf(int events, RaiseEvent raise)
{
    EventCost cheapest = CostOf(raise);
    for (int i = 1; i < events; ++i)
    {
        const EventCost cost = CostOf(raise);
        if (cost.Ticks() < cheapest.Ticks())
            cheapest = cost;
    }
    return cheapest;
}

EventFigures FiguresOf(const std::vector<EventCost>& rounds)
{
    const auto median = [&rounds](auto figure)
    {
        std::vector<double> values;
        for (const EventCost& cost : rounds)
            values.push_back(static_cast<double>(figure(cost)));
        return Median(std::move(values));
    };
    const auto microseconds = [&median, scale = EventClock::MicrosecondsPerTick()](Place place)
    { return median([place](const EventCost& cost) { return cost.TicksOf(place); }) * scale; };
    const auto ratioTo = [&median](Place place)
    {
        return median(
            [place](const EventCost& cost)
            { return static_cast<double>(cost.TicksOf(Place::Agent)) / static_cast<double>(cost.TicksOf(place)); });
    };
    return {.m_agent = microseconds(Place::Agent),
            .m_doubles = microseconds(Place::Doubles),
            .m_windows = microseconds(Place::Windows),
            .m_ratioToDoubles = ratioTo(Place::Doubles),
            .m_ratioToWindows = ratioTo(Place::Windows),
            .m_calls = median([](const EventCost& cost) { return cost.m_nCalls; }),
            .m_allocations = median([](const EventCost& cost) { return cost.m_nAllocations; })};
}

void RaiseBiosEvent(long id, long data)
{
    const WmiEventBatch batch{.m_strClass = "orvikBEvnt",
                              .m_lstObjects = {{{"EventID", {{"i4", id}}}, {"EventData", {{"i4", data}}}}}};
    for (const HRESULT hr : WmiEventSource::RaiseHere(batch))
    {
        if (FAILED(hr))
            throw std::runtime_error("a delivery failed");
    }
}
} // namespace

void RaiseUsbCEvent()
{
    RaiseBiosEvent(131073, 2);
}

void RaiseSmartAdapterEvent()
{
    RaiseBiosEvent(3, 0);
}

void RaiseAcpiEvent()
{
    ACPIUSBCMonitor(nullptr);
    MSG message{};
    while (PeekMessageW(&message, g_hwndMain, 0, 0, PM_REMOVE))
        DispatchMessageW(&message);
}

MeasuredEvent Measure(RaiseEvent raise, const LogLevels& levels)
{
    std::vector<EventCost> quiet;
    std::vector<EventCost> logged;
    // The first time fills caches: not counted.
    for (int round = -1; round < RoundCount; ++round)
    {
        Orvik::Shared::g_enabledLevels = levels.m_nByDefault;
        const EventCost withoutLog = CheapestOf(g_eventsPerRound, raise);
        Orvik::Shared::g_enabledLevels = levels.m_nAll;
        const EventCost withLog = CheapestOf(g_eventsPerRound, raise);
        if (round < 0)
            continue;
        quiet.push_back(withoutLog);
        logged.push_back(withLog);
    }
    ForgetEverything();
    return {FiguresOf(quiet), FiguresOf(logged)};
}

double CostOfCrossing()
{
    constexpr int slices = 25;
    constexpr int crossings = 1'000;
    std::uint64_t fewest = std::numeric_limits<std::uint64_t>::max();
    for (int slice = 0; slice < slices; ++slice)
    {
        EventClock::Start();
        for (int i = 0; i < crossings; ++i)
            const InWindows empty;
        EventClock::Suspend();
        fewest = std::min(fewest, EventClock::Cost().TicksOf(Place::Agent));
    }
    return static_cast<double>(fewest) * EventClock::MicrosecondsPerTick() / crossings;
}
} // namespace EventBench
