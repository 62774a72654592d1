#include "simulator/driver/Request.h"

namespace Simulator::Devices
{
NTSTATUS Complete(IRP* irp, NTSTATUS status, ULONG_PTR information)
{
    irp->IoStatus.Status = status;
    irp->IoStatus.Information = information;
    IoCompleteRequest(irp, IO_NO_INCREMENT);
    return status;
}

ControlRequest::ControlRequest(IRP* irp)
    : m_pIrp(irp), m_pBuffer(static_cast<unsigned char*>(irp->AssociatedIrp.SystemBuffer))
{
    const auto& parameters = IoGetCurrentIrpStackLocation(irp)->Parameters.DeviceIoControl;
    m_nCode = parameters.IoControlCode;
    m_nInputSize = m_pBuffer != nullptr ? parameters.InputBufferLength : 0;
    m_nOutputSize = m_pBuffer != nullptr ? parameters.OutputBufferLength : 0;
}

NTSTATUS ControlRequest::Answer(const void* data, ULONG size) const
{
    if (m_nOutputSize < size)
        return End(STATUS_BUFFER_TOO_SMALL);
    RtlCopyMemory(m_pBuffer, data, size);
    return Complete(m_pIrp, STATUS_SUCCESS, size);
}
} // namespace Simulator::Devices
