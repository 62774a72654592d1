#include "simulator/devices/ArrivalProbe.h"
#include "simulator/doubles/JournalText.h"
#include "simulator/machine/PlannedCall.h"
#include "simulator/machine/Redirections.h"
#include "simulator/model/Journal.h"

#include <windows.h>

#include <dbt.h>

#include <mutex>

// Which device classes the agent wants to hear of is in a structure, which the journal shows. From the first time on
// the journal also shows what Windows tells it.
namespace Simulator
{
namespace
{
constexpr std::chrono::milliseconds g_limit{10'000};

// Runs on the agent's main thread when its window procedure has returned.
LRESULT CALLBACK JournalDeviceChange(int code, WPARAM wParam, LPARAM lParam)
{
    const auto& handled = *reinterpret_cast<const CWPRETSTRUCT*>(lParam);
    const auto* const header = reinterpret_cast<const DEV_BROADCAST_HDR*>(handled.lParam);
    if (code == HC_ACTION && handled.message == WM_DEVICECHANGE && header != nullptr &&
        header->dbch_devicetype == DBT_DEVTYP_DEVICEINTERFACE)
    {
        const wchar_t* const name = reinterpret_cast<const DEV_BROADCAST_DEVICEINTERFACE_W*>(header)->dbcc_name;
        Journal::Instance().Append("agent", "device-change", {{"event", handled.wParam}, {"name", Narrow(name)}});
    }
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

void ListenToDeviceChanges(HANDLE recipient)
{
    SetWindowsHookExW(WH_CALLWNDPROCRET, &JournalDeviceChange, nullptr,
                      GetWindowThreadProcessId(static_cast<HWND>(recipient), nullptr));
    if (WaitUntilArrivalsAreTold(g_limit))
        Journal::Instance().Append("agent", "hears-arrivals");
}

HDEVNOTIFY WINAPI RegisterDeviceNotificationWOfMachine(HANDLE recipient, LPVOID filter, DWORD flags)
{
    const auto& wanted = *static_cast<const DEV_BROADCAST_DEVICEINTERFACE_W*>(filter);
    const HRESULT hr =
        CallPlan::Instance().Enter("RegisterDeviceNotificationW", {{"class", GuidText(wanted.dbcc_classguid)},
                                                                   {"size", wanted.dbcc_size},
                                                                   {"type", wanted.dbcc_devicetype},
                                                                   {"flags", flags}});
    if (SUCCEEDED(hr))
    {
        const HDEVNOTIFY notification = RegisterDeviceNotificationW(recipient, filter, flags);
        const DWORD lastError = GetLastError();
        static std::once_flag once;
        std::call_once(once, [recipient] { ListenToDeviceChanges(recipient); });
        SetLastError(lastError);
        return notification;
    }
    SetLastError(ErrorNumber(hr));
    return nullptr;
}
} // namespace

void RedirectDeviceNotifications(Redirections& redirections)
{
    redirections.Add("RegisterDeviceNotificationW", &RegisterDeviceNotificationWOfMachine);
}
} // namespace Simulator
