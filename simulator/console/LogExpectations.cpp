#include "simulator/console/LogLine.h"
#include "simulator/console/Step.h"

namespace Simulator
{
namespace
{
using Action = std::function<void(ScenarioRun&)>;

// What a log line must be; empty texts are not looked at.
struct LogPattern
{
    std::string m_strText;
    std::string m_strContains;
    std::string m_strLevel;
    std::string m_strFunction;

    [[nodiscard]] bool Fits(const Entry& entry) const
    {
        const auto line = ReadLogLine(entry);
        return line && (m_strText.empty() || line->m_strMessage == m_strText) &&
               (m_strLevel.empty() || line->m_strLevel == m_strLevel) &&
               (m_strFunction.empty() || line->m_strFunction == m_strFunction) &&
               line->m_strMessage.find(m_strContains) != std::string::npos;
    }

    [[nodiscard]] std::string Description() const
    {
        std::string text = "\"" + (m_strText.empty() ? m_strContains : m_strText) + "\"";
        if (!m_strFunction.empty())
            text += " from " + m_strFunction;
        return m_strLevel.empty() ? text : text + " (" + m_strLevel + ")";
    }
};

// The text of the line, or {"text", "contains", "level", "function"}.
LogPattern ReadPattern(const nlohmann::json& value, const std::string& place)
{
    if (value.is_string())
        return {value, "", "", ""};
    ObjectReader reader(value, place);
    LogPattern pattern{reader.Get<std::string>("text", ""), reader.Get<std::string>("contains", ""),
                       reader.Get<std::string>("level", ""), reader.Get<std::string>("function", "")};
    reader.Finish();
    return pattern;
}

std::string LinesSeen(const ScenarioRun& run)
{
    std::string seen;
    for (const Entry& entry : run.SinceMark())
    {
        const auto line = ReadLogLine(entry);
        if (line && line->m_strLevel != "TraceIn" && line->m_strLevel != "TraceOut")
            seen += "\n    " + line->m_strLevel + " " + line->m_strFunction + ": " + line->m_strMessage;
    }
    return seen.empty() ? "none" : seen;
}

Action ReadExpectLog(const nlohmann::json& value, const std::string& place)
{
    const LogPattern pattern = ReadPattern(value, place);
    return [pattern](ScenarioRun& run)
    {
        const auto entry = run.Take([&](const Entry& candidate) { return pattern.Fits(candidate); });
        if (!entry)
            throw StepFailure("the log line " + pattern.Description() + " was not written; lines: " + LinesSeen(run));
        run.Say("log", ReadLogLine(*entry)->m_strMessage);
    };
}

Action ReadExpectNoLog(const nlohmann::json& value, const std::string& place)
{
    const LogPattern pattern = ReadPattern(value, place);
    return [pattern](ScenarioRun& run)
    {
        for (const Entry& entry : run.SinceMark())
        {
            if (pattern.Fits(entry))
                throw StepFailure("the log line " + pattern.Description() + " was written");
        }
    };
}
} // namespace

std::vector<StepKind> LogExpectations()
{
    return {{"expect-log", &ReadExpectLog}, {"expect-no-log", &ReadExpectNoLog}};
}
} // namespace Simulator
