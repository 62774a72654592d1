#pragma once

#include <chrono>
#include <filesystem>

namespace Simulator
{
inline constexpr std::chrono::milliseconds ProcessLimit{60'000};

// What the command line decides for all scenarios.
struct Options
{
    std::filesystem::path m_agent;
    std::filesystem::path m_machine;
    std::filesystem::path m_pictures; // empty: picture steps are skipped and say so
    std::filesystem::path m_out;      // store of the event log, facts file, journal of each scenario
    bool m_bLog = false;              // every log record is shown in the timeline
    // How long a step waits for what must happen; start and end of a process may take longer.
    std::chrono::milliseconds m_limit{30'000};
};
} // namespace Simulator
