#pragma once

#include "simulator/devices/DeviceDriver.h"
#include "usbc/DeviceInformationSet.h"

#include <gmock/gmock.h>

#include <vector>

inline constexpr GUID AcpiInterface = {0x38E184EA, 0x2138, 0x468C, {0xAE, 0xE5, 0x12, 0x80, 0x53, 0x2B, 0x5C, 0x2D}};
inline constexpr GUID HubInterface = {0xF18A0E88, 0xC30C, 0x11D0, {0x88, 0x15, 0x00, 0xA0, 0xC9, 0x06, 0xBE, 0xD8}};
inline constexpr GUID UsbInterface = {0xA5DCBF10, 0x6530, 0x11D2, {0x90, 0x1F, 0x00, 0xC0, 0x4F, 0xB9, 0x51, 0xED}};

inline constexpr std::chrono::milliseconds Limit{10'000};
inline constexpr std::chrono::milliseconds Short{50};

// Paths of the present interfaces of a class, in the system's order.
[[nodiscard]] std::vector<std::wstring> PresentPaths(const GUID& interfaceClass);
// Instance ids of the devices that these are interfaces of, in the same order.
[[nodiscard]] std::vector<std::wstring> PresentDevices(const GUID& interfaceClass);
// Each test begins and ends with the driver as it is after its start.
class DeviceFilesTest : public testing::Test
{
protected:
    DeviceFilesTest();
    ~DeviceFilesTest() override;

    Simulator::DeviceDriver m_driver;
};
