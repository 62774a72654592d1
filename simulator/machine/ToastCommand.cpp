#include "simulator/machine/Commands.h"

#include "simulator/doubles/JournalText.h"
#include "simulator/toasts/ToastDesktop.h"

#include <stdexcept>

namespace Simulator
{
namespace
{
// 0 stands for the toast on the screen that was shown last.
unsigned NumberOf(const nlohmann::json& command)
{
    if (const unsigned number = command.value("number", 0u); number != 0)
        return number;
    const auto visible = ToastDesktop::Instance().Visible();
    if (visible.empty())
        throw std::runtime_error("there is no toast on the screen");
    return static_cast<unsigned>(visible.back());
}

void Check(HRESULT hr)
{
    if (FAILED(hr))
        throw std::runtime_error("there is no such toast on the screen (" + HResultText(hr) + ")");
}
} // namespace

// {"action": "click" | "dismiss" | "time-out" | "fail", "number": n}; answers when the agent has handled it.
nlohmann::json ActOnToast(const nlohmann::json& command)
{
    ToastDesktop& desktop = ToastDesktop::Instance();
    const unsigned number = NumberOf(command);
    const std::string action = command.at("action").get<std::string>();
    if (action == "click")
        Check(desktop.Click(number));
    else if (action == "dismiss")
        Check(desktop.Dismiss(number));
    else if (action == "time-out")
        Check(desktop.TimeOut(number));
    else if (action == "fail")
        Check(desktop.Fail(number, HResultFromJson(command.value("hr", nlohmann::json()), E_FAIL)));
    else
        throw std::runtime_error("a toast can be clicked, dismissed, timed out or made to fail");
    desktop.WaitForEvents();
    return {{"number", number}};
}

// {"number": n, "file": path of a PNG file}
nlohmann::json TakePicture(const nlohmann::json& command)
{
    Check(ToastDesktop::Instance().Picture(NumberOf(command), Wide(command.at("file").get<std::string>())));
    return nlohmann::json::object();
}
} // namespace Simulator
