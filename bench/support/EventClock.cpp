#include "bench/support/EventClock.h"

#include "bench/support/AllocationCount.h"

#include <windows.h>

#include <x86intrin.h>

namespace EventBench
{
namespace
{
struct State
{
    bool m_bRunning = false;
    bool m_bFinished = false;
    DWORD m_dwThreadId = 0;
    unsigned m_nDepth = 0;
    std::uint64_t m_nSince = 0;
    std::size_t m_nAllocationsBefore = 0;
    EventCost m_cost;
};

constinit State g_state;

struct Origin
{
    Origin() { QueryPerformanceCounter(&m_counter); }

    std::uint64_t m_nTicks = __rdtsc();
    LARGE_INTEGER m_counter{};
};
const Origin g_origin;

// Charges what has passed since the last call.
void Charge(Place place)
{
    const std::uint64_t now = __rdtsc();
    g_state.m_cost.m_lstTicks[static_cast<std::size_t>(place)] += now - g_state.m_nSince;
    const std::size_t allocations = Bench::AllocationCount();
    if (place == Place::Agent)
        g_state.m_cost.m_nAllocations += allocations - g_state.m_nAllocationsBefore;
    g_state.m_nAllocationsBefore = allocations;
    g_state.m_nSince = now;
}

bool IsMine()
{
    return g_state.m_bRunning && g_state.m_dwThreadId == GetCurrentThreadId();
}
} // namespace

void EventClock::Start()
{
    g_state = State{};
    Resume();
}

void EventClock::Suspend()
{
    if (!IsMine())
        return;
    Charge(Place::Agent);
    g_state.m_bRunning = false;
}

void EventClock::Resume()
{
    g_state.m_dwThreadId = GetCurrentThreadId();
    g_state.m_nAllocationsBefore = Bench::AllocationCount();
    g_state.m_bRunning = true;
    g_state.m_nSince = __rdtsc();
}

void EventClock::Finish()
{
    Suspend();
    g_state.m_bFinished = true;
}

bool EventClock::IsFinished()
{
    return g_state.m_bFinished;
}

const EventCost& EventClock::Cost()
{
    return g_state.m_cost;
}

double EventClock::MicrosecondsPerTick()
{
    LARGE_INTEGER frequency{};
    LARGE_INTEGER now{};
    QueryPerformanceFrequency(&frequency);
    QueryPerformanceCounter(&now);
    const auto ticks = static_cast<double>(__rdtsc() - g_origin.m_nTicks);
    const auto counted = static_cast<double>(now.QuadPart - g_origin.m_counter.QuadPart);
    return counted * 1e6 / static_cast<double>(frequency.QuadPart) / ticks;
}

Crossing::Crossing(Place place) : m_place(place), m_bSeen(IsMine())
{
    if (m_bSeen && g_state.m_nDepth++ == 0)
        Charge(Place::Agent);
}

Crossing::~Crossing()
{
    if (!m_bSeen || --g_state.m_nDepth != 0)
        return;
    Charge(m_place);
    ++g_state.m_cost.m_nCalls;
}
} // namespace EventBench
