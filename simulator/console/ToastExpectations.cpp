#include "simulator/console/Step.h"

namespace Simulator
{
namespace
{
using Action = std::function<void(ScenarioRun&)>;

bool IsShownToast(const Entry& entry)
{
    return entry.m_strKind == "toast" && entry.m_strSubject == "shown";
}

std::string TextOf(const Entry& toast)
{
    const nlohmann::json texts = toast.m_details.value("texts", nlohmann::json::array());
    return texts.size() > 1 ? texts[1].get<std::string>() : std::string();
}

std::string ToastsSeen(const ScenarioRun& run)
{
    std::string seen;
    for (const Entry& entry : run.SinceMark())
    {
        if (IsShownToast(entry))
            seen += "\n    \"" + entry.m_details.value("title", "") + "\": \"" + TextOf(entry) + "\"";
    }
    return seen.empty() ? "none" : seen;
}

// The text, under the agent's usual title, or {"title", "text"}.
Action ReadExpectToast(const nlohmann::json& value, const std::string& place)
{
    std::string title = "Orvik Notifications";
    std::string text;
    if (value.is_string())
        text = value;
    else
    {
        ObjectReader reader(value, place);
        title = reader.Get<std::string>("title", title);
        text = reader.Get<std::string>("text");
        reader.Finish();
    }
    return [=](ScenarioRun& run)
    {
        const auto isExpected = [&](const Entry& entry)
        { return IsShownToast(entry) && entry.m_details.value("title", "") == title && TextOf(entry) == text; };
        if (!run.Take(isExpected))
            throw StepFailure("no toast \"" + text + "\" was shown; toasts: " + ToastsSeen(run));
    };
}

// The acting step before has waited until the agent had handled it: what is not there now does not come.
Action ReadExpectNoToast(const nlohmann::json& value, const std::string& place)
{
    ObjectReader(value, place).Finish();
    return [](ScenarioRun& run)
    {
        if (const std::string seen = ToastsSeen(run); seen != "none")
            throw StepFailure("no toast was expected; toasts: " + seen);
        run.Say("check", "no toast is shown");
    };
}

// The path of a program, or {"path", "verb", "parameters", "folder", "show"}.
Action ReadExpectProgram(const nlohmann::json& value, const std::string& place)
{
    nlohmann::json details = nlohmann::json::object();
    std::string path;
    if (value.is_string())
        path = value;
    else
    {
        ObjectReader reader(value, place);
        path = reader.Get<std::string>("path");
        for (const char* key : {"verb", "parameters", "folder", "show"})
        {
            if (const nlohmann::json* expected = reader.Find(key))
                details[key] = *expected;
        }
        reader.Finish();
    }
    return [=](ScenarioRun& run)
    {
        const auto entry = run.Take([&](const Entry& candidate)
                                    { return candidate.m_strKind == "program" && candidate.m_strSubject == path; });
        if (!entry)
            throw StepFailure(path + " was not started");
        for (const auto& [key, expected] : details.items())
        {
            if (entry->m_details.value(key, nlohmann::json()) != expected)
                throw StepFailure(std::string(path)
                                      .append(" was started with ")
                                      .append(key)
                                      .append(" ")
                                      .append(entry->m_details[key].dump()));
        }
    };
}

Action ReadExpectNoProgram(const nlohmann::json& value, const std::string& place)
{
    ObjectReader(value, place).Finish();
    return [](ScenarioRun& run)
    {
        for (const Entry& entry : run.SinceMark())
        {
            if (entry.m_strKind == "program")
                throw StepFailure(entry.m_strSubject + " was started");
        }
    };
}
} // namespace

std::vector<StepKind> ToastExpectations()
{
    return {{"expect-toast", &ReadExpectToast},
            {"expect-no-toast", &ReadExpectNoToast},
            {"expect-program", &ReadExpectProgram},
            {"expect-no-program", &ReadExpectNoProgram}};
}
} // namespace Simulator
