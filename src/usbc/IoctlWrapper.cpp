#include "usbc/IoctlWrapper.h"

#include "platform/OutOfMemoryResult.h"
#include "shared/LastErrorResult.h"
#include "shared/TraceScope.h"
#include "usbc/DeviceInformationSet.h"
#include "usbc/UsbCState.h"

#include <iterator>
#include <utility>

using Orvik::Shared::TraceScope;
using Orvik::Shared::UniqueHandle;

namespace
{
constexpr GUID g_kavelInterfaceClass = {0x38E184EA, 0x2138, 0x468C, {0xAE, 0xE5, 0x12, 0x80, 0x53, 0x2B, 0x5C, 0x2D}};
// Device type 0x8084, function 0xCEA, buffered, any access.
constexpr DWORD g_dwWaitForEventCode = 0x808433A8;
// Interfaces that are looked at.
constexpr DWORD g_dwMostInterfaces = 10;

// The result of a call that failed with that code: without a code it is not taken for a success.
DWORD ResultOfFailure(DWORD error) noexcept
{
    return error != ERROR_SUCCESS ? error : ERROR_GEN_FAILURE;
}

// Null for an empty buffer.
void* DataOf(std::vector<BYTE>& buffer) noexcept
{
    return buffer.empty() ? nullptr : buffer.data();
}

// The path of the first interface that has one. The result is that of the last interface that failed, also when a later
// one has a path: one that fails is reported to the caller in any case.
HRESULT FindDevicePath(const DeviceInformationSet& devices, std::wstring& path)
{
    HRESULT recorded = S_OK;
    bool hasSeenOne = false;
    for (DWORD index = 0; index < g_dwMostInterfaces; ++index)
    {
        SP_DEVICE_INTERFACE_DATA deviceInterface{};
        if (!devices.EnumInterface(nullptr, g_kavelInterfaceClass, index, deviceInterface))
        {
            const HRESULT hr = LastErrorResult();
            if (hr == HRESULT_FROM_WIN32(ERROR_NO_MORE_ITEMS))
                return hasSeenOne && FAILED(recorded) ? recorded : hr;
            recorded = hr;
            continue;
        }
        hasSeenOne = true;
        const HRESULT hr = devices.ReadDevicePath(deviceInterface, path);
        if (SUCCEEDED(hr))
            break;
        recorded = hr;
    }
    return recorded;
}
} // namespace

CIoctlWrapper::CIoctlWrapper(DWORD outputSize, std::vector<BYTE> input) noexcept
    : m_lstInput(std::move(input)), m_dwOutputSize(outputSize)
{
}

void CIoctlWrapper::RequestDeleter::operator()(Request* request) const noexcept
{
    if (!request->m_bPending || HasOverlappedIoCompleted(&request->m_overlapped))
        delete request;
}

HRESULT CIoctlWrapper::GetKavelDevicePath(std::wstring& path)
{
    TraceScope trace(ORVIK_FUNCTION);
    return trace.Exit(OutOfMemoryResult(
        [&]
        {
            const DeviceInformationSet devices(&g_kavelInterfaceClass, DIGCF_PRESENT | DIGCF_DEVICEINTERFACE);
            if (!devices)
            {
                const HRESULT hr = LastErrorResult();
                trace.Information(L"failed to get hardwareDeviceInfo, dwErr = 0x%X", GetLastError());
                return hr;
            }
            trace.Verbose(L"get hardwareDeviceInfo passed");
            std::wstring found;
            const HRESULT hr = FindDevicePath(devices, found);
            if (!found.empty())
            {
                path = std::move(found);
                trace.Verbose(L"Found sKavelDevicePath = 0%s", path.c_str());
            }
            return hr;
        }));
}

HRESULT CIoctlWrapper::OpenPath(const TraceScope& trace, const std::wstring& path)
{
    const HANDLE device = CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, OPEN_EXISTING, FILE_FLAG_OVERLAPPED, nullptr);
    if (device == INVALID_HANDLE_VALUE || device == nullptr)
    {
        const HRESULT hr = LastErrorResult();
        trace.Information(L"CreateFile failed, dwErr = 0x%x", GetLastError());
        return hr;
    }
    m_hDevice.reset(device);
    trace.Verbose(L"CreateFile passed");
    return S_OK;
}

