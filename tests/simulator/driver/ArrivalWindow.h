#pragma once

#include "shared/OwnerTypes.h"

#include <windows.h>

#include <chrono>
#include <string>
#include <vector>

// A hidden window that asked for the arrivals of USB devices, and what it was told.
class ArrivalWindow
{
public:
    struct Change
    {
        WPARAM m_event;
        std::wstring m_strName;
    };

    ArrivalWindow();
    ArrivalWindow(const ArrivalWindow&) = delete;
    ArrivalWindow& operator=(const ArrivalWindow&) = delete;
    ~ArrivalWindow();

    // Handles messages until there are so many changes; what is there after that time at the latest.
    const std::vector<Change>& WaitFor(std::size_t count, std::chrono::milliseconds limit);

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    HWND m_hwnd = nullptr;
    HDEVNOTIFY m_hNotification = nullptr;
    std::vector<Change> m_lstChanges;
};
