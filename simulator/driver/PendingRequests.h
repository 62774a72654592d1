#pragma once

#include "simulator/driver/KernelHeaders.h"

namespace Simulator::Devices
{
// The lock of all devices, for the life of the object. No request is ended and no function of the system that may wait
// is called under it.
class DeviceLock
{
public:
    static void Initialize() { KeInitializeSpinLock(&s_lock); }

    DeviceLock() { KeAcquireSpinLock(&s_lock, &m_nBefore); }
    DeviceLock(const DeviceLock&) = delete;
    DeviceLock& operator=(const DeviceLock&) = delete;
    ~DeviceLock() { KeReleaseSpinLock(&s_lock, m_nBefore); }

private:
    static KSPIN_LOCK s_lock;
    KIRQL m_nBefore;
};

// Requests that wait, oldest first. Every member is for the holder of the lock. A request that its client cancels
// leaves the list by itself and is counted.
class PendingRequests
{
public:
    void Initialize();

    // STATUS_PENDING: the request waits. STATUS_CANCELLED: its client has taken it back already, and it is the
    // caller's.
    NTSTATUS Add(IRP* irp);
    // Takes the oldest request out, of one open file only when that is given; null when there is none. It is the
    // caller's from then on.
    IRP* Take(const FILE_OBJECT* file = nullptr);
    [[nodiscard]] ULONG Count() const;

    ULONG m_nCancelled = 0;

private:
    static void NTAPI OnCancel(DEVICE_OBJECT* device, IRP* irp);

    LIST_ENTRY m_list{};
};

// Ends every request of the list, or of one open file, with that status, and returns how many they were. Takes the
// lock itself.
ULONG CompleteAll(PendingRequests& requests, NTSTATUS status, const FILE_OBJECT* file = nullptr);
} // namespace Simulator::Devices
