#pragma once

#include <windows.h>

#include <string>

// A window of this thread that no screen shows.
class HiddenWindow
{
public:
    explicit HiddenWindow(WNDPROC procedure = &DefWindowProcW)
    {
        WNDCLASSW windowClass{};
        windowClass.lpfnWndProc = procedure;
        windowClass.lpszClassName = L"HiddenWindow";
        RegisterClassW(&windowClass);
        m_hwnd = CreateWindowExW(0, L"HiddenWindow", L"before", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    }
    HiddenWindow(const HiddenWindow&) = delete;
    HiddenWindow& operator=(const HiddenWindow&) = delete;
    ~HiddenWindow()
    {
        DestroyWindow(m_hwnd);
        UnregisterClassW(L"HiddenWindow", nullptr);
    }

    [[nodiscard]] HWND Get() const noexcept { return m_hwnd; }
    [[nodiscard]] std::wstring Text() const
    {
        wchar_t text[64] = L"";
        GetWindowTextW(m_hwnd, text, 64);
        return text;
    }

private:
    HWND m_hwnd;
};
