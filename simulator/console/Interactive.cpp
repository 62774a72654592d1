#include "simulator/console/Interactive.h"

#include "simulator/console/Failure.h"
#include "simulator/console/InteractiveCommands.h"
#include "simulator/console/Registration.h"
#include "simulator/console/RegistryValue.h"
#include "simulator/console/StandardMachine.h"
#include "simulator/console/Step.h"
#include "simulator/console/Timeline.h"

#include <windows.h>

#include <algorithm>
#include <iostream>

namespace Simulator
{
namespace
{
// Silence is an answer too: the agent has handled the event by now.
void SayWhetherQuiet(ScenarioRun& run)
{
    run.WaitForThreads();
    const std::vector<Entry> entries = run.SinceMark();
    if (std::ranges::none_of(entries, [](const Entry& entry)
                             { return entry.m_strKind == "toast" || entry.m_strKind == "dialog"; }))
        run.Say("check", "no toast and no dialog is shown");
}

bool TellsTheAgent(const std::string& line)
{
    constexpr const char* words[] = {"status", "event", "bios", "plug", "veritor", "privacy", "intrusion"};
    return line == "acpi" || line.starts_with("acpi ") ||
           std::ranges::any_of(words, [&](const char* word) { return line.starts_with(word); });
}

void CarryOut(ScenarioRun& run, const std::string& line)
{
    try
    {
        for (const nlohmann::json& step : StepsOfLine(line))
            ReadStep(step, "").m_action(run);
        if (TellsTheAgent(line))
            SayWhetherQuiet(run);
    }
    catch (const UsageError& fault)
    {
        Timeline::Print(std::string("  ") + fault.what());
    }
    catch (const StepFailure& failure)
    {
        Timeline::Print(std::string("  ") + failure.what());
    }
}

std::string WithoutLineEnd(std::string line)
{
    line.erase(line.find_last_not_of(" \t\r\n") + 1);
    return line;
}
} // namespace

bool RunInteractive(Options options)
{
    options.m_out /= L"interactive";
    ResetMachine(options.m_out);
    Register(CompleteMachine(), options.m_machine);
    for (const RegistryValue& value : ReadLoggingValues({{"LoggingType", "EVENT"}, {"MinLogLevel", "TraceIn"}}, ""))
        Apply(value);

    const Timeline timeline(options.m_bLog);
    EntryLog entries([&timeline](const Entry& entry) { timeline.Show(entry); });
    ScenarioRun run(entries, options, StandardFacts(), {});
    Timeline::Print(InteractiveHelp());
    try
    {
        run.Start(std::nullopt);
        std::string line;
        while (std::getline(std::cin, line) && WithoutLineEnd(line) != "quit")
        {
            if (!WithoutLineEnd(line).empty())
                CarryOut(run, WithoutLineEnd(line));
        }
        if (run.IsRunning())
            run.Stop(WM_CLOSE, 0, 0);
        return true;
    }
    catch (const StepFailure& failure)
    {
        Timeline::Print(std::string("  ") + failure.what());
        return false;
    }
}
} // namespace Simulator
