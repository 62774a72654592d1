#pragma once

#include <windows.h>

// The event that ends the wait for the ACPI event device. The monitor thread makes and closes it while the main thread
// may signal it at any time: a lock keeps the signal from reaching a closed handle. Process-wide; it is left to the
// system at process end, whose last moments the monitor thread may still see.
class AcpiStopEvent
{
public:
    constexpr AcpiStopEvent() = default;
    AcpiStopEvent(const AcpiStopEvent&) = delete;
    AcpiStopEvent& operator=(const AcpiStopEvent&) = delete;

    // Monitor thread. Makes the event: auto-reset, not signalled, without name. False, with the last-error code of the
    // system, when there is none.
    bool Create() noexcept;
    // Monitor thread. Without an event nothing happens.
    void Close() noexcept;
    // Monitor thread, to wait on; null when there is none. Close ends it.
    [[nodiscard]] HANDLE Get() const noexcept { return m_hEvent; }

    // Any thread. Without an event nothing happens.
    void Signal() noexcept;

private:
    SRWLOCK m_lock = SRWLOCK_INIT;
    HANDLE m_hEvent = nullptr;
};
