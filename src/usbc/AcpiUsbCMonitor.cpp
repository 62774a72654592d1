#include "usbc/AcpiUsbCMonitor.h"

#include "shared/OwnerTypes.h"
#include "shared/TraceScope.h"
#include "usbc/IoctlWrapper.h"
#include "usbc/UsbCState.h"

#include <atomic>

using Orvik::Shared::TraceScope;
using Orvik::Shared::UniqueHandle;

namespace
{
// One byte is what the device answers.
constexpr DWORD g_dwAnswerSize = 1;

// In the place of the monitor's thread id until it is known: no thread has it, ids are multiples of 4.
constexpr DWORD g_dwStarting = 0xFFFFFFFF;

void HandleAnswer(const TraceScope& trace, const CIoctlWrapper& device)
{
    const BYTE data = device.Output().empty() ? BYTE{0} : device.Output().front();
    trace.Verbose(L"ListenForEvent returned WAIT_OBJECT_0, with data: 0x%02hX", data);
    if (data != USB_TYPEC_ACPI_EVENT_ID)
        return;
    trace.Verbose(L"receive new USB_TYPEC_ACPI_EVENT_ID");
    PostMessageW(g_hwndMain, WM_NOTIFY_ACPI_USB_C, 0, 0);
}

DWORD Listen(const TraceScope& trace, CIoctlWrapper& device)
{
    DWORD result = device.ListenForEvent();
    while (result == WAIT_OBJECT_0)
    {
        HandleAnswer(trace, device);
        result = device.ListenForEvent();
    }
    trace.Verbose(L"Exited while (WAIT_OBJECT_0). dwResult: %d", static_cast<int>(result));
    return result;
}
} // namespace

DWORD WINAPI ACPIUSBCMonitor(void* /*parameter*/)
{
    TraceScope trace(ORVIK_FUNCTION);
    CIoctlWrapper device(g_dwAnswerSize);
    DWORD result = 0;
    if (const HRESULT hr = device.OpenKavelDevice(); FAILED(hr))
        trace.Error(L"OpenKavelDevice failed: 0x%08X", hr);
    else if (g_acpiStopEvent.Create())
        result = Listen(trace, device);
    else
    {
        trace.Information(L"CreateEvent failed (0x%x)", GetLastError());
        // The thread id stays: nothing below is run without a stop event.
        return static_cast<DWORD>(trace.Exit(0));
    }
    std::atomic_ref(g_dwAcpiMonitorThreadId).store(0);
    g_acpiStopEvent.Close();
    device.Close();
    return static_cast<DWORD>(trace.Exit(static_cast<int>(result)));
}

void StartAcpiMonitor() noexcept
{
    const std::atomic_ref monitorThreadId(g_dwAcpiMonitorThreadId);
    monitorThreadId.store(g_dwStarting);
    DWORD threadId = 0;
    const UniqueHandle thread(CreateThread(nullptr, 0, &ACPIUSBCMonitor, nullptr, 0, &threadId));
    if (!thread)
        threadId = 0;
    // A monitor that has ended already has left its 0, which stays.
    DWORD expected = g_dwStarting;
    monitorThreadId.compare_exchange_strong(expected, threadId);
}

void SignalAcpiMonitorStop() noexcept
{
    g_acpiStopEvent.Signal();
}
