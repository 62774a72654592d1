#include "simulator/console/FileState.h"
#include "simulator/console/Registration.h"
#include "simulator/console/RegistryValue.h"
#include "simulator/console/Step.h"
#include "simulator/doubles/JournalText.h"

#include <thread>

namespace Simulator
{
namespace
{
using Action = std::function<void(ScenarioRun&)>;

// A long answer is told by its beginning and its length.
std::string Shortened(const nlohmann::json& answer)
{
    constexpr std::size_t limit = 120;
    std::string text = answer.dump();
    if (text.size() <= limit)
        return text;
    std::size_t end = limit;
    // Not within a character.
    while ((static_cast<unsigned char>(text[end]) & 0xC0u) == 0x80u)
        --end;
    return text.substr(0, end) + " ... (" + std::to_string(text.size()) + " bytes)";
}

// "SmartAdapter.Status" answers 3; other facts as they stand.
std::string DescribeFacts(const nlohmann::json& facts)
{
    std::string text;
    const auto add = [&text](const std::string& one) { text += (text.empty() ? "" : ", ") + one; };
    for (const auto& [place, fact] : facts.items())
    {
        if (place != "commands" || !fact.is_object())
        {
            add(place + " " + fact.dump());
            continue;
        }
        for (const auto& [command, behaviour] : fact.items())
        {
            const nlohmann::json answer = behaviour.is_object() ? behaviour.value("answer", behaviour) : behaviour;
            const bool isSimple = answer.is_object() && answer.size() == 1;
            add(behaviour.is_null() ? "\"" + command + "\" is unknown"
                                    : "\"" + command + "\" answers " + Shortened(isSimple ? answer.front() : answer));
        }
    }
    return text;
}

// Facts to overlay.
Action ReadFacts(const nlohmann::json& value, const std::string& place)
{
    if (!value.is_object())
        throw UsageError(place + ": an object is expected");
    return [value](ScenarioRun& run)
    {
        run.MergeFacts(value);
        run.Say("machine", DescribeFacts(value));
    };
}

// {"SuppressAllNotifications": "true", ...}: values of the agent's policy key; null removes one.
Action ReadPolicies(const nlohmann::json& value, const std::string& place)
{
    const std::vector<RegistryValue> values = ReadPolicyValues(value, place);
    return [values, value](ScenarioRun& run)
    {
        for (const RegistryValue& policy : values)
            Apply(policy);
        for (const auto& [name, data] : value.items())
            run.Say("admin",
                    data.is_null() ? "removes the policy " + name : "sets the policy " + name + " to " + data.dump());
    };
}

// A list of registry values.
Action ReadRegistry(const nlohmann::json& value, const std::string& place)
{
    const std::vector<RegistryValue> values = ReadRegistryValues(value, place);
    return [values](ScenarioRun&)
    {
        for (const RegistryValue& one : values)
            Apply(one);
    };
}

// A list of files.
Action ReadFiles(const nlohmann::json& value, const std::string& place)
{
    const std::vector<FileState> files = ReadFileStates(value, place);
    return [files](ScenarioRun&)
    {
        for (const FileState& file : files)
            Apply(file);
    };
}

// {"notification-component": false}: what is installed on the machine.
Action ReadInstalled(const nlohmann::json& value, const std::string& place)
{
    const Installed installed = ReadInstalledParts(value, place);
    return [installed](ScenarioRun& run)
    {
        Register(installed, run.GetOptions().m_machine);
        for (const auto& [part, is] : installed)
            run.Say("admin", (is ? "installs the " : "removes the ") + part);
    };
}

// Milliseconds; for what has no end that could be seen.
Action ReadPause(const nlohmann::json& value, const std::string& place)
{
    if (!value.is_number_unsigned())
        throw UsageError(place + ": milliseconds are expected");
    return [pause = std::chrono::milliseconds(value.get<unsigned>())](ScenarioRun&)
    { std::this_thread::sleep_for(pause); };
}
} // namespace

std::vector<StepKind> StateSteps()
{
    return {{"facts", &ReadFacts}, {"policies", &ReadPolicies},   {"registry", &ReadRegistry},
            {"files", &ReadFiles}, {"installed", &ReadInstalled}, {"pause", &ReadPause}};
}
} // namespace Simulator
