#include "simulator/console/ScenarioRunner.h"

#include "simulator/console/StandardMachine.h"
#include "simulator/console/Timeline.h"
#include "simulator/machine/WindowsVersion.h"

#include <windows.h>

#include <algorithm>
#include <cctype>
#include <fstream>

namespace Simulator
{
namespace
{
std::string ShortWindowsName()
{
    switch (WindowsVersion())
    {
    case 601:
        return "win7";
    case 603:
        return "win81";
    default:
        return "win10";
    }
}

bool IsForThisWindows(const Scenario& scenario)
{
    const auto& names = scenario.m_lstWindows;
    return names.empty() || std::ranges::find(names, ShortWindowsName()) != names.end();
}

// A folder name made of a title.
std::string FolderName(const std::string& title)
{
    std::string name;
    for (const unsigned char c : title)
    {
        if (std::isalnum(c) != 0)
            name += static_cast<char>(std::tolower(c));
        else if (!name.empty() && name.back() != '-')
            name += '-';
    }
    return name.substr(0, 40);
}

void MakeMachine(const Scenario& scenario, const Options& options)
{
    ResetMachine(options.m_out);
    Register(scenario.m_installed, options.m_machine);
    for (const RegistryValue& value : scenario.m_lstRegistry)
        Apply(value);
    for (const FileState& file : scenario.m_lstFiles)
        Apply(file);
}

void WriteJournal(const EntryLog& entries, const std::filesystem::path& folder)
{
    std::ofstream file(folder / "journal.jsonl", std::ios::binary);
    for (const Entry& entry : entries.From(0))
    {
        const nlohmann::json line = {{"seconds", entry.m_seconds},
                                     {"agent", entry.m_nAgent},
                                     {"kind", entry.m_strKind},
                                     {"subject", entry.m_strSubject},
                                     {"details", entry.m_details}};
        file << line.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
    }
}

bool RunSteps(const Scenario& scenario, const Options& options, EntryLog& entries)
{
    std::string place = "/";
    try
    {
        MakeMachine(scenario, options);
        ScenarioRun run(entries, options, scenario.m_facts, scenario.m_environment);
        for (const Step& step : scenario.m_lstSteps)
        {
            place = step.m_strPlace;
            step.m_action(run);
        }
        place = "end of the scenario";
        if (run.IsRunning())
            run.Stop(WM_CLOSE, 0, 0);
        return true;
    }
    catch (const StepFailure& failure)
    {
        Timeline::Print("  FAILED at " + place + ": " + failure.what());
        return false;
    }
}
} // namespace

Outcome RunScenario(const Scenario& scenario, Options options)
{
    Timeline::Print("\n== " + scenario.m_strTitle + " (" + WindowsName() + ")");
    if (!IsForThisWindows(scenario))
    {
        Timeline::Print("  skipped: this is " + WindowsName() + ", and the scenario is for another");
        return Outcome::Skipped;
    }
    options.m_out /= FolderName(scenario.m_strTitle);
    const Timeline timeline(options.m_bLog);
    EntryLog entries([&timeline](const Entry& entry) { timeline.Show(entry); });
    const bool passed = RunSteps(scenario, options, entries);
    WriteJournal(entries, options.m_out);
    Timeline::Print(passed ? "  passed" : "  failed; see journal.jsonl in " + options.m_out.string());
    return passed ? Outcome::Passed : Outcome::Failed;
}
} // namespace Simulator
