#include "simulator/machine/Commands.h"

#include <windows.h>

#include <stdexcept>

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
} // namespace

// {"message": number, "wparam": number, "lparam": number}: posted as Windows posts it.
nlohmann::json PostToMainWindow(const nlohmann::json& command)
{
    HWND window = nullptr;
    EnumWindows(&KeepMainWindow, reinterpret_cast<LPARAM>(&window));
    if (window == nullptr)
        throw std::runtime_error("the agent has no main window");
    if (!PostMessageW(window, command.at("message").get<UINT>(), command.value("wparam", WPARAM{0}),
                      command.value("lparam", LPARAM{0})))
        throw std::runtime_error("PostMessageW failed with " + std::to_string(GetLastError()));
    return nlohmann::json::object();
}
} // namespace Simulator
