#include "app/FirmwareStartUp.h"
#include "app/MainWindow.h"
#include "app/ProcessInstances.h"
#include "app/StartUp.h"
#include "app/system/IconPath.h"
#include "app/system/ImageState.h"
#include "app/system/OsVersion.h"
#include "app/TakeStep.h"
#include "app/UsbCStartUp.h"
#include "res/Resource.h"
#include "shared/FunctionName.h"
#include "shared/Log.h"

#include <windows.h>

using Orvik::Shared::Log;
namespace Level = Orvik::Shared::Level;

// Exit codes: 0 the window could not be created, 1 another copy runs in this session, else the code of WM_QUIT.
int APIENTRY wWinMain(HINSTANCE instance, HINSTANCE, LPWSTR, int)
{
    // Start-up goes on in spite of the message: administrators search their logs for it.
    if (IsImageStillBuilding())
        Log(Level::Verbose, ORVIK_FUNCTION, L"Image still building.  Exit app.");

    LoadProcessNames(instance);
    Orvik::Shared::UniqueHandle sessionMutex = TakeSessionMutex();
    if (GetLastError() == ERROR_ALREADY_EXISTS)
    {
        // The handle is left to the system on this path.
        static_cast<void>(sessionMutex.release());
        return 1;
    }

    RegisterMainWindowClass(instance);
    if (!InitInstance(instance))
        return 0;
    const HACCEL accelerators = LoadAcceleratorsW(instance, MAKEINTRESOURCEW(IDR_ORVIKNOTIFICATIONS));

    // Registrations log their own failures; none of them stops start-up.
    TakeStep(ORVIK_FUNCTION, [] { g_pWmiHandler.Create(); });
    auto* const hub = g_pWmiHandler.Get();
    const std::wstring iconPath = GetDefaultIconPath(L"Orvik.ico", IDI_DEFAULT);
    if (hub != nullptr)
        TakeStep(ORVIK_FUNCTION, [&] { static_cast<void>(hub->RegisterSmartAdapterEvent(iconPath)); });
    // Shows an adapter state that was there before the agent.
    if (IsWindows8OrGreater() && hub != nullptr)
        TakeStep(ORVIK_FUNCTION, [hub] { hub->ProcessSmartAdapterEvent(); });
    CreateNotificationsHandler(ORVIK_FUNCTION, iconPath);
    StartUsbCEvents(ORVIK_FUNCTION, iconPath);
    if (hub != nullptr)
        RegisterFirmwareEvents(ORVIK_FUNCTION, *hub);

    const int exitCode = RunMessageLoop(accelerators);
    sessionMutex.reset();
    return exitCode;
}
