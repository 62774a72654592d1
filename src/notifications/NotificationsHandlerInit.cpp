#include "notifications/NotificationsHandler.h"

#include "platform/PlatformCommand.h"
#include "shared/ModuleName.h"
#include "shared/TraceScope.h"

#include <cwchar>
#include <new>

using Orvik::Shared::TraceScope;

namespace Notifications::OrvikNotifications
{
namespace
{
// The system board of the one platform whose USB-C events come from the ACPI event device.
constexpr wchar_t g_szAcpiMachine[] = L"8042";

// Firmware pads its identifiers with zeros: what counts ends at the first one.
bool IsAcpiMachine(const VARIANT& machineId)
{
    return machineId.vt == VT_BSTR && machineId.bstrVal != nullptr && _wcsicmp(machineId.bstrVal, g_szAcpiMachine) == 0;
}

// Whether the machine is that platform; not when the command fails.
bool ReadUsesAcpiEvent(const TraceScope& trace, IPlixCommand* command)
{
    try
    {
        return IsAcpiMachine(SendCommand(trace, command, L"Platform.MachineID"));
    }
    catch (const _com_error& error)
    {
        trace.Information(L"Exception occurred when calling Platform.MachineID, [hr:0x%08X]", error.Error());
        return false;
    }
}

// The 16 bits count whatever type the library gives them; a failed command leaves them empty.
bool ReadUSBCSupported(const TraceScope& trace, IPlixCommand* command)
{
    try
    {
        return SendCommand(trace, command, L"Platform.USBC.Supported").boolVal == VARIANT_TRUE;
    }
    catch (const _com_error& error)
    {
        trace.Verbose(L"Failed to get Platform.USBC.Supported, [hr:0x%08X]", error.Error());
        trace.Information(L"Exception occurred when calling Platform.USBC.Supported, [hr:0x%08X]", error.Error());
        return false;
    }
}
} // namespace

void CNotificationsHandler::Init()
{
    const TraceScope trace(ORVIK_FUNCTION);
    m_bUsingACPIUsbCEvent = false;
    m_bUSBCSupported = false;
    AskPlatform(trace);
    try
    {
        m_strConfigurationToolPath = GetConfigurationToolPath();
    }
    catch (const std::bad_alloc&)
    {
        m_strConfigurationToolPath.clear();
    }
}

void CNotificationsHandler::AskPlatform(const TraceScope& trace)
{
    IPlixCommandPtr spCommand;
    if (FAILED(CreateCommand(trace, spCommand)) || !spCommand)
        return;
    m_bUsingACPIUsbCEvent = ReadUsesAcpiEvent(trace, spCommand);
    m_bUSBCSupported = ReadUSBCSupported(trace, spCommand);
    trace.Verbose(L"m_bUSBCSupported: %d", static_cast<int>(m_bUSBCSupported));
}

std::wstring GetConfigurationToolPath()
{
    return Orvik::Shared::PathBesideProgram(L"OrvikUsbCConfiguration.exe");
}
} // namespace Notifications::OrvikNotifications
