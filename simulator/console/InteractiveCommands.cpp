#include "simulator/console/InteractiveCommands.h"

#include "simulator/console/Failure.h"

#include <sstream>

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
        throw UsageError(R"("on" or "off" is expected)");
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

Steps Suspend(const std::string&)
{
    return {{{"power", "suspend"}}};
}

Steps Resume(const std::string&)
{
    return {{{"power", "resume"}}};
}

Steps Lock(const std::string&)
{
    return {{{"session", "lock"}}};
}

Steps Unlock(const std::string&)
{
    return {{{"session", "unlock"}}};
}

// The words after one another.
std::vector<std::string> Words(const std::string& rest)
{
    std::vector<std::string> words;
    std::istringstream stream(rest);
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

// "8042" hears of USB-C through the ACPI event device; which way it is the agent finds out at its start.
Steps Machine(const std::string& rest)
{
    const nlohmann::json answer = {{"answer", {{"bstr", rest}}}};
    return {{{"facts", {{"commands", {{"Platform.MachineID", answer}}}}}},
            {{"stop", nlohmann::json::object()}},
            {{"start", nlohmann::json::object()}}};
}

Steps UsbC(const std::string& rest)
{
    const nlohmann::json answer = {{"answer", {{"bool", IsOn(rest)}}}};
    return {{{"facts", {{"commands", {{"Platform.USBC.Supported", answer}}}}}},
            {{"stop", nlohmann::json::object()}},
            {{"start", nlohmann::json::object()}}};
}

Steps Messages(const std::string& rest)
{
    const std::vector<std::string> ids = Words(rest);
    std::string xml = "<GetUsbCMessagesOutput><Output><Data NumberOfPorts='1'><Port0 NumberOfMessages='" +
                      std::to_string(ids.size()) + "'>";
    for (std::size_t i = 0; i < ids.size(); ++i)
        xml += "<Message" + std::to_string(i) + " MessageId='" + std::to_string(Number(ids[i])) + "' Valid='true'/>";
    xml += "</Port0></Data></Output></GetUsbCMessagesOutput>";
    return {{{"facts", {{"commands", {{"Platform.USBC.Messages", {{"answer", {{"bstr", xml}}}}}}}}}}};
}

Steps Acpi(const std::string& rest)
{
    return {{{"acpi-event", rest.empty() ? "0xA0" : rest}}};
}

Steps AcpiFail(const std::string& rest)
{
    return {{{"acpi-failure", rest.empty() ? "0xC0000001" : rest}}};
}

Steps AcpiDevice(const std::string& rest)
{
    return {{{"acpi-device", IsOn(rest)}}};
}

// The port, and the class of the device; a billboard device without it.
Steps PlugIn(const std::string& rest)
{
    const std::vector<std::string> words = Words(rest);
    const nlohmann::json port = words.empty() ? "1" : words[0];
    return {{{"plug", {{"port", port}, {"class", words.size() < 2 ? "0x11" : words[1]}}}}};
}

Steps Unplug(const std::string& rest)
{
    return {{{"unplug", rest.empty() ? "1" : rest}}};
}

// The event of the firmware's protection with that identifier.
Steps Veritor(const std::string& rest)
{
    return {{{"event", {{"id", 0x20002}, {"data", Number(rest)}}}}};
}

Steps Privacy(const std::string& rest)
{
    return {{{"event", {{"id", 20}, {"data", rest.empty() ? 1 : Number(rest)}}}}};
}

// Whoever subscribed to 33 gets it.
Steps Intrusion(const std::string&)
{
    const nlohmann::json notice = {{"EventID", 83}, {"EventData", 0}};
    return {{{"event", {{"class", "orvikBEvnt"}, {"objects", {notice}}, {"event-id", 33}}}}};
}

// How, and the number of the dialog; without it, the one that was opened last.
Steps Answer(const std::string& rest)
{
    const std::vector<std::string> words = Words(rest);
    nlohmann::json answer = {{"with", words.empty() ? "ok" : words[0]}};
    if (words.size() > 1)
        answer["number"] = Number(words[1]);
    return {{{"answer-dialog", answer}}};
}

Steps Look(const std::string& rest)
{
    return {{{"picture-dialog", rest.empty() ? "dialog.png" : rest}}};
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
    {"sleep", "", "the computer goes to sleep", &Suspend},
    {"wake", "", "the computer wakes up", &Resume},
    {"lock", "", "the session is locked", &Lock},
    {"unlock", "", "the session is unlocked", &Unlock},
    {"machine", "ID", "another machine, and the agent anew: 8042 has the ACPI event device", &Machine},
    {"usbc", "on|off", "the machine has USB-C messages, and the agent anew", &UsbC},
    {"messages", "ID ...", "what the firmware holds about USB-C ports from now on", &Messages},
    {"acpi", "[BYTE]", "the ACPI device reports an event; 0xA0 is one of USB-C", &Acpi},
    {"acpi-fail", "[STATUS]", "the request at the ACPI device fails", &AcpiFail},
    {"acpi-device", "on|off", "the ACPI device is there", &AcpiDevice},
    {"plug", "[PORT CLASS]", "a USB device is plugged in; class 0x11 is a billboard device", &PlugIn},
    {"unplug", "[PORT]", "a USB device is unplugged", &Unplug},
    {"veritor", "N", "the firmware's protection reports N (0, 1, 2, 4 and 5 show a dialog)", &Veritor},
    {"privacy", "[N]", "the privacy panel reports N; 1: it is not supported", &Privacy},
    {"intrusion", "", "the firmware's protection against intrusions has been switched off", &Intrusion},
    {"answer", "[HOW N]", "answer a dialog with ok, close, esc, check or link", &Answer},
    {"look", "[FILE]", "write a picture of the dialog (with --pictures)", &Look},
    {"copy", "", "start a second copy of the agent", &Copy},
};
} // namespace

std::string InteractiveHelp()
{
    std::string help = "Type an event and press Enter:\n";
    for (const KeyboardCommand& command : g_commands)
    {
        std::string left = std::string(command.m_pWord) + " " + command.m_pRest;
        left.resize(20, ' ');
        help += "  " + left + command.m_pMeaning + "\n";
    }
    help += "  {...}               any step of a scenario, as JSON\n";
    help += "  quit                end the agent\n";
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
