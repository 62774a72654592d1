#pragma once

#include "simulator/driver/KernelHeaders.h"

namespace Simulator::Devices
{
// Ends the request and returns its status. information: bytes of the answer.
NTSTATUS Complete(IRP* irp, NTSTATUS status, ULONG_PTR information = 0);

// A device control request with its one buffer for input and output. The functions that return a status end it, or
// keep it pending.
class ControlRequest
{
public:
    explicit ControlRequest(IRP* irp);

    [[nodiscard]] ULONG Code() const { return m_nCode; }
    [[nodiscard]] IRP* Irp() const { return m_pIrp; }
    [[nodiscard]] ULONG OutputSize() const { return m_nOutputSize; }
    [[nodiscard]] unsigned char* Buffer() const { return m_pBuffer; }

    // The input; null when there is less of it.
    template <class Input>
    [[nodiscard]] const Input* In() const
    {
        return m_nInputSize >= sizeof(Input) ? reinterpret_cast<const Input*>(m_pBuffer) : nullptr;
    }

    NTSTATUS End(NTSTATUS status) const { return Complete(m_pIrp, status); }
    // Answers with size bytes of data; STATUS_BUFFER_TOO_SMALL when there is no room.
    NTSTATUS Answer(const void* data, ULONG size) const;

private:
    IRP* m_pIrp;
    unsigned char* m_pBuffer;
    ULONG m_nCode;
    ULONG m_nInputSize;
    ULONG m_nOutputSize;
};
} // namespace Simulator::Devices
