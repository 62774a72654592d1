#pragma once

#include "simulator/toasts/GdiObjects.h"
#include "simulator/toasts/ToastContent.h"

#include <windows.h>

namespace Simulator
{
// One toast's window: above everything, never active, clickable. A click on the cross dismisses the toast, any other
// click activates it. Belongs to the screen's thread.
class ToastWindow
{
public:
    ToastWindow(unsigned number, const ToastContent& content);
    ToastWindow(const ToastWindow&) = delete;
    ToastWindow& operator=(const ToastWindow&) = delete;
    ~ToastWindow();

    // Null when there is no screen to show it on.
    [[nodiscard]] HWND Window() const noexcept { return m_hwnd; }
    [[nodiscard]] SIZE Size() const noexcept { return m_picture.Size(); }
    // Shows the window there.
    void MoveTo(int left, int top);

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void Paint() const;
    void Clicked(POINT place) const;

    const unsigned m_nNumber;
    const MemoryBitmap m_picture;
    HWND m_hwnd = nullptr;
};
} // namespace Simulator
