#pragma once

#include "app/MainWindow.h"
#include "app/ProcessInstances.h"
#include "tests/app/window/SystemCalls.h"
#include "tests/wmievents/MachineTest.h"

#include <string>

namespace Tests
{
// The window procedure in a simulated machine whose firmware holds one message per port that may be asked for: 2 for
// all of them on the ACPI path (0), 3 for all of them on the WMI path (255). There is no hub and no handler at first.
class WindowMessageTest : public MachineTest
{
protected:
    static constexpr const char* MessageOfAcpi = "The device plugged into the USB-C port cannot charge your PC.";
    static constexpr const char* MessageOfWmi = "USB device is requesting more power than system can provide.";

    WindowMessageTest();
    ~WindowMessageTest() override;

    // The hub, as start-up makes it.
    static void MakeHub();
    // The handler, initialised on a machine with that identifier and that answer of "Platform.USBC.Supported".
    static void MakeHandler(const char* machineId, bool isSupported);

    // Empties log and journal, then calls the window procedure.
    LRESULT Send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);

    // Texts of the toasts since then.
    [[nodiscard]] static std::vector<std::string> ToastTexts();

    HWND m_hwnd = reinterpret_cast<HWND>(0x4444);
    SystemCalls m_system;
};
} // namespace Tests
