#include "tests/simulator/driver/AcpiClient.h"

#include "tests/simulator/driver/DeviceFilesTest.h"

AcpiClient::AcpiClient() : m_hEnded(CreateEventW(nullptr, TRUE, FALSE, nullptr))
{
    const std::vector<std::wstring> paths = PresentPaths(AcpiInterface);
    if (paths.size() != 1)
        return;
    const HANDLE device =
        CreateFileW(paths.front().c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                    OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr);
    if (device != INVALID_HANDLE_VALUE)
        m_hDevice.reset(device);
}

AcpiClient::~AcpiClient()
{
    Close();
    if (m_bPending)
        WaitForSingleObject(m_hEnded.get(), INFINITE);
}

DWORD AcpiClient::Send(DWORD code, DWORD outputSize)
{
    ResetEvent(m_hEnded.get());
    m_overlapped = {};
    m_overlapped.hEvent = m_hEnded.get();
    m_dwSize = 0;
    m_data = Untouched;
    const BOOL isAnswered = DeviceIoControl(m_hDevice.get(), code, nullptr, 0, outputSize != 0 ? &m_data : nullptr,
                                            outputSize, &m_dwSize, &m_overlapped);
    const DWORD error = isAnswered ? ERROR_SUCCESS : GetLastError();
    m_bPending = error == ERROR_IO_PENDING;
    return error;
}

bool AcpiClient::HasEnded(std::chrono::milliseconds limit) const
{
    return WaitForSingleObject(m_hEnded.get(), static_cast<DWORD>(limit.count())) == WAIT_OBJECT_0;
}

DWORD AcpiClient::Error()
{
    return GetOverlappedResult(m_hDevice.get(), &m_overlapped, &m_dwSize, FALSE) ? ERROR_SUCCESS : GetLastError();
}

void AcpiClient::Cancel()
{
    CancelIoEx(m_hDevice.get(), &m_overlapped);
}
