#pragma once

#include "notifications/NotificationsHandler.h"
#include "usbc/UsbCState.h"
#include "wmievents/OrvikWmiEvents.h"

#include <windows.h>

#include <memory>
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

    // Destroys the object that is there, if any, and has the given one in its place.
    T& Keep(std::unique_ptr<T> object)
    {
        Destroy();
        m_pObject = object.release();
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

// Everything here is written and read by the main thread only; the objects themselves are also used by threads that
// they started or were given to. Beside them: usbc/UsbCState.h, with the main window.

// Module that the window and its resources belong to. Written by InitInstance.
inline constinit HINSTANCE g_hInstance = nullptr;
// String 500. Written by LoadProcessNames.
inline constinit wchar_t g_szTitle[g_nMaxLoadedName]{};
// String 505, also the name of the mutex. Written by LoadProcessNames.
inline constinit wchar_t g_szWindowClass[g_nMaxLoadedName]{};
// The firmware event hub. Made by wWinMain, which registers it and runs one handler itself; null when there was no
// memory. Later its handlers run on WMI's threads.
inline constinit ProcessInstance<Notifications::OrvikWmiEvents::COrvikWmiEvents> g_pWmiHandler;
// Shows the messages of USB-C. Made by wWinMain; null until it is initialised, and when there was no memory.
inline constinit ProcessInstance<Notifications::OrvikNotifications::CNotificationsHandler> g_pNotificationsHandler;
// Whether the present wake-up has been handled. Written by the window procedure.
inline constinit bool g_bResumeHandled = false;
// Registrations for arrivals of USB devices and USB hubs; null while the window is not registered.
inline constinit HDEVNOTIFY g_hUsbDeviceNotification = nullptr;
inline constinit HDEVNOTIFY g_hUsbHubNotification = nullptr;
