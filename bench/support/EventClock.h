#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace EventBench
{
// Whose code runs while an event is handled.
enum class Place
{
    Agent,
    Doubles, // objects of the simulated machine and the functions that it redirects
    Windows  // everything else that the agent calls through an import or an object
};
inline constexpr std::size_t PlaceCount = 3;

struct EventCost
{
    std::array<std::uint64_t, PlaceCount> m_lstTicks{}; // by Place
    std::size_t m_nCalls = 0;                           // that left the agent
    std::size_t m_nAllocations = 0;                     // calls of operator new by the agent itself

    [[nodiscard]] std::uint64_t TicksOf(Place place) const { return m_lstTicks[static_cast<std::size_t>(place)]; }
    [[nodiscard]] std::uint64_t Ticks() const { return m_lstTicks[0] + m_lstTicks[1] + m_lstTicks[2]; }
};

// Splits the time of one event between the places. It counts for the thread that started it; what other threads do is
// not seen. Whatever is not wrapped in a Crossing counts as the agent's, the clock's own reading included. The unit is
// the processor's time-stamp counter: asking Windows for the time costs more here than most of what is measured.
class EventClock
{
public:
    // The agent has the event.
    static void Start();
    // For the time from here to Resume the event is on its way from one thread of the agent to the other.
    static void Suspend();
    static void Resume();
    // The toast is about to be shown: nothing counts any more.
    static void Finish();

    [[nodiscard]] static bool IsFinished();
    // Of the last event that was started.
    [[nodiscard]] static const EventCost& Cost();

    // How long a tick is, by what has passed since the program began.
    [[nodiscard]] static double MicrosecondsPerTick();
};

// For its life the code of another place runs. Only the outermost one of a thread counts.
class Crossing
{
public:
    explicit Crossing(Place place);
    Crossing(const Crossing&) = delete;
    Crossing& operator=(const Crossing&) = delete;
    ~Crossing();

private:
    Place m_place;
    bool m_bSeen;
};
} // namespace EventBench
