#include "simulator/console/Failure.h"
#include "simulator/console/Interactive.h"
#include "simulator/console/Preparation.h"
#include "simulator/console/ScenarioRunner.h"
#include "simulator/console/Timeline.h"
#include "simulator/doubles/JournalText.h"
#include "simulator/machine/Protocol.h"

#include <CLI/CLI.hpp>
#include <windows.h>

namespace
{
using Simulator::Narrow;
using Simulator::Timeline;
using Simulator::Wide;

constexpr int g_passed = 0;
constexpr int g_failed = 1;
constexpr int g_notRun = 2;

// What the command line said, in UTF-8.
struct Arguments
{
    std::string m_strAgent;
    std::string m_strPictures;
    std::string m_strOut;
    std::vector<std::string> m_lstScenarios;
    unsigned m_nLimit = 30'000;
    bool m_bLog = false;
    bool m_bForce = false;
};

std::filesystem::path FolderOfConsole()
{
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return std::filesystem::path(path).parent_path();
}

Simulator::Options MakeOptions(const Arguments& arguments)
{
    Simulator::Options options;
    const auto absolute = [](const std::string& path) { return std::filesystem::absolute(Wide(path)); };
    options.m_agent =
        arguments.m_strAgent.empty() ? FolderOfConsole() / L"OrvikNotifications.exe" : absolute(arguments.m_strAgent);
    options.m_machine = FolderOfConsole() / Simulator::Protocol::MachineFileName;
    if (!arguments.m_strPictures.empty())
        options.m_pictures = absolute(arguments.m_strPictures);
    options.m_out = arguments.m_strOut.empty() ? std::filesystem::temp_directory_path() / L"orvik-sim"
                                               : absolute(arguments.m_strOut);
    options.m_bLog = arguments.m_bLog;
    options.m_limit = std::chrono::milliseconds(arguments.m_nLimit);
    return options;
}

int RunScenarios(const Arguments& arguments)
{
    Simulator::RequirePrepared();
    const Simulator::Options options = MakeOptions(arguments);
    std::vector<Simulator::Scenario> scenarios;
    for (const std::string& file : arguments.m_lstScenarios)
    {
        for (Simulator::Scenario& scenario : Simulator::ReadScenarioFile(std::filesystem::absolute(Wide(file))))
            scenarios.push_back(std::move(scenario));
    }

    std::size_t counts[3] = {};
    for (const Simulator::Scenario& scenario : scenarios)
        ++counts[static_cast<int>(Simulator::RunScenario(scenario, options))];
    const std::size_t failed = counts[static_cast<int>(Simulator::Outcome::Failed)];
    Timeline::Print("\n" + std::to_string(counts[static_cast<int>(Simulator::Outcome::Passed)]) + " passed, " +
                    std::to_string(failed) + " failed, " +
                    std::to_string(counts[static_cast<int>(Simulator::Outcome::Skipped)]) + " skipped");
    return failed == 0 ? g_passed : g_failed;
}

int Prepare(const Arguments& arguments)
{
    Simulator::Prepare(FolderOfConsole() / Simulator::Protocol::MachineFileName, arguments.m_bForce);
    Timeline::Print("This machine is a simulated one now.");
    return g_passed;
}

int Interact(const Arguments& arguments)
{
    Simulator::RequirePrepared();
    return Simulator::RunInteractive(MakeOptions(arguments)) ? g_passed : g_failed;
}

void AddRunOptions(CLI::App& command, Arguments& arguments)
{
    command.add_option("--agent", arguments.m_strAgent,
                       "The agent; OrvikNotifications.exe beside this program without it");
    command.add_option("--pictures", arguments.m_strPictures, "Folder for the pictures of toasts");
    command.add_option("--out", arguments.m_strOut, "Folder for event log and journal of each scenario");
    command.add_option("--limit", arguments.m_nLimit, "Milliseconds that a step waits for what must happen");
    command.add_flag("--log", arguments.m_bLog, "Show every record of the agent's log");
}
} // namespace

int wmain(int count, wchar_t** texts)
{
    SetConsoleOutputCP(CP_UTF8);
    Arguments arguments;
    CLI::App program("Runs the unmodified agent in a simulated machine.", "orvik-sim");
    // Paths of Wine begin with a slash.
    program.allow_windows_style_options(false);
    program.require_subcommand(1);
    CLI::App* prepare = program.add_subcommand("prepare", "Turn a test prefix into a simulated machine");
    prepare->add_flag("--force", arguments.m_bForce, "Even where nothing says that this is a test prefix");
    CLI::App* run = program.add_subcommand("run", "Run scenarios and check them");
    run->add_option("scenario", arguments.m_lstScenarios, "Scenario files")->required();
    AddRunOptions(*run, arguments);
    CLI::App* interactive = program.add_subcommand("interactive", "Read events from the keyboard");
    AddRunOptions(*interactive, arguments);

    try
    {
        std::vector<std::string> given;
        for (int i = count - 1; i > 0; --i)
            given.push_back(Narrow(texts[i]));
        program.parse(given);
        if (prepare->parsed())
            return Prepare(arguments);
        return run->parsed() ? RunScenarios(arguments) : Interact(arguments);
    }
    catch (const CLI::ParseError& fault)
    {
        return program.exit(fault) == 0 ? g_passed : g_notRun;
    }
    catch (const std::exception& fault)
    {
        (void)std::fprintf(stderr, "orvik-sim: %s\n", fault.what());
        return g_notRun;
    }
}
