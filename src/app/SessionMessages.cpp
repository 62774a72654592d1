#include "app/SessionMessages.h"

#include "app/MessageLog.h"
#include "app/ProcessInstances.h"
#include "app/system/OsVersion.h"
#include "app/TakeStep.h"
#include "app/UsbCMessages.h"

void OnSessionChange(WPARAM change)
{
    LogMessage(L"WM_WTSSESSION_CHANGE wParam: %d", static_cast<int>(change));
    if (change != WTS_SESSION_LOGON && change != WTS_SESSION_UNLOCK)
        return;
    LogMessage(L" In WTS_SESSION_LOGON/WTS_SESSION_UNLOCK");
    LogMessage(L"Show message for any USBC event that might occur while user is logged out");
    TakeStep(g_szWndProc, &DisplayExistingMessages);
    if (!IsWindows8OrGreater())
        return;
    auto* const hub = g_pWmiHandler.Get();
    if (hub == nullptr)
    {
        LogMessage(L"g_pWmiHandler is null");
        return;
    }
    LogMessage(L"show smart adapter event that might occur when user is logged out.");
    TakeStep(g_szWndProc, [hub] { hub->ProcessSmartAdapterEvent(); });
}
