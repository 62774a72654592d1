#pragma once

#include "simulator/redirect/ImportRedirection.h"

#include <windows.h>

#include <winioctl.h>

#include <usbioctl.h>

#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Tests
{
// A port of the hub.
struct Port
{
    USB_CONNECTION_STATUS m_status = NoDeviceConnected;
    std::wstring m_strDriverKey;
    USB_DEVICE_DESCRIPTOR m_descriptor{};
    // Bytes that the hub says its driver key needs, instead of the truth.
    std::optional<ULONG> m_keySize;
};

// What the event device does with one request.
struct Answer
{
    enum class Kind
    {
        AtOnce,  // it ends before the call returns
        Pending, // it ends once the program waits
        Never,   // it does not end; the stop event is signalled once the program waits
        Refused  // the call fails with m_dwError
    };

    Kind m_kind = Kind::Pending;
    std::vector<BYTE> m_lstData = {};
    DWORD m_dwError = ERROR_GEN_FAILURE;
    LONG m_status = 0; // NTSTATUS: what a pending request ends with
};

// The devices that can be opened: a USB hub and the ACPI event device, by the file and event functions that the program
// imports. Every call is journalled with its parameters and may fail by plan. Handles are real ones.
class DeviceFiles
{
public:
    // One at a time.
    DeviceFiles();
    DeviceFiles(const DeviceFiles&) = delete;
    DeviceFiles& operator=(const DeviceFiles&) = delete;

    // Ends the request that never ended by itself, as a device does when the program has closed it.
    void FinishLate(std::vector<BYTE> data);

    std::wstring m_strHubPath = L"\\\\?\\hub";
    std::vector<Port> m_lstPorts;
    std::optional<UCHAR> m_reportedPorts;
    // Once these are used up, a request is refused.
    std::deque<Answer> m_lstAnswers;
    // Opening gives null, with that last-error code.
    std::optional<DWORD> m_nullWithError;
    // Called when a device was opened, which is then m_hOpened.
    std::function<void()> m_onOpened;
    HANDLE m_hOpened = nullptr;
    // Called when the program waits for a request that never ends; by default the stop event is signalled.
    std::function<void()> m_onWait;

    OVERLAPPED* m_pPending = nullptr;
    void* m_pPendingOutput = nullptr;
    DWORD m_dwPendingSize = 0;
    std::optional<Answer> m_pendingAnswer;

private:
    Simulator::Redirection<decltype(CreateFileW)> m_createFile;
    Simulator::Redirection<decltype(DeviceIoControl)> m_control;
    Simulator::Redirection<decltype(CreateEventW)> m_createEvent;
    Simulator::Redirection<decltype(WaitForSingleObject)> m_waitOne;
    Simulator::Redirection<decltype(WaitForMultipleObjects)> m_waitMany;
    Simulator::Redirection<decltype(PostMessageW)> m_post;

public:
    // The functions as they were.
    decltype(CreateEventW)* m_pfnCreateEvent;
    decltype(WaitForSingleObject)* m_pfnWaitOne;
    decltype(WaitForMultipleObjects)* m_pfnWaitMany;
};
} // namespace Tests
