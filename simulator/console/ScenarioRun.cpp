#include "simulator/console/ScenarioRun.h"

#include "simulator/console/Failure.h"
#include "simulator/console/StandardMachine.h"

#include <algorithm>

namespace Simulator
{
ScenarioRun::ScenarioRun(EntryLog& entries, const Options& options, nlohmann::json facts,
                         EnvironmentChanges environment)
    : m_entries(entries), m_options(options), m_facts(std::move(facts)), m_environment(std::move(environment))
{
}

void ScenarioRun::Say(const std::string& who, const std::string& text)
{
    m_entries.Append(0, "console", who, {{"text", text}});
}

AgentSession& ScenarioRun::Agent()
{
    if (!m_pAgent)
        throw StepFailure("the agent is not running; a \"start\" step comes first");
    return *m_pAgent;
}

void ScenarioRun::Start(std::optional<DWORD> exitCode)
{
    if (m_pAgent)
        throw StepFailure("the agent is running already");
    Mark();
    Say("you", "start the agent");
    m_pAgent = std::make_unique<AgentSession>(m_entries, m_options, m_facts, m_environment);
    m_facts.erase("plan");
    const auto entry =
        m_entries.WaitFor(m_nMark, ProcessLimit, [this](const Entry& candidate)
                          { return m_pAgent->IsOwn(candidate, "ready") || m_pAgent->IsOwn(candidate, "ended"); });
    if (!entry)
        throw StepFailure("the agent did not reach its message loop");
    m_bHearsArrivals = HasAskedForArrivals();
    if (exitCode)
        CheckEnd(*exitCode);
    else if (!m_pAgent->IsOwn(*entry, "ready"))
        throw StepFailure("the agent ended at start with code " +
                          std::to_string(m_pAgent->Process().WaitForExit(ProcessLimit).value_or(0)));
}

void ScenarioRun::RunSecondCopy(DWORD exitCode)
{
    Agent();
    Mark();
    Say("you", "start a second copy of the agent");
    AgentSession copy(m_entries, m_options, m_facts, m_environment);
    const std::optional<DWORD> code = copy.Process().WaitForExit(ProcessLimit);
    if (!code)
        throw StepFailure("the second copy does not end");
    Say("windows", "the second copy ended with code " + std::to_string(*code));
    if (*code != exitCode)
        throw StepFailure("the second copy ended with code " + std::to_string(*code) + " instead of " +
                          std::to_string(exitCode));
}

void ScenarioRun::Stop(unsigned message, std::uint64_t wParam, DWORD exitCode)
{
    Mark();
    Say("you", "ask the agent to end");
    AgentSession& agent = Agent();
    agent.AnswerOrEnd(agent.Send({{"command", "message"}, {"message", message}, {"wparam", wParam}}),
                      m_options.m_limit);
    CheckEnd(exitCode);
}

void ScenarioRun::CheckEnd(DWORD exitCode)
{
    const std::optional<DWORD> code = Agent().Process().WaitForExit(ProcessLimit);
    if (!code)
        throw StepFailure("the agent does not end");
    // Joins the reader: what the agent said last is in the log then.
    m_pAgent.reset();
    m_lstUnanswered.clear();
    Say("windows", "the agent ended with code " + std::to_string(*code));
    if (*code != exitCode)
        throw StepFailure("the agent ended with code " + std::to_string(*code) + " instead of " +
                          std::to_string(exitCode));
}

void ScenarioRun::Kill()
{
    Mark();
    Say("you", "end the agent's process by force");
    AgentProcess& process = Agent().Process();
    if (const std::optional<DWORD> code = process.WaitForExit(std::chrono::milliseconds(0)))
        throw StepFailure("the agent had ended by itself with code " + std::to_string(*code));
    process.Terminate();
    m_pAgent.reset();
    m_lstUnanswered.clear();
    Say("windows", "the agent's process is gone");
}

void ScenarioRun::MergeFacts(const nlohmann::json& facts)
{
    OverlayFacts(m_facts, facts);
    if (m_pAgent)
        Command({{"command", "facts"}, {"merge", facts}});
}

void ScenarioRun::Plan(const nlohmann::json& plan)
{
    if (!m_pAgent)
    {
        m_facts["plan"].push_back(plan);
        return;
    }
    nlohmann::json command = plan;
    command["command"] = "plan";
    Command(std::move(command));
}

nlohmann::json ScenarioRun::Command(nlohmann::json command)
{
    AgentSession& agent = Agent();
    return agent.Answer(agent.Send(std::move(command)), m_options.m_limit);
}

void ScenarioRun::CommandOrDialog(nlohmann::json command)
{
    AgentSession& agent = Agent();
    const int id = agent.Send(std::move(command));
    if (agent.HangsInDialog(id, m_options.m_limit))
        m_lstUnanswered.push_back(id);
    else
        agent.Answer(id, m_options.m_limit);
}

void ScenarioRun::SendOnly(nlohmann::json command)
{
    m_lstUnanswered.push_back(Agent().Send(std::move(command)));
}

void ScenarioRun::WaitForHandled()
{
    for (const int id : m_lstUnanswered)
        Agent().Answer(id, m_options.m_limit);
    m_lstUnanswered.clear();
}

void ScenarioRun::WaitForThreads()
{
    // A thread may have started another one meanwhile.
    std::size_t next = m_nMark;
    for (auto entries = m_entries.From(next); !entries.empty(); entries = m_entries.From(next))
    {
        for (const Entry& entry : entries)
        {
            if (entry.m_strKind == "thread" && entry.m_strSubject == "started")
                WaitForThread(entry);
        }
        next += entries.size();
    }
}

void ScenarioRun::WaitForThread(const Entry& started)
{
    const auto isRest = [&started](const Entry& entry)
    {
        const bool isEnd = entry.m_strKind == "thread" && entry.m_strSubject == "ended";
        const bool isDialog = entry.m_strKind == "dialog" && entry.m_strSubject == "opened";
        return (isEnd || isDialog) && entry.m_nAgent == started.m_nAgent &&
               entry.m_details.value(isEnd ? "number" : "thread", 0u) == started.m_details.value("number", 0u);
    };
    if (!m_entries.WaitFor(started.m_nIndex, m_options.m_limit, isRest))
        throw StepFailure("a thread that the agent has started goes on");
}

void ScenarioRun::WaitUntilIdle()
{
    const unsigned fence = ++m_nLastFence;
    // Taken from the queue behind the others, when they have been handled.
    Command({{"command", "message"}, {"message", WM_NULL}, {"wparam", fence}});
    const auto isFence = [fence](const Entry& entry)
    {
        return entry.m_strKind == "agent" && entry.m_strSubject == "message" &&
               entry.m_details.value("message", 1u) == WM_NULL && entry.m_details.value("wparam", 0u) == fence;
    };
    if (!m_entries.WaitFor(m_nMark, m_options.m_limit, isFence))
        throw StepFailure("the agent handles no messages");
}

DeviceDriver& ScenarioRun::Devices()
{
    if (!m_devices)
        m_devices.emplace();
    if (!*m_devices)
        throw StepFailure("the simulated devices are not installed");
    return *m_devices;
}

// A failure that a plan has made leaves the agent without them.
bool ScenarioRun::HasAskedForArrivals() const
{
    const std::vector<Entry> entries = m_entries.From(m_nMark);
    return std::ranges::any_of(entries, [](const Entry& entry)
                               { return entry.m_strKind == "agent" && entry.m_strSubject == "hears-arrivals"; });
}

std::vector<Entry> ScenarioRun::SinceMark() const
{
    std::vector<Entry> entries = m_entries.From(m_nMark);
    std::erase_if(entries, [this](const Entry& entry) { return m_setTaken.contains(entry.m_nIndex); });
    return entries;
}

std::optional<Entry> ScenarioRun::Take(const EntryTest& test, std::optional<std::chrono::milliseconds> limit)
{
    auto found = m_entries.WaitFor(m_nMark, limit.value_or(m_options.m_limit), [&](const Entry& entry)
                                   { return !m_setTaken.contains(entry.m_nIndex) && test(entry); });
    if (found)
        m_setTaken.insert(found->m_nIndex);
    return found;
}

std::map<std::string, long> ScenarioRun::LiveObjects()
{
    return Command({{"command", "live-objects"}}).at("alive").get<std::map<std::string, long>>();
}
} // namespace Simulator
