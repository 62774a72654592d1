#pragma once

#include "shared/LogListener.h"
#include "shared/TimingStatistics.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>

namespace Orvik::Shared
{
// Levels that the process-wide logger takes, one bit each for 0 to 30; bit 31 stands for all other numbers. Everything
// passes until the logger exists, nothing once process end has begun. Written by CLogger::Instance and at exit, read by
// every thread.
inline constinit std::atomic<std::uint32_t> g_enabledLevels{~0u};

inline bool IsLevelEnabled(int level) noexcept
{
    const unsigned bit = static_cast<unsigned>(level) < 31u ? static_cast<unsigned>(level) : 31u;
    return (g_enabledLevels.load(std::memory_order_relaxed) >> bit & 1u) != 0;
}

// Fans each record out to the listeners that machine policy chose. Fixed after creation; any thread may log.
class CLogger
{
public:
    // The logger of the process, created on first use with level "Error" and the event listener as defaults.
    // It is never destroyed: threads may log until the very end of the process.
    static CLogger& Instance();

    // Builds a logger from policy. defaultMask: bits of the listener kinds, used when policy names none.
    static std::unique_ptr<CLogger> Create(int defaultMinLevel, unsigned defaultMask);

    CLogger(const CLogger&) = delete;
    CLogger& operator=(const CLogger&) = delete;

    // One record: level number, qualified function name, wide printf format of the C runtime (null counts as empty).
    // At most 511 characters of message are kept. Never throws; the thread's last-error code survives.
    void Log(int level, const char* functionName, const wchar_t* format, ...) noexcept;

    // True when a listener to file takes Diag records: only then is a CElapsedTimer worth making.
    [[nodiscard]] bool IsDiagTimingOn() const noexcept { return m_bDiagTiming; }

    [[nodiscard]] TimingStatistics& Statistics() noexcept { return m_statistics; }

private:
    CLogger() = default;
};
} // namespace Orvik::Shared
