#pragma once

#include "wmievents/OrvikWmiEvents.h"

#include <windows.h>

#include <utility>

// The place of one process-wide object. It is left to the system at process end, never destroyed by the program's own
// exit: threads of Windows may still be inside the object then.
template <class T>
class ProcessInstance
{
public:
    constexpr ProcessInstance() = default;
    ProcessInstance(const ProcessInstance&) = delete;
    ProcessInstance& operator=(const ProcessInstance&) = delete;

    // Destroys the object that is there, only then makes the new one.
    template <class... Args>
    T& Create(Args&&... args)
    {
        Destroy();
        m_pObject = new T(std::forward<Args>(args)...);
        return *m_pObject;
    }

    void Destroy() { delete std::exchange(m_pObject, nullptr); }

    // Null until the object is made.
    [[nodiscard]] T* Get() const noexcept { return m_pObject; }

private:
    T* m_pObject = nullptr;
};

// Room for the title and for the class name, in wide characters with the terminating zero.
inline constexpr int g_nMaxLoadedName = 100;

// Everything here is written by the main thread during start-up and read by the main thread only; the objects
// themselves are also used by threads that they started or were given to.

// Module that the window and its resources belong to. Written by InitInstance.
inline constinit HINSTANCE g_hInstance = nullptr;
// The hidden main window. Written by InitInstance.
inline constinit HWND g_hwndMain = nullptr;
// String 500. Written by LoadProcessNames.
inline constinit wchar_t g_szTitle[g_nMaxLoadedName]{};
// String 505, also the name of the mutex. Written by LoadProcessNames.
inline constinit wchar_t g_szWindowClass[g_nMaxLoadedName]{};
// The firmware event hub. Made by wWinMain, which registers it and runs one handler itself; null when there was no
// memory. Later its handlers run on WMI's threads.
inline constinit ProcessInstance<Notifications::OrvikWmiEvents::COrvikWmiEvents> g_pWmiHandler;
// Registrations for arrivals of USB devices and USB hubs; null while the window is not registered.
inline constinit HDEVNOTIFY g_hUsbDeviceNotification = nullptr;
inline constinit HDEVNOTIFY g_hUsbHubNotification = nullptr;
