#include "simulator/doubles/JournalText.h"
#include "simulator/machine/Commands.h"
#include "simulator/machine/DialogDesktop.h"

#include <map>
#include <stdexcept>

namespace Simulator
{
namespace
{
constexpr std::chrono::seconds g_limit{30};

DialogAnswer AnswerFromText(const std::string& text)
{
    static const std::map<std::string, DialogAnswer> answers = {{"ok", DialogAnswer::Ok},
                                                                {"close", DialogAnswer::Close},
                                                                {"esc", DialogAnswer::Esc},
                                                                {"check", DialogAnswer::Check},
                                                                {"link", DialogAnswer::Link}};
    const auto answer = answers.find(text);
    if (answer == answers.end())
        throw std::runtime_error("a dialog is not answered with " + text);
    return answer->second;
}
} // namespace

// What each open dialog shows now, in the order of opening.
nlohmann::json ListDialogs(const nlohmann::json&)
{
    DialogDesktop& desktop = DialogDesktop::Instance();
    nlohmann::json dialogs = nlohmann::json::array();
    for (const unsigned number : desktop.Open())
    {
        try
        {
            dialogs.push_back(desktop.Describe(number));
        }
        catch (const std::runtime_error&) // NOLINT(bugprone-empty-catch)
        {
            // It has closed meanwhile.
        }
    }
    return {{"dialogs", dialogs}};
}

// {"number": n, "with": "ok" | "close" | "esc" | "check" | "link"}; answers when the agent has handled it.
nlohmann::json AnswerDialog(const nlohmann::json& command)
{
    DialogDesktop::Instance().Answer(command.at("number").get<unsigned>(),
                                     AnswerFromText(command.at("with").get<std::string>()), g_limit);
    return nlohmann::json::object();
}

// {"number": n, "file": path of a PNG file}
nlohmann::json PictureDialog(const nlohmann::json& command)
{
    const HRESULT hr = DialogDesktop::Instance().Picture(command.at("number").get<unsigned>(),
                                                         Wide(command.at("file").get<std::string>()));
    if (FAILED(hr))
        throw std::runtime_error("the dialog cannot be pictured (" + HResultText(hr) + ")");
    return nlohmann::json::object();
}
} // namespace Simulator
