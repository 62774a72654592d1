#pragma once

#include "tests/usbc/DeviceFiles.h"
#include "tests/usbc/DeviceTree.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace Tests
{
inline constexpr GUID g_kavelClass = {0x38E184EA, 0x2138, 0x468C, {0xAE, 0xE5, 0x12, 0x80, 0x53, 0x2B, 0x5C, 0x2D}};
inline constexpr GUID g_usbClass = {0xA5DCBF10, 0x6530, 0x11D2, {0x90, 0x1F, 0x00, 0xC0, 0x4F, 0xB9, 0x51, 0xED}};
inline constexpr GUID g_hubClass = {0xF18A0E88, 0xC30C, 0x11D0, {0x88, 0x15, 0x00, 0xA0, 0xC9, 0x06, 0xBE, 0xD8}};

// A machine with a device tree and devices that can be opened. After each test no set and no handle may be left.
class DeviceMachine : public testing::Test
{
protected:
    DeviceMachine();
    ~DeviceMachine() override;

    // Forgets what the machine saw so far, and the rules of the plan.
    static void StartWatching();
    // Makes the n-th call of that name from now on fail with an error code of the system.
    static void Fail(const char* call, DWORD error, unsigned nth = 1);
    // The same with a failure that leaves no error code behind.
    static void FailWithoutCode(const char* call);
    // Names of the calls since then, in order.
    [[nodiscard]] static std::vector<std::string> Calls();
    // What the n-th of these calls was given (1 = the first), without what the plan did to it; null without one.
    [[nodiscard]] static nlohmann::json Details(std::string_view call, unsigned nth = 1);
    [[nodiscard]] static unsigned CallCount(std::string_view call);

    DeviceTree m_tree;
    DeviceFiles m_files;
    // Handles that the locks of the machine may make, once each, when threads contend for them.
    unsigned m_nLockHandles = 0;

private:
    unsigned m_nHandles = 0;
};

// A machine with the ACPI event device.
class KavelMachine : public DeviceMachine
{
protected:
    KavelMachine();

    // One more device with an interface of the event device's class.
    void AddKavel(const wchar_t* path);
};

// A machine with a hub of two ports; at the second one there is a billboard device, which is the one that arrived.
class HubMachine : public DeviceMachine
{
protected:
    static constexpr const wchar_t* ArrivedName =
        L"\\\\?\\usb#vid_1d6b&pid_0bb0#4&fa1#{a5dcbf10-6530-11d2-901f-00c04fb951ed}";
    static constexpr const wchar_t* ArrivedId = L"USB\\VID_1D6B&PID_0BB0\\4&FA1";
    static constexpr const wchar_t* ArrivedKey = L"{36fc9e60-c465-11cf-8056-444553540000}\\0017";
    static constexpr const wchar_t* HubId = L"USB\\ROOT_HUB30\\4&FA0";

    HubMachine();
    ~HubMachine() override;

    // Announces a device interface of that name.
    static void Arrive(std::wstring_view name);
    Device& Arrived() { return m_tree.m_lstDevices[2]; }
    Port& ArrivedPort() { return m_files.m_lstPorts[1]; }
};
} // namespace Tests
