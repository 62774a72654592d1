#include "simulator/machine/PersonInput.h"

namespace Simulator
{
void ClickOn(HWND control)
{
    RECT area{};
    GetClientRect(control, &area);
    const LPARAM middle = MAKELPARAM(area.right / 2, area.bottom / 2);
    PostMessageW(control, WM_LBUTTONDOWN, MK_LBUTTON, middle);
    PostMessageW(control, WM_LBUTTONUP, 0, middle);
}

void ClickOnCross(HWND window)
{
    PostMessageW(window, WM_SYSCOMMAND, SC_CLOSE, 0);
}

void PressEscape(HWND window)
{
    GUITHREADINFO input{};
    input.cbSize = sizeof(input);
    GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &input);
    const HWND target = IsChild(window, input.hwndFocus) ? input.hwndFocus : window;
    constexpr LPARAM firstPress = 1;
    constexpr auto released = static_cast<LPARAM>(0xC0000001);
    PostMessageW(target, WM_KEYDOWN, VK_ESCAPE, firstPress);
    PostMessageW(target, WM_KEYUP, VK_ESCAPE, released);
}
} // namespace Simulator
