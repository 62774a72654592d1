#include "simulator/doubles/JournalText.h"
#include "simulator/machine/Commands.h"

#include <windows.h>

#include <dbt.h>
#include <objbase.h>

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <vector>

namespace Simulator
{
namespace
{
constexpr wchar_t g_mainWindowClass[] = L"ORVIKNOTIFICATIONS";

BOOL CALLBACK KeepMainWindow(HWND window, LPARAM found)
{
    wchar_t name[64] = {};
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    GetClassNameW(window, name, ARRAYSIZE(name));
    if (process != GetCurrentProcessId() || lstrcmpW(name, g_mainWindowClass) != 0)
        return TRUE;
    *reinterpret_cast<HWND*>(found) = window;
    return FALSE;
}

HWND MainWindow()
{
    HWND window = nullptr;
    EnumWindows(&KeepMainWindow, reinterpret_cast<LPARAM>(&window));
    if (window == nullptr)
        throw std::runtime_error("the agent has no main window");
    return window;
}

// Waits until the agent has handled it.
nlohmann::json Send(UINT message, WPARAM wParam, LPARAM lParam)
{
    return {{"result", SendMessageW(MainWindow(), message, wParam, lParam)}};
}

GUID GuidFromText(const std::string& text)
{
    GUID guid{};
    if (FAILED(IIDFromString(Wide(text).c_str(), &guid)))
        throw std::runtime_error(text + " is no GUID");
    return guid;
}
} // namespace

// {"message": number, "wparam": number, "lparam": number}: posted as Windows posts it.
nlohmann::json PostToMainWindow(const nlohmann::json& command)
{
    if (!PostMessageW(MainWindow(), command.at("message").get<UINT>(), command.value("wparam", WPARAM{0}),
                      command.value("lparam", LPARAM{0})))
        throw std::runtime_error("PostMessageW failed with " + std::to_string(GetLastError()));
    return nlohmann::json::object();
}

// The same sent; answers what the window procedure returned.
nlohmann::json SendToMainWindow(const nlohmann::json& command)
{
    return Send(command.at("message").get<UINT>(), command.value("wparam", WPARAM{0}),
                command.value("lparam", LPARAM{0}));
}

// {"event": number, "type": number, "class": GUID, "name": path, "size": what the structure says of itself,
//  "structure": false to send none}
nlohmann::json SendDeviceChange(const nlohmann::json& command)
{
    const auto event = command.at("event").get<WPARAM>();
    if (!command.value("structure", true))
        return Send(WM_DEVICECHANGE, event, 0);

    const std::wstring name = Wide(command.value("name", std::string()));
    const std::size_t size = sizeof(DEV_BROADCAST_DEVICEINTERFACE_W) + name.size() * sizeof(wchar_t);
    std::vector<std::max_align_t> memory(size / sizeof(std::max_align_t) + 1);
    auto* const broadcast = reinterpret_cast<DEV_BROADCAST_DEVICEINTERFACE_W*>(memory.data());
    broadcast->dbcc_size = command.value("size", static_cast<DWORD>(size));
    broadcast->dbcc_devicetype = command.at("type").get<DWORD>();
    broadcast->dbcc_classguid = GuidFromText(command.at("class").get<std::string>());
    std::ranges::copy(name, broadcast->dbcc_name);
    return Send(WM_DEVICECHANGE, event, reinterpret_cast<LPARAM>(broadcast));
}
} // namespace Simulator
