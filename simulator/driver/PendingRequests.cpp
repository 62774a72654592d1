#include "simulator/driver/PendingRequests.h"

#include "simulator/driver/Request.h"

namespace Simulator::Devices
{
namespace
{
IRP* RequestOf(LIST_ENTRY* entry)
{
    return CONTAINING_RECORD(entry, IRP, Tail.Overlay.ListEntry);
}
} // namespace

constinit KSPIN_LOCK DeviceLock::s_lock = 0;

void PendingRequests::Initialize()
{
    InitializeListHead(&m_list);
}

NTSTATUS PendingRequests::Add(IRP* irp)
{
    // Which list it is in, for the one who cancels it.
    irp->Tail.Overlay.DriverContext[0] = this;
    InsertTailList(&m_list, &irp->Tail.Overlay.ListEntry);
    IoMarkIrpPending(irp);
    IoSetCancelRoutine(irp, &OnCancel);
    if (!irp->Cancel || IoSetCancelRoutine(irp, nullptr) == nullptr)
        return STATUS_PENDING;
    RemoveEntryList(&irp->Tail.Overlay.ListEntry);
    ++m_nCancelled;
    return STATUS_CANCELLED;
}

IRP* PendingRequests::Take(const FILE_OBJECT* file)
{
    for (LIST_ENTRY* entry = m_list.Flink; entry != &m_list; entry = entry->Flink)
    {
        IRP* const irp = RequestOf(entry);
        if (file != nullptr && IoGetCurrentIrpStackLocation(irp)->FileObject != file)
            continue;
        // One whose cancel routine is about to run belongs to that.
        if (IoSetCancelRoutine(irp, nullptr) == nullptr)
            continue;
        RemoveEntryList(entry);
        return irp;
    }
    return nullptr;
}

ULONG PendingRequests::Count() const
{
    ULONG count = 0;
    for (const LIST_ENTRY* entry = m_list.Flink; entry != &m_list; entry = entry->Flink)
        ++count;
    return count;
}

void PendingRequests::OnCancel(DEVICE_OBJECT*, IRP* irp)
{
    IoReleaseCancelSpinLock(irp->CancelIrql);
    {
        const DeviceLock lock;
        RemoveEntryList(&irp->Tail.Overlay.ListEntry);
        ++static_cast<PendingRequests*>(irp->Tail.Overlay.DriverContext[0])->m_nCancelled;
    }
    Complete(irp, STATUS_CANCELLED);
}

ULONG CompleteAll(PendingRequests& requests, NTSTATUS status, const FILE_OBJECT* file)
{
    for (ULONG count = 0;; ++count)
    {
        IRP* irp = nullptr;
        {
            const DeviceLock lock;
            irp = requests.Take(file);
        }
        if (irp == nullptr)
            return count;
        Complete(irp, status);
    }
}
} // namespace Simulator::Devices
