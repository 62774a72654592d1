#include "usbc/AcpiStopEvent.h"

#include "shared/OwnerTypes.h"

#include <utility>

namespace
{
class ExclusiveLock
{
public:
    explicit ExclusiveLock(SRWLOCK& lock) noexcept : m_lock(lock) { AcquireSRWLockExclusive(&m_lock); }
    ExclusiveLock(const ExclusiveLock&) = delete;
    ExclusiveLock& operator=(const ExclusiveLock&) = delete;
    ~ExclusiveLock() { ReleaseSRWLockExclusive(&m_lock); }

private:
    SRWLOCK& m_lock;
};
} // namespace

bool AcpiStopEvent::Create() noexcept
{
    Orvik::Shared::UniqueHandle event(CreateEventW(nullptr, FALSE, FALSE, nullptr));
    if (!event)
        return false;
    const ExclusiveLock lock(m_lock);
    // An older event would be one that a monitor left behind: it is closed, under the lock too.
    const Orvik::Shared::UniqueHandle older(std::exchange(m_hEvent, event.release()));
    return true;
}

void AcpiStopEvent::Close() noexcept
{
    const ExclusiveLock lock(m_lock);
    const Orvik::Shared::UniqueHandle closed(std::exchange(m_hEvent, nullptr));
}

void AcpiStopEvent::Signal() noexcept
{
    const ExclusiveLock lock(m_lock);
    if (m_hEvent != nullptr)
        SetEvent(m_hEvent);
}
