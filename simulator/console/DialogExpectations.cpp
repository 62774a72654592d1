#include "simulator/console/DialogChoice.h"
#include "simulator/console/Step.h"

#include <algorithm>

namespace Simulator
{
namespace
{
using Action = std::function<void(ScenarioRun&)>;

bool IsOpenedDialog(const Entry& entry)
{
    return entry.m_strKind == "dialog" && entry.m_strSubject == "opened";
}

std::vector<nlohmann::json> DialogsSeen(const ScenarioRun& run)
{
    std::vector<nlohmann::json> dialogs;
    for (const Entry& entry : run.SinceMark())
    {
        if (IsOpenedDialog(entry))
            dialogs.push_back(entry.m_details);
    }
    return dialogs;
}

// The text, or what the dialog is like.
Action ReadExpectDialog(const nlohmann::json& value, const std::string& place)
{
    const DialogPattern pattern(value, place);
    return [pattern](ScenarioRun& run)
    {
        if (!run.Take([&](const Entry& entry) { return IsOpenedDialog(entry) && pattern.Fits(entry.m_details); }))
            throw StepFailure("no such dialog was opened (" + pattern.Description() +
                              "); dialogs: " + DescribeDialogs(DialogsSeen(run)));
    };
}

// The agent shows some dialogs on threads of its own: none comes any more when those have ended.
Action ReadExpectNoDialog(const nlohmann::json& value, const std::string& place)
{
    ObjectReader(value, place).Finish();
    return [](ScenarioRun& run)
    {
        run.WaitForThreads();
        if (const std::vector<nlohmann::json> seen = DialogsSeen(run); !seen.empty())
            throw StepFailure("no dialog was expected; dialogs: " + DescribeDialogs(seen));
        run.Say("check", "no dialog is opened");
    };
}

std::vector<DialogPattern> ReadPatterns(const nlohmann::json& value, const std::string& place)
{
    if (!value.is_array())
        throw UsageError(place + ": a list is expected");
    std::vector<DialogPattern> patterns;
    patterns.reserve(value.size());
    for (std::size_t i = 0; i < value.size(); ++i)
        patterns.emplace_back(value[i], place + "/" + std::to_string(i));
    return patterns;
}

bool AreLike(const std::vector<nlohmann::json>& dialogs, const std::vector<DialogPattern>& patterns)
{
    return std::ranges::equal(dialogs, patterns, [](const nlohmann::json& dialog, const DialogPattern& pattern)
                              { return pattern.Fits(dialog); });
}

// A list: soon so many dialogs are open and look so, in the order of opening.
Action ReadExpectOpenDialogs(const nlohmann::json& value, const std::string& place)
{
    const std::vector<DialogPattern> patterns = ReadPatterns(value, place);
    return [patterns](ScenarioRun& run)
    {
        const std::vector<nlohmann::json> open =
            WaitForDialogs(run, [&](const std::vector<nlohmann::json>& dialogs) { return AreLike(dialogs, patterns); });
        if (AreLike(open, patterns))
            return;
        std::string expected;
        for (const DialogPattern& pattern : patterns)
            expected += "\n    " + pattern.Description();
        throw StepFailure("expected open dialogs: " + (expected.empty() ? "none" : expected) +
                          "; open: " + DescribeDialogs(open));
    };
}
} // namespace

std::vector<StepKind> DialogExpectations()
{
    return {{"expect-dialog", &ReadExpectDialog},
            {"expect-no-dialog", &ReadExpectNoDialog},
            {"expect-open-dialogs", &ReadExpectOpenDialogs}};
}
} // namespace Simulator
