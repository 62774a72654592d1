#include "simulator/console/Step.h"
#include "simulator/doubles/JournalText.h"

namespace Simulator
{
namespace
{
using Action = std::function<void(ScenarioRun&)>;

// The value of these steps is a toast's number; 0 is the toast that was shown last.
Action ToastAction(const char* action, const nlohmann::json& value, const std::string& place)
{
    if (!value.is_number_unsigned())
        throw UsageError(place + ": the number of a toast is expected, 0 for the last one");
    const nlohmann::json command = {{"command", "toast"}, {"action", action}, {"number", value}};
    return [command](ScenarioRun& run)
    {
        run.Mark();
        run.Command(command);
    };
}

Action ReadClick(const nlohmann::json& value, const std::string& place)
{
    return ToastAction("click", value, place);
}

Action ReadDismiss(const nlohmann::json& value, const std::string& place)
{
    return ToastAction("dismiss", value, place);
}

Action ReadTimeOut(const nlohmann::json& value, const std::string& place)
{
    return ToastAction("time-out", value, place);
}

Action ReadFailToast(const nlohmann::json& value, const std::string& place)
{
    return ToastAction("fail", value, place);
}

// A file name below the folder of --pictures; shows the toast that was shown last.
Action ReadPicture(const nlohmann::json& value, const std::string& place)
{
    if (!value.is_string())
        throw UsageError(place + ": a file name is expected");
    const std::wstring name = Wide(value.get<std::string>());
    return [name](ScenarioRun& run)
    {
        const std::filesystem::path& folder = run.GetOptions().m_pictures;
        if (folder.empty())
        {
            run.Say("console", "no picture of the toast: --pictures was not given");
            return;
        }
        std::filesystem::create_directories(folder);
        const std::filesystem::path file = folder / name;
        run.Command({{"command", "picture"}, {"number", 0}, {"file", Narrow(file.native())}});
        run.Say("console", "takes a picture of the toast: " + Narrow(name));
    };
}

Action ReadSay(const nlohmann::json& value, const std::string& place)
{
    if (!value.is_string())
        throw UsageError(place + ": a text is expected");
    return [text = value.get<std::string>()](ScenarioRun& run) { run.Say("", text); };
}
} // namespace

std::vector<StepKind> UserSteps()
{
    return {{"click", &ReadClick},          {"dismiss", &ReadDismiss}, {"time-out", &ReadTimeOut},
            {"fail-toast", &ReadFailToast}, {"picture", &ReadPicture}, {"say", &ReadSay}};
}
} // namespace Simulator
