#pragma once

#include <guiddef.h>

// What the driver of the simulated devices and its clients agree on; programs and drivers include it.
namespace Simulator::Devices
{
// The control device; everything that is plugged, completed or counted goes through it.
inline constexpr wchar_t ControlDevicePath[] = L"\\\\.\\OrvikDevices";

// Ports that the hub has; each has one place for a device, numbered from 1.
inline constexpr unsigned long PortCount = 4;

// What the system calls the devices: a device id and the rest, which makes an instance id.
struct DeviceIdentity
{
    const wchar_t* m_pDeviceId;
    const wchar_t* m_pInstance;
};

inline constexpr DeviceIdentity AcpiIdentity = {L"ACPI\\KVL0001", L"0"};
inline constexpr DeviceIdentity HubIdentity = {L"USB\\ROOT_HUB30", L"ORVIK"};
// Of the device at each port. The vendor number is given away for tests.
inline constexpr DeviceIdentity UsbIdentities[PortCount] = {{L"USB\\VID_1209&PID_0001", L"ORVIK"},
                                                            {L"USB\\VID_1209&PID_0002", L"ORVIK"},
                                                            {L"USB\\VID_1209&PID_0003", L"ORVIK"},
                                                            {L"USB\\VID_1209&PID_0004", L"ORVIK"}};
// A device without any use, by whose arrival a program finds out that Windows tells it of arrivals.
inline constexpr DeviceIdentity ProbeIdentity = {L"ROOT\\ORVIKPROBE", L"0"};
inline constexpr GUID ProbeInterface = {0x5B0E7A34, 0x6C1D, 0x4F6B, {0x9A, 0x57, 0x2E, 0x30, 0xD4, 0x81, 0x7C, 0x66}};
// Under which the device at each port is registered, and by which the hub tells of it.
inline constexpr wchar_t DriverKeys[PortCount][44] = {
    L"{88BAE032-5A81-49F0-BC3D-A4FF138216D6}\\0001", L"{88BAE032-5A81-49F0-BC3D-A4FF138216D6}\\0002",
    L"{88BAE032-5A81-49F0-BC3D-A4FF138216D6}\\0003", L"{88BAE032-5A81-49F0-BC3D-A4FF138216D6}\\0004"};

// Characters of a driver key name with the terminating zero; more than a driver key can have.
inline constexpr unsigned long DriverKeyRoom = 512;
// Bytes that wait until somebody asks the ACPI event device.
inline constexpr unsigned long MostQueuedEvents = 1024;

// Buffered, any access.
constexpr unsigned long ControlCode(unsigned long function)
{
    return 0x80000000u | function << 2;
}

// Everything as it was when the driver was started: nothing plugged, nothing queued, counters 0. Requests that are
// pending end with STATUS_CANCELLED.
inline constexpr unsigned long ResetCode = ControlCode(0x900);
// In: AcpiEvent. Ends the request that has been pending longest, or waits for the next one. STATUS_DEVICE_BUSY when
// too many wait.
inline constexpr unsigned long CompleteCode = ControlCode(0x901);
// In: NTSTATUS. Ends the request that has been pending longest with it; STATUS_NOT_FOUND when there is none.
inline constexpr unsigned long FailCode = ControlCode(0x902);
// In: NTSTATUS. From now on requests of the ACPI event device fail with it at once; STATUS_SUCCESS ends that.
inline constexpr unsigned long RefuseCode = ControlCode(0x903);
// Ends when at least one request is pending at the ACPI event device.
inline constexpr unsigned long WaitPendingCode = ControlCode(0x904);
// In: unsigned long, 0 takes the ACPI event device away, with STATUS_DEVICE_REMOVED for what is pending; 1 brings it
// back.
inline constexpr unsigned long AcpiPresenceCode = ControlCode(0x905);
// Out: Counters.
inline constexpr unsigned long CountersCode = ControlCode(0x906);
// In: Plug.
inline constexpr unsigned long PlugCode = ControlCode(0x907);
// In: unsigned long, the number of the port. A port that is empty stays so.
inline constexpr unsigned long UnplugCode = ControlCode(0x908);
// In: PortAnswers; what the hub says of a port, whatever is plugged there. The next Plug or Unplug ends it.
inline constexpr unsigned long PortAnswersCode = ControlCode(0x909);
// In: unsigned long, the number of ports that the hub says it has, up to 255.
inline constexpr unsigned long ReportedPortsCode = ControlCode(0x90A);

// The probe device arrives and goes.
inline constexpr unsigned long ProbeCode = ControlCode(0x90B);

struct AcpiEvent
{
    unsigned long m_nLength; // 0 or 1, bytes of the answer
    unsigned long m_nData;   // 0 to 255
};

// Since the driver was started or reset; pending and queued as they are now.
struct Counters
{
    unsigned long m_nPending;
    unsigned long m_nQueued;
    unsigned long m_nOpens; // of the ACPI event device
    unsigned long m_nWaits; // requests that it got
    unsigned long m_nCompleted;
    unsigned long m_nFailed; // by Fail and by removal
    unsigned long m_nRefused;
    unsigned long m_nCancelled; // by the client, or given back when it closed the device
    unsigned long m_nHubOpens;
    unsigned long m_nNodeRequests;
    unsigned long m_nConnectionRequests;
    unsigned long m_nDriverKeyRequests;
};

// A USB device that arrives at a port. STATUS_DEVICE_BUSY when one is there.
struct Plug
{
    unsigned long m_nPort;
    unsigned long m_nDeviceClass; // 0 to 255; 0x11 is a billboard device
};

struct PortAnswers
{
    unsigned long m_nPort;
    unsigned long m_nConnectionStatus; // of USB_CONNECTION_STATUS; 1 is a device
    unsigned long m_nDeviceClass;
    long m_nConnectionFailure;         // NTSTATUS of the connection request; 0: it is answered
    long m_nDriverKeyFailure;          // NTSTATUS of driver key requests behind those that are answered
    unsigned long m_nDriverKeyAnswers; // so many are answered
    unsigned long m_nDriverKeyLength;  // bytes that the hub says the answer has; 0: as many as it has
    wchar_t m_szDriverKey[DriverKeyRoom];
};
} // namespace Simulator::Devices
