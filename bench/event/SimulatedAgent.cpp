#include "bench/event/SimulatedAgent.h"

#include "app/MainWindow.h"
#include "app/ProcessInstances.h"
#include "bench/support/Crossings.h"
#include "shared/Log.h"
#include "simulator/model/Facts.h"
#include "usbc/AcpiUsbCMonitor.h"

#include <windows.h>

#include <cwchar>
#include <stdexcept>
#include <string>

using Orvik::Shared::CLogger;
using Orvik::Shared::ReceiveInto;
using Orvik::Shared::UniqueRegKey;
using Simulator::Facts;
namespace Level = Orvik::Shared::Level;

namespace EventBench
{
namespace
{
constexpr wchar_t g_loggingKey[] = L"Software\\Policies\\Orvik\\OrvikNotifications Application";

void Require(bool works, const char* what)
{
    if (!works)
        throw std::runtime_error(what);
}

UniqueRegKey MakeKey(HKEY parent, const wchar_t* path)
{
    UniqueRegKey key;
    const LSTATUS status = RegCreateKeyExW(parent, path, 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr,
                                           ReceiveInto(key), nullptr);
    Require(status == ERROR_SUCCESS, "the registry refused");
    return key;
}

std::wstring RegistryPath()
{
    return L"Software\\OrvikBench\\Machine of process " + std::to_wstring(GetCurrentProcessId());
}

// The doubles sleep for no time at all before each answer, which would give the processor to a neighbour.
void WINAPI SleepForSome(DWORD milliseconds)
{
    if (milliseconds != 0)
        SleepEx(milliseconds, FALSE);
}

WINBOOL WINAPI DropEvent(HANDLE, WORD, WORD, DWORD, PSID, WORD, DWORD, LPCWSTR*, LPVOID)
{
    return TRUE;
}

// The logger of the process is made here, by the first record. What it takes by default is what another one takes that
// is made without a policy.
LogLevels MakeLogger()
{
    LogLevels levels{};
    levels.m_nByDefault = CLogger::Create(Level::Error, Orvik::Shared::ListenerKind::Event)->EnabledLevels();
    PrivateRegistry::Write(g_loggingKey, L"LoggingType", L"EVENT");
    PrivateRegistry::Write(g_loggingKey, L"MinLogLevel", L"TraceIn");
    Orvik::Shared::Log(Level::Verbose, "main", L"first record");
    levels.m_nAll = Orvik::Shared::g_enabledLevels;
    Require(levels.m_nAll != levels.m_nByDefault, "the logging policy had no effect");
    return levels;
}

nlohmann::json OneMessage(int messageId)
{
    return {{"bstr", "<GetUsbCMessagesOutput><Output><Data NumberOfPorts=\"1\"><Port0 NumberOfMessages=\"1\"><Message0 "
                     "MessageId=\"" +
                         std::to_string(messageId) +
                         "\" Valid=\"true\"/></Port0></Data></Output></GetUsbCMessagesOutput>"}};
}

void SetFacts()
{
    PrivateRegistry::Write(L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion", L"ProgramFilesDir (x86)",
                           L"C:\\Program Files (x86)");
    const auto answer = [](const char* command, const nlohmann::json& value)
    { Facts::Instance().Set(std::string("/commands/") + command, {{"answer", value}}); };
    answer("Platform.MachineID", {{"bstr", "8042"}});
    answer("Platform.USBC.Supported", {{"bool", true}});
    answer("Platform.USBC.Messages", OneMessage(2));
    answer("SmartAdapter.Supported", {{"bool", true}});
    answer("SmartAdapter.Status", {{"i4", 3}});
    Facts::Instance().Set("/toasts/draw", false);
    Facts::Instance().Set("/toasts/timeout-ms", 0);
}

LRESULT CALLBACK MeasuredProcedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message != WM_NOTIFY_ACPI_USB_C)
        return DefWindowProcW(hwnd, message, wParam, lParam);
    EventClock::Resume();
    const LRESULT result = WndProc(hwnd, message, wParam, lParam);
    EventClock::Suspend();
    return result;
}

void MakeMainWindow()
{
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = &MeasuredProcedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = L"OrvikEventBench";
    RegisterClassW(&windowClass);
    g_hwndMain = CreateWindowExW(0, windowClass.lpszClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                 windowClass.hInstance, nullptr);
    Require(g_hwndMain != nullptr, "the window could not be made");
}
} // namespace

PrivateRegistry::PrivateRegistry()
{
    RegDeleteTreeW(HKEY_CURRENT_USER, RegistryPath().c_str());
    const UniqueRegKey key = MakeKey(HKEY_CURRENT_USER, RegistryPath().c_str());
    Require(RegOverridePredefKey(HKEY_LOCAL_MACHINE, key.get()) == ERROR_SUCCESS, "the registry refused");
}

PrivateRegistry::~PrivateRegistry()
{
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    RegDeleteTreeW(HKEY_CURRENT_USER, RegistryPath().c_str());
}

void PrivateRegistry::Write(const wchar_t* key, const wchar_t* name, const wchar_t* text)
{
    const UniqueRegKey made = MakeKey(HKEY_LOCAL_MACHINE, key);
    const auto size = static_cast<DWORD>((std::wcslen(text) + 1) * sizeof(wchar_t));
    Require(RegSetValueExW(made.get(), name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text), size) == ERROR_SUCCESS,
            "the registry refused");
}

SimulatedAgent::SimulatedAgent() : m_levels(MakeLogger())
{
    SetFacts();
    Require(SUCCEEDED(m_hub.RegisterSmartAdapterEvent(L"")) && SUCCEEDED(m_hub.RegisterUSBCWMIEvent(L"")),
            "the hub could not be registered");
    g_pNotificationsHandler.Create().Init();
    Require(g_pNotificationsHandler.Get()->IsUsingACPIUsbCEvent(), "the handler sees no ACPI machine");
    MakeMainWindow();
    new Simulator::Redirection<decltype(Sleep)>("Sleep", &SleepForSome);
    new Simulator::Redirection<decltype(ReportEventW)>("ReportEventW", &DropEvent);
    WatchObjects();
    WatchFunctions();
}

SimulatedAgent::~SimulatedAgent()
{
    DestroyWindow(g_hwndMain);
    g_pNotificationsHandler.Destroy();
}
} // namespace EventBench
