#pragma once

#include "notifications/ToastAbi.h"

#include <windows.h>

// Hears the three events of one shown toast. Windows calls Invoke on its own threads and holds the references; the
// reference count starts at one for the creator.
class ToastEventHandler final : public ToastAbi::IToastActivatedHandler,
                                public ToastAbi::IToastDismissedHandler,
                                public ToastAbi::IToastFailedHandler
{
public:
    // Both windows may be null.
    ToastEventHandler(HWND toastWindow, HWND mainWindow) : m_hwndToast(toastWindow), m_hwndMain(mainWindow) {}
    ToastEventHandler(const ToastEventHandler&) = delete;
    ToastEventHandler& operator=(const ToastEventHandler&) = delete;

    STDMETHOD(QueryInterface)(REFIID iid, void** object) override;
    STDMETHOD_(ULONG, AddRef)() override;
    STDMETHOD_(ULONG, Release)() override;

    // The person clicked the toast: starts the smart-adapter help program, whatever the toast was about. E_FAIL when
    // it cannot be started.
    [[nodiscard]] STDMETHOD(Invoke)(ToastAbi::IToastNotification* sender, IInspectable* args) override;

    // The toast left the screen: logs why. Fails with the arguments' own code when they do not tell.
    [[nodiscard]] STDMETHOD(Invoke)(ToastAbi::IToastNotification* sender,
                                    ToastAbi::IToastDismissedEventArgs* args) override;

    // Windows could not show the toast: tells the main window by its text, waiting for that window's thread. E_FAIL
    // without a window that takes it.
    [[nodiscard]] STDMETHOD(Invoke)(ToastAbi::IToastNotification* sender,
                                    ToastAbi::IToastFailedEventArgs* args) override;

private:
    // Only Release ends the object.
    virtual ~ToastEventHandler() = default;

    LONG m_nReferences = 1;
    [[maybe_unused]] HWND m_hwndToast; // no event is told to this window
    HWND m_hwndMain;
};
