#include "simulator/console/AgentSession.h"

#include "simulator/console/Failure.h"
#include "simulator/machine/Protocol.h"

#include <fstream>

namespace Simulator
{
AgentSession::AgentSession(EntryLog& entries, const Options& options, const nlohmann::json& facts,
                           EnvironmentChanges environment)
    : m_entries(entries), m_channel(entries)
{
    const std::filesystem::path factsFile = options.m_out / "facts.json";
    if (!(std::ofstream(factsFile, std::ios::binary) << facts.dump(2)))
        throw UsageError(factsFile.string() + " cannot be written");
    for (auto& [name, value] : environment)
        value = ExpandVariables(value);
    environment[Protocol::ChannelVariable] = m_channel.Name();
    environment[Protocol::FactsVariable] = factsFile.native();
    environment[Protocol::StoreVariable] = options.m_out.native();
    m_pProcess = std::make_unique<AgentProcess>(options.m_agent, options.m_machine, environment);
    m_channel.Listen();
    m_pProcess->Resume();
}

int AgentSession::Send(nlohmann::json command)
{
    command["id"] = ++m_nLastId;
    // Before it is sent: the answer, or the agent's end, comes after this entry.
    m_mapSent[m_nLastId] = m_entries.Size();
    if (!m_channel.Send(command))
        throw StepFailure("the agent is not running any more");
    return m_nLastId;
}

bool AgentSession::IsOwn(const Entry& entry, const char* subject) const
{
    return entry.m_nAgent == m_channel.Number() && entry.m_strKind == "agent" && entry.m_strSubject == subject;
}

bool AgentSession::IsAnswer(const Entry& entry, int id) const
{
    return entry.m_nAgent == m_channel.Number() && entry.m_strKind == "machine" && entry.m_strSubject == "answer" &&
           entry.m_details.value("id", 0) == id;
}

bool AgentSession::HangsInDialog(int id, std::chrono::milliseconds limit)
{
    const auto isDialog = [this](const Entry& entry)
    {
        return entry.m_nAgent == m_channel.Number() && entry.m_strKind == "dialog" && entry.m_strSubject == "opened" &&
               entry.m_details.value("thread", 1u) == 0;
    };
    const auto entry =
        m_entries.WaitFor(m_mapSent.at(id), limit, [&](const Entry& candidate)
                          { return IsAnswer(candidate, id) || IsOwn(candidate, "ended") || isDialog(candidate); });
    return entry && isDialog(*entry);
}

nlohmann::json AgentSession::Answer(int id, std::chrono::milliseconds limit)
{
    std::optional<nlohmann::json> answer = AnswerOrEnd(id, limit);
    if (!answer)
        throw StepFailure("the agent ended unexpectedly");
    return *std::move(answer);
}

std::optional<nlohmann::json> AgentSession::AnswerOrEnd(int id, std::chrono::milliseconds limit)
{
    const std::size_t first = m_mapSent.at(id);
    m_mapSent.erase(id);
    const auto entry = m_entries.WaitFor(first, limit, [&](const Entry& candidate)
                                         { return IsAnswer(candidate, id) || IsOwn(candidate, "ended"); });
    if (!entry)
        throw StepFailure("the agent did not return within " + std::to_string(limit.count()) + " ms");
    if (!IsAnswer(*entry, id))
        return std::nullopt;
    if (!entry->m_details.value("ok", false))
        throw StepFailure(entry->m_details.value("error", "the machine could not do it"));
    return entry->m_details;
}
} // namespace Simulator
