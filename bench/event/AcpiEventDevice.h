#pragma once

#include "simulator/redirect/ImportRedirection.h"

#include <windows.h>

#include <setupapi.h>

namespace EventBench
{
// The ACPI event device of the machine, by the functions with which the monitor finds, opens and asks it. Each time the
// monitor opens it, its first request ends with the answer for a USB-C event and starts the clock; the second one is
// refused, which ends the monitor. One at a time.
class AcpiEventDevice
{
public:
    AcpiEventDevice();

private:
    Simulator::Redirection<decltype(SetupDiGetClassDevsW)> m_getClassDevs;
    Simulator::Redirection<decltype(SetupDiDestroyDeviceInfoList)> m_destroy;
    Simulator::Redirection<decltype(SetupDiEnumDeviceInterfaces)> m_enumInterface;
    Simulator::Redirection<decltype(SetupDiGetDeviceInterfaceDetailW)> m_detail;
    Simulator::Redirection<decltype(CreateFileW)> m_createFile;
    Simulator::Redirection<decltype(DeviceIoControl)> m_control;
    Simulator::Redirection<decltype(WaitForMultipleObjects)> m_wait;
};
} // namespace EventBench
