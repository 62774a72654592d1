#include "simulator/console/Step.h"
#include "simulator/doubles/JournalText.h"

#include <fstream>

namespace Simulator
{
namespace
{
using Action = std::function<void(ScenarioRun&)>;

constexpr char g_usualPath[] = "%APPDATA%\\orvikLog\\OrvikNotifications.log";
constexpr std::string_view g_byteOrderMark = "\xEF\xBB\xBF";

std::string ReadLogFile(const std::wstring& path)
{
    std::ifstream file{std::filesystem::path(path), std::ios::binary};
    if (!file)
        throw StepFailure(Narrow(path) + " cannot be read");
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void CheckWhole(const std::string& content)
{
    if (!content.starts_with(g_byteOrderMark))
        throw StepFailure("the log file has no byte-order mark");
    if (content.size() > g_byteOrderMark.size() && !content.ends_with("\r\n"))
        throw StepFailure("the last line of the log file is not whole");
}

// {"path", "contains": [texts, in this order], "lacks": [texts], "least-bytes": n}: the log file
// of the agent, whole.
Action ReadExpectLogFile(const nlohmann::json& value, const std::string& place)
{
    ObjectReader reader(value, place);
    const std::wstring written = Wide(reader.Get<std::string>("path", g_usualPath));
    const auto contains = reader.Get<std::vector<std::string>>("contains", {});
    const auto lacks = reader.Get<std::vector<std::string>>("lacks", {});
    const auto leastBytes = reader.Get<std::size_t>("least-bytes", 0);
    reader.Finish();
    return [=](ScenarioRun& run)
    {
        const std::string content = ReadLogFile(ExpandVariables(written));
        CheckWhole(content);
        std::size_t position = 0;
        for (const std::string& text : contains)
        {
            position = content.find(text, position);
            if (position == std::string::npos)
                throw StepFailure("the log file lacks \"" + text + "\" at its place; it holds:\n" + content);
            position += text.size();
        }
        for (const std::string& text : lacks)
        {
            if (content.find(text) != std::string::npos)
                throw StepFailure("the log file holds \"" + text + "\"");
        }
        if (content.size() < leastBytes)
            throw StepFailure("the log file has " + std::to_string(content.size()) + " bytes only");
        run.Say("file", "the log file is whole: " + std::to_string(std::ranges::count(content, '\n')) + " lines");
    };
}
} // namespace

std::vector<StepKind> LogFileExpectations()
{
    return {{"expect-log-file", &ReadExpectLogFile}};
}
} // namespace Simulator
