#pragma once

#include "simulator/driver/DeviceControl.h"
#include "simulator/driver/KernelHeaders.h"

namespace Simulator::Devices
{
// What the hub says of one port. For the holder of the lock.
class UsbPort
{
public:
    void MakeEmpty(ULONG port);
    void Connect(ULONG port, ULONG deviceClass);
    void Set(const PortAnswers& answers) { m_answers = answers; }

    // The answers to the hub's requests; each fills the structure in, or returns how the request fails.
    NTSTATUS Describe(USB_NODE_CONNECTION_INFORMATION_EX& information) const;
    // The name with its terminating zero. A request that asks for the length counts like one for the name.
    NTSTATUS DriverKey(const wchar_t*& name, ULONG& characters, ULONG& declaredBytes);

private:
    PortAnswers m_answers{};
};
} // namespace Simulator::Devices
