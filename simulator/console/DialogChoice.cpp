#include "simulator/console/DialogChoice.h"

#include <algorithm>
#include <ranges>

namespace Simulator
{
DialogChoice::DialogChoice(ObjectReader& reader) : m_nNumber(reader.Get<unsigned>("number", 0)), m_pattern(reader) {}

bool DialogChoice::Means(const nlohmann::json& dialog) const
{
    return (m_nNumber == 0 || dialog.value("number", 0u) == m_nNumber) && m_pattern.Fits(dialog);
}

unsigned DialogChoice::Find(ScenarioRun& run) const
{
    const auto lastMeant = [this](const std::vector<nlohmann::json>& dialogs)
    {
        return std::ranges::find_if(std::views::reverse(dialogs),
                                    [this](const nlohmann::json& dialog) { return Means(dialog); });
    };
    const std::vector<nlohmann::json> open = WaitForDialogs(run, [&](const std::vector<nlohmann::json>& dialogs)
                                                            { return lastMeant(dialogs) != dialogs.rend(); });
    const auto found = lastMeant(open);
    if (found != open.rend())
        return found->at("number");
    throw StepFailure("no such dialog is open (" + m_pattern.Description() +
                      (m_nNumber == 0 ? "" : ", number " + std::to_string(m_nNumber)) +
                      "); open: " + DescribeDialogs(open));
}

std::vector<nlohmann::json> WaitForDialogs(ScenarioRun& run, const DialogsTest& test)
{
    using Clock = std::chrono::steady_clock;
    const auto isChange = [](const Entry& entry)
    { return entry.m_strKind == "dialog" && (entry.m_strSubject == "opened" || entry.m_strSubject == "closed"); };
    const Clock::time_point end = Clock::now() + run.GetOptions().m_limit;
    while (true)
    {
        const std::size_t next = run.Entries().Size();
        std::vector<nlohmann::json> dialogs =
            run.Command({{"command", "dialogs"}}).at("dialogs").get<std::vector<nlohmann::json>>();
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
        if (test(dialogs) || left.count() <= 0 || !run.Entries().WaitFor(next, left, isChange))
            return dialogs;
    }
}

std::string DescribeDialogs(const std::vector<nlohmann::json>& dialogs)
{
    std::string text;
    for (const nlohmann::json& dialog : dialogs)
        text += "\n    " + DescribeDialog(dialog);
    return text.empty() ? "none" : text;
}
} // namespace Simulator
