#include "app/PowerMessages.h"

#include "app/MessageLog.h"
#include "app/ProcessInstances.h"
#include "app/system/OsVersion.h"
#include "app/TakeStep.h"
#include "app/UsbCMessages.h"

#include <utility>

namespace
{
constexpr DWORD g_dwSettlingTime = 1000; // milliseconds

void OnResume(HWND hwnd)
{
    // The main thread waits on purpose: no other message is handled before the firmware has settled.
    Sleep(g_dwSettlingTime);
    LogMessage(L"Get and Show message for any USBC event that might occur while system is sleeping");
    TakeStep(g_szWndProc, &DisplayExistingMessages);
    if (auto* const hub = g_pWmiHandler.Get(); hub != nullptr)
    {
        if (IsWindows8OrGreater())
        {
            LogMessage(L"check smart adapter status");
            TakeStep(g_szWndProc, [hub] { hub->ProcessSmartAdapterEvent(); });
        }
        LogMessage(L"log any new Veritor log occurred while system is sleeping");
        hub->ProcessVeritorLog(0);
    }
    SetForegroundWindow(hwnd);
}
} // namespace

void OnPowerBroadcast(HWND hwnd, WPARAM event)
{
    switch (event)
    {
    case PBT_APMSUSPEND:
        LogMessage(L"WM_POWERBROADCAST wParam: %d", static_cast<int>(event));
        g_bResumeHandled = false;
        break;
    case PBT_APMRESUMESUSPEND:
    case PBT_APMRESUMEAUTOMATIC:
        LogMessage(L"WM_POWERBROADCAST wParam: %d", static_cast<int>(event));
        // Windows sends both for one wake-up.
        if (!std::exchange(g_bResumeHandled, true))
            OnResume(hwnd);
        break;
    default:
        break;
    }
}
