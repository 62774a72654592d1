#pragma once

#include "simulator/driver/DeviceControl.h"
#include "simulator/driver/KernelHeaders.h"

namespace Simulator::Devices
{
// Events that nobody has asked for yet, oldest first. For the holder of the lock.
class AcpiQueue
{
public:
    // False when it is full.
    bool Put(const AcpiEvent& event)
    {
        if (m_nCount == MostQueuedEvents)
            return false;
        m_events[(m_nFirst + m_nCount) % MostQueuedEvents] = event;
        ++m_nCount;
        return true;
    }

    // False when it is empty.
    bool Take(AcpiEvent& event)
    {
        if (m_nCount == 0)
            return false;
        event = m_events[m_nFirst];
        m_nFirst = (m_nFirst + 1) % MostQueuedEvents;
        --m_nCount;
        return true;
    }

    void Clear() { m_nCount = 0; }
    [[nodiscard]] ULONG Count() const { return m_nCount; }

private:
    AcpiEvent m_events[MostQueuedEvents]{};
    ULONG m_nFirst = 0;
    ULONG m_nCount = 0;
};
} // namespace Simulator::Devices
