#pragma once

#include "shared/OwnerTypes.h"
#include "simulator/driver/DeviceControl.h"

#include <windows.h>

#include <winioctl.h>

#include <chrono>

namespace Simulator
{
// Lets things happen to the simulated devices, through the driver's control device. The members that return a DWORD
// give a Windows error code; DeviceControl.h says what the requests do. One thread per object.
class DeviceDriver
{
public:
    using Milliseconds = std::chrono::milliseconds;

    // Opens the control device; GetLastError tells why that failed.
    DeviceDriver();

    // Whether the driver is there.
    explicit operator bool() const noexcept { return m_hDevice != nullptr; }

    [[nodiscard]] DWORD Reset();
    [[nodiscard]] Devices::Counters Count();

    // The ACPI event device. An answer has one byte, or none.
    [[nodiscard]] DWORD CompleteRequest(BYTE data);
    [[nodiscard]] DWORD CompleteRequestWithoutData();
    [[nodiscard]] DWORD FailRequest(LONG status);
    [[nodiscard]] DWORD RefuseRequests(LONG status);
    [[nodiscard]] DWORD SetAcpiPresent(bool present);
    // WAIT_TIMEOUT when none is pending by then.
    [[nodiscard]] DWORD WaitForRequest(Milliseconds limit);

    // The USB hub.
    [[nodiscard]] DWORD PlugDevice(ULONG port, ULONG deviceClass);
    [[nodiscard]] DWORD UnplugDevice(ULONG port);
    [[nodiscard]] DWORD SetPortAnswers(const Devices::PortAnswers& answers);
    [[nodiscard]] DWORD SetReportedPorts(ULONG count);

    // The probe device arrives and goes.
    [[nodiscard]] DWORD ProbeArrivals();

private:
    // Waits until the request has ended, and takes it back when that takes too long.
    DWORD Send(DWORD code, void* input, DWORD inputSize, void* output = nullptr, DWORD outputSize = 0,
               Milliseconds limit = Milliseconds(30'000));

    template <class Input>
    DWORD SendInput(DWORD code, Input input)
    {
        return Send(code, &input, sizeof(input));
    }

    Orvik::Shared::UniqueHandle m_hDevice;
    Orvik::Shared::UniqueHandle m_hEnded;
};
} // namespace Simulator
