#include "simulator/console/Step.h"

#include <windows.h>

#include <random>
#include <thread>

namespace Simulator
{
namespace
{
// {} or {"exit-code": number}: the agent is to end by itself.
std::function<void(ScenarioRun&)> ReadStart(const nlohmann::json& value, const std::string& place)
{
    ObjectReader reader(value, place);
    std::optional<DWORD> exitCode;
    if (reader.Find("exit-code") != nullptr)
        exitCode = reader.Get<DWORD>("exit-code");
    reader.Finish();
    return [exitCode](ScenarioRun& run) { run.Start(exitCode); };
}

// {"exit-code": 0, "message": WM_CLOSE, "wparam": 0}
std::function<void(ScenarioRun&)> ReadStop(const nlohmann::json& value, const std::string& place)
{
    ObjectReader reader(value, place);
    const auto message = reader.Get<unsigned>("message", WM_CLOSE);
    const auto wParam = reader.Get<std::uint64_t>("wparam", 0);
    const auto exitCode = reader.Get<DWORD>("exit-code", 0);
    reader.Finish();
    return [=](ScenarioRun& run) { run.Stop(message, wParam, exitCode); };
}

// {"after": ms, "within": ms}: after so many milliseconds, and at a random moment of so many more.
std::function<void(ScenarioRun&)> ReadKill(const nlohmann::json& value, const std::string& place)
{
    ObjectReader reader(value, place);
    const auto after = reader.Get<unsigned>("after", 0);
    const auto within = reader.Get<unsigned>("within", 0);
    reader.Finish();
    return [=](ScenarioRun& run)
    {
        static std::mt19937 generator{std::random_device{}()};
        const unsigned pause = after + std::uniform_int_distribution<unsigned>(0, within)(generator);
        std::this_thread::sleep_for(std::chrono::milliseconds(pause));
        run.Kill();
    };
}

// {"exit-code": 1}
std::function<void(ScenarioRun&)> ReadSecondCopy(const nlohmann::json& value, const std::string& place)
{
    ObjectReader reader(value, place);
    const auto exitCode = reader.Get<DWORD>("exit-code", 1);
    reader.Finish();
    return [=](ScenarioRun& run) { run.RunSecondCopy(exitCode); };
}

// {"message": number, "wparam": number, "lparam": number} to the main window; with "wait" the step ends when the agent
// has handled it.
std::function<void(ScenarioRun&)> ReadMessage(const nlohmann::json& value, const std::string& place)
{
    ObjectReader reader(value, place);
    const char* const way = reader.Get<bool>("wait", false) ? "send-message" : "message";
    const nlohmann::json command = {{"command", way},
                                    {"message", reader.Get<unsigned>("message")},
                                    {"wparam", reader.Get<std::uint64_t>("wparam", 0)},
                                    {"lparam", reader.Get<std::int64_t>("lparam", 0)}};
    reader.Finish();
    return [command](ScenarioRun& run)
    {
        run.Mark();
        run.Command(command);
    };
}
} // namespace

std::vector<StepKind> AgentSteps()
{
    return {{"start", &ReadStart},
            {"stop", &ReadStop},
            {"kill-agent", &ReadKill},
            {"second-copy", &ReadSecondCopy},
            {"message", &ReadMessage}};
}
} // namespace Simulator
