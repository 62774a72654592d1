#pragma once

#include "simulator/console/AgentSession.h"
#include "simulator/devices/DeviceDriver.h"

#include <set>

namespace Simulator
{
// The state of one scenario while its steps run: facts, environment, the agent, and what has happened so far. Steps act
// through it and ask it. One thread.
class ScenarioRun
{
public:
    ScenarioRun(EntryLog& entries, const Options& options, nlohmann::json facts, EnvironmentChanges environment);

    [[nodiscard]] const Options& GetOptions() const noexcept { return m_options; }
    [[nodiscard]] EntryLog& Entries() noexcept { return m_entries; }
    void Say(const std::string& who, const std::string& text);

    // Starts the agent and waits until it listens to messages; with an exit code, until it has ended with that.
    void Start(std::optional<DWORD> exitCode);
    // Another copy beside the running agent, until it has ended.
    void RunSecondCopy(DWORD exitCode);
    // Posts the message to the main window, waits for the end and compares the exit code.
    void Stop(unsigned message, std::uint64_t wParam, DWORD exitCode);
    void CheckEnd(DWORD exitCode);
    // Ends the agent's process in the midst of whatever it does.
    void Kill();
    [[nodiscard]] bool IsRunning() const noexcept { return m_pAgent != nullptr; }

    // Overlays the facts, also those of the running machine.
    void MergeFacts(const nlohmann::json& facts);
    // One plan of calls for the running machine, or for the next one from its start on.
    void Plan(const nlohmann::json& plan);
    // Carries out a command of the machine and returns its answer.
    nlohmann::json Command(nlohmann::json command);
    // The same for a command that may open a dialog on a thread of Windows: it then stays unanswered, for
    // WaitForHandled.
    void CommandOrDialog(nlohmann::json command);
    // Only sends it; WaitForHandled waits for all that were sent so.
    void SendOnly(nlohmann::json command);
    void WaitForHandled();

    // Waits until each thread that the agent has started since the mark has ended or shows a dialog.
    void WaitForThreads();

    // Waits until the agent's main thread has handled every message that was posted to it before.
    void WaitUntilIdle();

    // Throws StepFailure where they are not installed.
    DeviceDriver& Devices();
    // Whether the running agent has asked Windows for the arrivals of devices.
    [[nodiscard]] bool HearsArrivals() const noexcept { return m_bHearsArrivals; }

    // From here on expectations look; every acting step begins so.
    void Mark() { m_nMark = m_entries.Size(); }
    // What happened since the mark and no expectation has taken yet.
    [[nodiscard]] std::vector<Entry> SinceMark() const;
    // Waits for an entry since the mark and takes it: the next expectation does not see it again.
    [[nodiscard]] std::optional<Entry> Take(const EntryTest& test, std::optional<std::chrono::milliseconds> limit = {});

    // Counts of live doubles, to be compared later.
    std::map<std::string, long> LiveObjects();
    std::map<std::string, long> m_mapRememberedLive;
    // What the agent's process used at "remember-use".
    nlohmann::json m_rememberedUse;

private:
    AgentSession& Agent();
    [[nodiscard]] bool HasAskedForArrivals() const;
    void WaitForThread(const Entry& started);

    EntryLog& m_entries;
    const Options& m_options;
    nlohmann::json m_facts;
    EnvironmentChanges m_environment;
    std::unique_ptr<AgentSession> m_pAgent;
    std::vector<int> m_lstUnanswered;
    std::optional<DeviceDriver> m_devices;
    bool m_bHearsArrivals = false;
    unsigned m_nLastFence = 0;
    std::size_t m_nMark = 0;
    std::set<std::size_t> m_setTaken;
};
} // namespace Simulator
