#pragma once

#include "shared/OwnerTypes.h"

#include <windows.h>

#include <chrono>

// One open file of the ACPI event device and one request, as the agent sends it.
class AcpiClient
{
public:
    static constexpr DWORD WaitForEventCode = 0x808433A8;
    static constexpr BYTE Untouched = 0x5A;

    AcpiClient();
    AcpiClient(const AcpiClient&) = delete;
    AcpiClient& operator=(const AcpiClient&) = delete;
    // Waits for the request, which ends with its file: the system writes into this object until then.
    ~AcpiClient();

    [[nodiscard]] bool IsOpen() const noexcept { return m_hDevice != nullptr; }

    // The last error of DeviceIoControl: ERROR_IO_PENDING while the request waits, 0 when it was answered at once.
    DWORD Send(DWORD code = WaitForEventCode, DWORD outputSize = 1);
    // Whether the request has ended by then.
    [[nodiscard]] bool HasEnded(std::chrono::milliseconds limit) const;
    // Of the request that has ended: its error, 0 for an answer, and its NTSTATUS.
    [[nodiscard]] DWORD Error();
    [[nodiscard]] LONG Status() const noexcept { return static_cast<LONG>(m_overlapped.Internal); }
    [[nodiscard]] DWORD Size() const noexcept { return m_dwSize; }
    [[nodiscard]] BYTE Data() const noexcept { return m_data; }

    void Cancel();
    void Close() noexcept { m_hDevice.reset(); }

private:
    Orvik::Shared::UniqueHandle m_hDevice;
    Orvik::Shared::UniqueHandle m_hEnded;
    OVERLAPPED m_overlapped{};
    bool m_bPending = false;
    DWORD m_dwSize = 0;
    BYTE m_data = Untouched;
};
