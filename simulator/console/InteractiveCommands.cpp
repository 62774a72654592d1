#include "simulator/console/InteractiveCommands.h"

#include "simulator/console/Failure.h"

namespace Simulator
{
namespace
{
using Steps = std::vector<nlohmann::json>;

int Number(const std::string& text)
{
    try
    {
        return std::stoi(text, nullptr, 0);
    }
    catch (const std::exception&)
    {
        throw UsageError("\"" + text + "\" is not a number");
    }
}

// Without a number, the toast that was shown last.
unsigned ToastNumber(const std::string& text)
{
    return text.empty() ? 0u : static_cast<unsigned>(Number(text));
}

bool IsOn(const std::string& text)
{
    if (text != "on" && text != "off")
        throw UsageError("\"on\" or \"off\" is expected");
    return text == "on";
}

Steps Status(const std::string& rest)
{
    const nlohmann::json answer = {{"answer", {{"i4", Number(rest)}}}};
    return {{{"facts", {{"commands", {{"SmartAdapter.Status", answer}}}}}}, {{"event", 3}}};
}

Steps Event(const std::string& rest)
{
    return {{{"event", Number(rest)}}};
}

Steps Bios(const std::string& rest)
{
    return {{{"event", {{"class", "OrvikBIOS_BIOSEvent"}, {"description", rest}}}}};
}

Steps Click(const std::string& rest)
{
    return {{{"click", ToastNumber(rest)}}};
}

Steps Dismiss(const std::string& rest)
{
    return {{{"dismiss", ToastNumber(rest)}}};
}

Steps TimeOut(const std::string& rest)
{
    return {{{"time-out", ToastNumber(rest)}}};
}

Steps Picture(const std::string& rest)
{
    return {{{"picture", rest.empty() ? "toast.png" : rest}}};
}

Steps Suppress(const std::string& rest)
{
    return {{{"policies", {{"SuppressAllNotifications", IsOn(rest) ? "true" : "false"}}}}};
}

Steps Component(const std::string& rest)
{
    return {{{"installed", {{"notification-component", IsOn(rest)}}}}};
}

Steps Copy(const std::string&)
{
    return {{{"second-copy", nlohmann::json::object()}}};
}

struct KeyboardCommand
{
    const char* m_pWord;
    const char* m_pRest;
    const char* m_pMeaning;
    Steps (*m_pfnSteps)(const std::string& rest);
};

constexpr KeyboardCommand g_commands[] = {
    {"status", "N", "the power adapter changes to status N (2 to 5 give a toast)", &Status},
    {"event", "N", "the firmware raises event N", &Event},
    {"bios", "TEXT", "the firmware raises a public event with that description", &Bios},
    {"click", "[N]", "click a toast", &Click},
    {"dismiss", "[N]", "dismiss a toast", &Dismiss},
    {"timeout", "[N]", "let a toast time out", &TimeOut},
    {"picture", "[FILE]", "write a picture of the toast (with --pictures)", &Picture},
    {"suppress", "on|off", "the administrator silences all notifications", &Suppress},
    {"component", "on|off", "the platform's notification component is installed", &Component},
    {"copy", "", "start a second copy of the agent", &Copy},
};
} // namespace

std::string InteractiveHelp()
{
    std::string help = "Type an event and press Enter:\n";
    for (const KeyboardCommand& command : g_commands)
    {
        std::string left = std::string(command.m_pWord) + " " + command.m_pRest;
        left.resize(18, ' ');
        help += "  " + left + command.m_pMeaning + "\n";
    }
    help += "  {...}             any step of a scenario, as JSON\n";
    help += "  quit              end the agent\n";
    return help;
}

std::vector<nlohmann::json> StepsOfLine(const std::string& line)
{
    if (line.starts_with('{'))
    {
        nlohmann::json step = nlohmann::json::parse(line, nullptr, false);
        if (step.is_discarded())
            throw UsageError("this is not JSON");
        return {std::move(step)};
    }
    const std::size_t blank = line.find(' ');
    const std::string word = line.substr(0, blank);
    const std::string rest = blank == std::string::npos ? "" : line.substr(line.find_first_not_of(' ', blank));
    for (const KeyboardCommand& command : g_commands)
    {
        if (word == command.m_pWord)
            return command.m_pfnSteps(rest);
    }
    throw UsageError(InteractiveHelp());
}
} // namespace Simulator
