#pragma once

#include "shared/OwnerTypes.h"

#include <windows.h>

#include <memory>
#include <span>
#include <string>
#include <vector>

namespace Orvik::Shared
{
class TraceScope;
}

// The firmware's Kavel ACPI event device: finds it, opens it and waits for one event at a time. Belongs to one thread.
// Raises nothing: a lack of memory is E_OUTOFMEMORY.
class CIoctlWrapper
{
public:
    // outputSize: bytes that an answer may have. input: sent with each request.
    explicit CIoctlWrapper(DWORD outputSize, std::vector<BYTE> input = {}) noexcept;
    CIoctlWrapper(const CIoctlWrapper&) = delete;
    CIoctlWrapper& operator=(const CIoctlWrapper&) = delete;
    ~CIoctlWrapper() { Close(); }

    // Path of the first of at most 10 interfaces of the device's class that has one. path is set when one was found;
    // the result is the last error on the way, so an interface that failed before it makes the call fail.
    [[nodiscard]] HRESULT GetKavelDevicePath(std::wstring& path);

    // Opens the device for overlapped requests unless it is open.
    [[nodiscard]] HRESULT OpenKavelDevice();

    // Sends one request and waits for its end, without time-out. 0: the device answered, see Output; 1: the stop event
    // was signalled first. Otherwise a result of the wait, an error code of Windows or a failed HRESULT. A request that
    // has not ended then is not cancelled.
    DWORD ListenForEvent();

    // The last answer; the bytes that the device did not write are 0.
    [[nodiscard]] std::span<const BYTE> Output() const noexcept;

    // Closes the device, then gives back the memory of the last request unless the system may still write to it.
    void Close() noexcept;

private:
    // What the system may write to until a request has ended.
    struct Request
    {
        OVERLAPPED m_overlapped{};
        std::vector<BYTE> m_input;
        std::vector<BYTE> m_output;
        DWORD m_dwBytesReturned = 0;
        bool m_bPending = false;
    };
    // A request that has not ended is left to the system for good.
    struct RequestDeleter
    {
        void operator()(Request* request) const noexcept;
    };

    [[nodiscard]] HRESULT OpenPath(const Orvik::Shared::TraceScope& trace, const std::wstring& path);
    void PrepareRequest();
    bool Submit(Request& request) const noexcept;
    DWORD SendRequest(const Orvik::Shared::TraceScope& trace);
    static DWORD WaitForEnd(const Orvik::Shared::TraceScope& trace, HANDLE requestEvent);

    std::unique_ptr<Request, RequestDeleter> m_pRequest;
    Orvik::Shared::UniqueHandle m_hDevice;
    std::vector<BYTE> m_lstInput;
    DWORD m_dwOutputSize;
};
