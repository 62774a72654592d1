#include "simulator/console/DialogChoice.h"
#include "simulator/console/Step.h"
#include "simulator/doubles/JournalText.h"

#include <algorithm>

namespace Simulator
{
namespace
{
using Action = std::function<void(ScenarioRun&)>;

constexpr const char* g_answers[] = {"ok", "close", "esc", "check", "link"};

void CheckAnswer(const std::string& with, const std::string& place)
{
    if (std::ranges::find(g_answers, with) == std::end(g_answers))
        throw UsageError(place + ": a dialog is answered with ok, close, esc, check or link");
}

// "ok", "close", "esc", "check" or "link" for the last dialog opened, or {"with", "number" or what the dialog is like}.
// The step ends when the agent has done what the answer makes it do at once.
Action ReadAnswerDialog(const nlohmann::json& value, const std::string& place)
{
    const nlohmann::json object = value.is_string() ? nlohmann::json{{"with", value}} : value;
    ObjectReader reader(object, place);
    const auto with = reader.Get<std::string>("with");
    CheckAnswer(with, place);
    const DialogChoice choice(reader);
    reader.Finish();
    return [=](ScenarioRun& run)
    {
        const unsigned number = choice.Find(run);
        run.Mark();
        run.Command({{"command", "answer-dialog"}, {"number", number}, {"with", with}});
    };
}

// A file name below the folder of --pictures, or {"file", "number" or what the dialog is like}.
Action ReadPictureDialog(const nlohmann::json& value, const std::string& place)
{
    const nlohmann::json object = value.is_string() ? nlohmann::json{{"file", value}} : value;
    ObjectReader reader(object, place);
    const auto name = reader.Get<std::string>("file");
    const DialogChoice choice(reader);
    reader.Finish();
    return [=](ScenarioRun& run)
    {
        const unsigned number = choice.Find(run);
        const std::filesystem::path& folder = run.GetOptions().m_pictures;
        if (folder.empty())
        {
            run.Say("console", "no picture of the dialog: --pictures was not given");
            return;
        }
        std::filesystem::create_directories(folder);
        const std::filesystem::path file = folder / Wide(name);
        run.Command({{"command", "picture-dialog"}, {"number", number}, {"file", Narrow(file.native())}});
        run.Say("console", "takes a picture of dialog " + std::to_string(number) + ": " + name);
    };
}
} // namespace

std::vector<StepKind> DialogSteps()
{
    return {{"answer-dialog", &ReadAnswerDialog}, {"picture-dialog", &ReadPictureDialog}};
}
} // namespace Simulator
