#include "simulator/devices/DeviceDriver.h"

namespace Simulator
{
using namespace Devices;

DeviceDriver::DeviceDriver() : m_hEnded(CreateEventW(nullptr, TRUE, FALSE, nullptr))
{
    const HANDLE device =
        CreateFileW(ControlDevicePath, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                    OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr);
    if (device != INVALID_HANDLE_VALUE)
        m_hDevice.reset(device);
}

DWORD DeviceDriver::Send(DWORD code, void* input, DWORD inputSize, void* output, DWORD outputSize, Milliseconds limit)
{
    OVERLAPPED overlapped{};
    overlapped.hEvent = m_hEnded.get();
    if (DeviceIoControl(m_hDevice.get(), code, input, inputSize, output, outputSize, nullptr, &overlapped) != FALSE)
        return ERROR_SUCCESS;
    if (const DWORD error = GetLastError(); error != ERROR_IO_PENDING)
        return error;
    const bool isLate = WaitForSingleObject(m_hEnded.get(), static_cast<DWORD>(limit.count())) != WAIT_OBJECT_0;
    if (isLate)
        CancelIoEx(m_hDevice.get(), &overlapped);
    // The request and its memory belong to the system until it has ended.
    DWORD size = 0;
    if (GetOverlappedResult(m_hDevice.get(), &overlapped, &size, TRUE) != FALSE)
        return ERROR_SUCCESS;
    return isLate ? static_cast<DWORD>(WAIT_TIMEOUT) : GetLastError();
}

DWORD DeviceDriver::Reset()
{
    return Send(ResetCode, nullptr, 0);
}

Counters DeviceDriver::Count()
{
    Counters counters{};
    Send(CountersCode, nullptr, 0, &counters, sizeof(counters));
    return counters;
}

DWORD DeviceDriver::CompleteRequest(BYTE data)
{
    return SendInput(CompleteCode, AcpiEvent{1, data});
}

DWORD DeviceDriver::CompleteRequestWithoutData()
{
    return SendInput(CompleteCode, AcpiEvent{0, 0});
}

DWORD DeviceDriver::FailRequest(LONG status)
{
    return SendInput(FailCode, status);
}

DWORD DeviceDriver::RefuseRequests(LONG status)
{
    return SendInput(RefuseCode, status);
}

DWORD DeviceDriver::SetAcpiPresent(bool present)
{
    return SendInput(AcpiPresenceCode, ULONG{present});
}

DWORD DeviceDriver::WaitForRequest(Milliseconds limit)
{
    return Send(WaitPendingCode, nullptr, 0, nullptr, 0, limit);
}

DWORD DeviceDriver::PlugDevice(ULONG port, ULONG deviceClass)
{
    return SendInput(PlugCode, Plug{port, deviceClass});
}

DWORD DeviceDriver::UnplugDevice(ULONG port)
{
    return SendInput(UnplugCode, port);
}

DWORD DeviceDriver::SetPortAnswers(const PortAnswers& answers)
{
    return SendInput(PortAnswersCode, answers);
}

DWORD DeviceDriver::SetReportedPorts(ULONG count)
{
    return SendInput(ReportedPortsCode, count);
}

DWORD DeviceDriver::ProbeArrivals()
{
    return Send(ProbeCode, nullptr, 0);
}
} // namespace Simulator