HRESULT CIoctlWrapper::OpenKavelDevice()
{
    TraceScope trace(ORVIK_FUNCTION);
    HRESULT hr = S_OK;
    if (!m_hDevice)
    {
        std::wstring path;
        hr = GetKavelDevicePath(path);
        trace.Verbose(L"GetKavelDevicePath return hr = 0x%X, sKavelDevicePath = %s", hr, path.c_str());
        if (SUCCEEDED(hr))
            hr = OpenPath(trace, path);
    }
    trace.ExitText(L"hr = 0x%x", hr);
    return hr;
}

// A request that is still pending keeps its memory, and the next one gets its own.
void CIoctlWrapper::PrepareRequest()
{
    if (!m_pRequest || m_pRequest->m_bPending)
        m_pRequest.reset(new Request);
    m_pRequest->m_dwBytesReturned = 0;
    m_pRequest->m_input = m_lstInput;
    m_pRequest->m_output.assign(m_dwOutputSize, 0);
    m_pRequest->m_overlapped = OVERLAPPED{};
}

DWORD CIoctlWrapper::ListenForEvent()
{
    TraceScope trace(ORVIK_FUNCTION);
    DWORD result = ERROR_SUCCESS;
    const HRESULT hr = OutOfMemoryResult(
        [&]
        {
            const HRESULT opened = OpenKavelDevice();
            if (SUCCEEDED(opened))
                result = SendRequest(trace);
            return opened;
        });
    if (FAILED(hr))
        result = static_cast<DWORD>(hr);
    trace.Exit(static_cast<int>(result));
    return result;
}

// Whether the request ended before the call returned.
bool CIoctlWrapper::Submit(Request& request) const noexcept
{
    return DeviceIoControl(m_hDevice.get(), g_dwWaitForEventCode, DataOf(request.m_input),
                           static_cast<DWORD>(request.m_input.size()), DataOf(request.m_output),
                           static_cast<DWORD>(request.m_output.size()), &request.m_dwBytesReturned,
                           &request.m_overlapped) != FALSE;
}

DWORD CIoctlWrapper::SendRequest(const TraceScope& trace)
{
    UniqueHandle requestEvent(CreateEventW(nullptr, FALSE, FALSE, nullptr));
    if (!requestEvent)
    {
        const DWORD error = GetLastError();
        trace.Information(L"CreateEvent failed with error code: %d", static_cast<int>(error));
        return ResultOfFailure(error);
    }
    trace.Verbose(L"CreateEvent passed");

    PrepareRequest();
    Request& request = *m_pRequest;
    request.m_overlapped.hEvent = requestEvent.get();
    DWORD result = WAIT_OBJECT_0;
    if (!Submit(request))
    {
        if (const DWORD error = GetLastError(); error != ERROR_IO_PENDING)
        {
            trace.Information(L"Expected ERROR_IO_PENDING (%d) from IOCTL call, but got: %d", ERROR_IO_PENDING,
                              static_cast<int>(error));
            return ResultOfFailure(error);
        }
        request.m_bPending = true;
        result = WaitForEnd(trace, requestEvent.get());
        request.m_bPending = result != WAIT_OBJECT_0;
    }
    requestEvent.reset();
    trace.Verbose(L"dwErr = 0x%x", result);
    return result;
}

DWORD CIoctlWrapper::WaitForEnd(const TraceScope& trace, HANDLE requestEvent)
{
    trace.Verbose(L"Waiting to get signaled...");
    const HANDLE stopEvent = g_acpiStopEvent.Get();
    if (stopEvent == nullptr)
    {
        trace.Verbose(L"Waiting WaitForSingleObject");
        const DWORD result = WaitForSingleObject(requestEvent, INFINITE);
        if (result == WAIT_OBJECT_0)
            trace.Verbose(L"Event signaled!");
        return result;
    }
    trace.Verbose(L"Waiting WaitForMultipleObjects");
    const HANDLE handles[] = {requestEvent, stopEvent};
    const DWORD result = WaitForMultipleObjects(static_cast<DWORD>(std::size(handles)), handles, FALSE, INFINITE);
    if (result == WAIT_OBJECT_0)
        trace.Verbose(L"Kavel event signaled!");
    else if (result == WAIT_OBJECT_0 + 1)
        trace.Verbose(L"Secondary event signaled!");
    return result;
}

std::span<const BYTE> CIoctlWrapper::Output() const noexcept
{
    return m_pRequest ? std::span<const BYTE>(m_pRequest->m_output) : std::span<const BYTE>();
}

void CIoctlWrapper::Close() noexcept
{
    m_hDevice.reset();
    m_pRequest.reset();
}
