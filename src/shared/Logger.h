#pragma once

#include "shared/OrvikLogListener.h"
#include "shared/TimingStatistics.h"

#include <array>
#include <atomic>
#include <cstdarg>
#include <cstddef>
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
    // Filled from the front; the first null ends the list.
    using Listeners = std::array<std::unique_ptr<COrvikLogListener>, 10>;

    // The logger of the process, created on first use with level "Error" and the event listener as defaults.
    // It is never destroyed: threads may log until the very end of the process. The thread's last-error code survives.
    static CLogger& Instance() noexcept;

    // Builds a logger from policy. defaultMask: bits of ListenerKind, used when policy names none; of the two file bits
    // the queued one wins.
    static std::unique_ptr<CLogger> Create(int defaultMinLevel, unsigned defaultMask);

    explicit CLogger(Listeners listeners) noexcept;
    CLogger(const CLogger&) = delete;
    CLogger& operator=(const CLogger&) = delete;

    // One record: level number, qualified function name, wide printf format of the C runtime (null counts as empty).
    // At most 511 characters of message are kept. Never throws; the thread's last-error code survives; a listener that
    // throws loses the record, the others get it. A call that begins after the end of the process does nothing.
    void Log(int level, const char* functionName, const wchar_t* format, ...) noexcept;

    // True when a listener to file takes Diag records: only then is a CElapsedTimer worth making.
    [[nodiscard]] bool IsDiagTimingOn() const noexcept { return m_bDiagTiming; }

    [[nodiscard]] TimingStatistics& Statistics() noexcept { return m_statistics; }

    // For the end of the process: gives queued records about a second to come into the log file; the others are lost.
    void Finish() noexcept;

    // The levels between the overall limits, as g_enabledLevels holds them.
    [[nodiscard]] std::uint32_t EnabledLevels() const noexcept;

private:
    // Capacity of a message in characters, the terminator included.
    static constexpr std::size_t MessageCapacity = 512;
    static_assert(MessageCapacity <= 8096, "a message is formatted on the stack");

    static CLogger& CreateInstance() noexcept;
    static Listeners CreateListeners(int defaultMinLevel, unsigned defaultMask);
    [[nodiscard]] bool Takes(int level) const noexcept;
    void Write(int level, const char* functionName, const wchar_t* format, std::va_list arguments);

    Listeners m_lstListeners;
    std::size_t m_nListeners = 0;
    int m_nMinLevel = Level::Never;
    int m_nMaxLevel = Level::Error;
    bool m_bDiagTiming = false;
    COrvikLogListener* m_pFileListener = nullptr;
    TimingStatistics m_statistics;
};
} // namespace Orvik::Shared
