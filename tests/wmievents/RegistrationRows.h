#pragma once

#include "tests/wmievents/HubProbe.h"

namespace Tests
{
// The rows of the hub's table of registrations, as far as they differ. Codes in the lines are WBEM_E_ACCESS_DENIED,
// 0x80000003 and E_OUTOFMEMORY.
struct SmartAdapterRow
{
    static constexpr const char* Operation =
        "Notifications::OrvikWmiEvents::COrvikWmiEvents::RegisterSmartAdapterEvent";
    static constexpr const char* Query = "SELECT * FROM orvikBEvnt WHERE EventID = 3";
    static constexpr const wchar_t* RegisterFailed = L"Failed to register for smart adapter event, [hr:0x80041003]";
    static constexpr const wchar_t* InvalidCommand = L"Invalid Command SmartAdapter.Supported. hr = 0x80000003";
    static constexpr const wchar_t* OtherFailure =
        L"Exception occurred when calling SmartAdapter.Supported, [hr:0x8007000E]";
    // The name of the command is allocated first.
    static constexpr unsigned FirstTextOfSubscription = 2;

    static HRESULT Register(HubProbe& hub) { return hub.RegisterSmartAdapterEvent(L"C:\\Orvik.ico"); }
};

struct VeritorRow
{
    static constexpr const char* Operation = "Notifications::OrvikWmiEvents::COrvikWmiEvents::RegisterVeritorEvent";
    static constexpr const char* Query = "SELECT * FROM orvikBEvnt WHERE EventID = 131074";
    static constexpr const wchar_t* RegisterFailed = L"Failed to register for Veritor event, [hr:0x80041003]";
    static constexpr const wchar_t* InvalidCommand = L"Invalid Command to register for Veritor. hr = 0x80000003";
    static constexpr const wchar_t* OtherFailure =
        L"Exception occurred when calling register for Veritor, [hr:0x8007000E]";
    static constexpr unsigned FirstTextOfSubscription = 1;

    static HRESULT Register(HubProbe& hub) { return hub.RegisterVeritorEvent(L"C:\\ORVR.ico"); }
};

struct FirmwareRow
{
    static constexpr const char* Operation = "Notifications::OrvikWmiEvents::COrvikWmiEvents::RegisterFirmwareWMIEvent";
    static constexpr const char* Query = "SELECT * FROM orvikBEvnt WHERE EventID = 21";
    static constexpr const wchar_t* RegisterFailed = L"Failed to register for Firmware event, [hr:0x80041003]";
    static constexpr const wchar_t* InvalidCommand = L"Invalid Command to register for Firmware. hr = 0x80000003";
    static constexpr const wchar_t* OtherFailure =
        L"Exception occurred when calling register for Firmware, [hr:0x8007000E]";
    static constexpr unsigned FirstTextOfSubscription = 1;

    static HRESULT Register(HubProbe& hub) { return hub.RegisterFirmwareWMIEvent(); }
};

// The words of the firmware event.
struct PrivacyPanelRow
{
    static constexpr const char* Operation =
        "Notifications::OrvikWmiEvents::COrvikWmiEvents::RegisterPrivacyPanelWMIEvent";
    static constexpr const char* Query = "SELECT * FROM orvikBEvnt WHERE EventID = 20";
    static constexpr const wchar_t* RegisterFailed = L"Failed to register for Firmware event, [hr:0x80041003]";
    static constexpr const wchar_t* InvalidCommand = L"Invalid Command to register for Firmware. hr = 0x80000003";
    static constexpr const wchar_t* OtherFailure =
        L"Exception occurred when calling register for Firmware, [hr:0x8007000E]";
    static constexpr unsigned FirstTextOfSubscription = 1;

    static HRESULT Register(HubProbe& hub) { return hub.RegisterPrivacyPanelWMIEvent(); }
};

struct FirmwareRuntimeRow
{
    static constexpr const char* Operation =
        "Notifications::OrvikWmiEvents::COrvikWmiEvents::RegisterFirmwareRuntimeWMIEvent";
    static constexpr const char* Query = "SELECT * FROM orvikBEvnt WHERE EventID = 33";
    static constexpr const wchar_t* RegisterFailed = L"Failed to register for Firmware Runtime event, [hr:0x80041003]";
    static constexpr const wchar_t* InvalidCommand =
        L"Invalid Command to register for FirmwareRuntimeEvent. hr = 0x80000003";
    static constexpr const wchar_t* OtherFailure =
        L"Exception occurred when calling register for FirmwareRuntimeEvent, [hr:0x8007000E]";
    static constexpr unsigned FirstTextOfSubscription = 1;

    static HRESULT Register(HubProbe& hub) { return hub.RegisterFirmwareRuntimeWMIEvent(); }
};

struct GpioRow
{
    static constexpr const char* Operation = "Notifications::OrvikWmiEvents::COrvikWmiEvents::RegisterGPIOWMIEvent";
    static constexpr const char* Query = "SELECT * FROM OrvikBIOS_BIOSEvent";
    static constexpr const wchar_t* RegisterFailed = L"Failed to register for GPIO event, [hr:0x80041003]";
    static constexpr const wchar_t* InvalidCommand = L"Invalid Command to register for GPIO. hr = 0x80000003";
    static constexpr const wchar_t* OtherFailure =
        L"Exception occurred when calling register for GPIO, [hr:0x8007000E]";
    static constexpr unsigned FirstTextOfSubscription = 1;

    static HRESULT Register(HubProbe& hub) { return hub.RegisterGPIOWMIEvent(); }
};
} // namespace Tests
