#include "app/StartUp.h"

#include "app/ProcessInstances.h"
#include "res/Resource.h"

void LoadProcessNames(HINSTANCE instance)
{
    LoadStringW(instance, IDS_APP_TITLE, g_szTitle, g_nMaxLoadedName);
    LoadStringW(instance, IDS_WINDOW_CLASS, g_szWindowClass, g_nMaxLoadedName);
}

Orvik::Shared::UniqueHandle TakeSessionMutex()
{
    return Orvik::Shared::UniqueHandle(CreateMutexW(nullptr, TRUE, g_szWindowClass));
}

int RunMessageLoop(HACCEL accelerators)
{
    MSG message{};
    // -1, a failure, counts as a message: only WM_QUIT ends the loop.
    while (GetMessageW(&message, nullptr, 0, 0) != 0)
    {
        if (TranslateAcceleratorW(message.hwnd, accelerators, &message) != 0)
            continue;
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return static_cast<int>(message.wParam);
}
