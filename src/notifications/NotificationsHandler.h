#pragma once

#include "usbc/PortMessage.h"

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Orvik::Shared
{
class TraceScope;
}

namespace Notifications::OrvikNotifications
{
// Toast ids: that of the n-th message of a list (0 is the first), and that of the billboard message.
[[nodiscard]] constexpr std::uint32_t UsbCToastId(std::size_t position) noexcept
{
    return 341 + static_cast<std::uint32_t>(position);
}
inline constexpr std::uint32_t g_nBillboardToastId = 440;

// String of the text for a USB-C message of the firmware; 0 for a message without one.
[[nodiscard]] UINT UsbCMessageText(std::int32_t messageId) noexcept;

// Turns USB-C events into toasts. The process's handler belongs to the main thread; an event on another thread makes
// one of its own. The thread has initialised COM. No operation raises: what goes wrong is logged, and not shown.
class CNotificationsHandler
{
public:
    // module: where the texts lie; null for the program itself.
    explicit CNotificationsHandler(HINSTANCE module = nullptr) : m_hModule(module) {}
    CNotificationsHandler(const CNotificationsHandler&) = delete;
    CNotificationsHandler& operator=(const CNotificationsHandler&) = delete;

    // Asks the platform which source of USB-C events it has, and finds the configuration tool.
    void Init();

    // Reads the firmware's pending messages for a port, in place of those read before, and shows those that have a
    // text. portNumber: 0 for an event of the ACPI device, 255 for everything that is pending, else the event's port.
    void ShowUsbCMessages(unsigned portNumber);

    // Says that a device's alternate mode is not supported.
    void ShowBillboardMessage();

    // Shows what an event of the ACPI device stands for; always 0.
    int HandleACPIUSbCEvent();

    // Shows one toast, where the platform's notification component is installed. Of the arguments only title and text
    // reach it: what a click starts is the toast's own affair.
    void ShowToaster(std::uint64_t reserved, std::uint32_t toastId, const std::wstring& title, const std::wstring& text,
                     const std::wstring& launchPath, const std::wstring& extra);

    // Whether USB-C events come from the ACPI event device, and whether the firmware supports messages at all. False
    // before Init, and when the platform cannot be asked.
    [[nodiscard]] bool IsUsingACPIUsbCEvent() const noexcept { return m_bUsingACPIUsbCEvent; }
    [[nodiscard]] bool IsUSBCSupported() const noexcept { return m_bUSBCSupported; }

    // Full path of the configuration tool, which lies beside the agent; empty before Init.
    [[nodiscard]] const std::wstring& ConfigurationToolPath() const noexcept { return m_strConfigurationToolPath; }

    // Path of the icon file that toasts show by default; may be empty.
    void SetToastImagePath(const std::wstring& path) { m_strToastImagePath = path; }
    [[nodiscard]] const std::wstring& ToastImagePath() const noexcept { return m_strToastImagePath; }

    // What the last ShowUsbCMessages read.
    [[nodiscard]] const std::vector<PortMessage>& PortMessages() const noexcept { return m_lstPortMessages; }

private:
    void AskPlatform(const Orvik::Shared::TraceScope& trace);
    void ReadAndShow(const Orvik::Shared::TraceScope& trace, unsigned portNumber);
    void ShowMessage(std::size_t position, std::int32_t messageId, const std::wstring& title);
    static void ShowIfInstalled(const Orvik::Shared::TraceScope& trace, const std::wstring& title,
                                const std::wstring& text);

    HINSTANCE m_hModule;
    std::wstring m_strConfigurationToolPath;
    std::wstring m_strToastImagePath;
    bool m_bUsingACPIUsbCEvent = false;
    bool m_bUSBCSupported = false;
    std::vector<PortMessage> m_lstPortMessages;
};

// Full path of the USB-C configuration tool, which lies beside the agent.
[[nodiscard]] std::wstring GetConfigurationToolPath();
} // namespace Notifications::OrvikNotifications
