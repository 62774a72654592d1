#pragma once

#include "simulator/console/AgentProcess.h"
#include "simulator/console/ChannelServer.h"
#include "simulator/console/Options.h"

#include <map>

namespace Simulator
{
// One running agent and the line to the machine inside it.
class AgentSession
{
public:
    // Starts the agent with these facts; its entries arrive in the log. Throws UsageError.
    AgentSession(EntryLog& entries, const Options& options, const nlohmann::json& facts,
                 EnvironmentChanges environment);

    // Sends a command and returns its number; Answer gives what the machine answered to it.
    int Send(nlohmann::json command);
    // Waits for the answer, once for each number. Throws StepFailure when none comes in time, when the agent ends
    // meanwhile, or when the machine could not do it.
    nlohmann::json Answer(int id, std::chrono::milliseconds limit);
    // The same for a command that may end the agent: nothing when it has ended before it answered.
    std::optional<nlohmann::json> AnswerOrEnd(int id, std::chrono::milliseconds limit);

    // Waits until the command is answered or hangs in a dialog: whether the thread that handles it, which is not one of
    // the agent's own, has opened one. The answer comes when that is closed.
    [[nodiscard]] bool HangsInDialog(int id, std::chrono::milliseconds limit);

    // Whether the entry is this agent's, of kind "agent" and that subject: "ready", "ended".
    [[nodiscard]] bool IsOwn(const Entry& entry, const char* subject) const;
    [[nodiscard]] AgentProcess& Process() noexcept { return *m_pProcess; }

private:
    [[nodiscard]] bool IsAnswer(const Entry& entry, int id) const;

    EntryLog& m_entries;
    ChannelServer m_channel;
    std::unique_ptr<AgentProcess> m_pProcess; // ends before the channel that reads from it
    int m_nLastId = 0;
    std::map<int, std::size_t> m_mapSent; // first entry that may answer a command, by the command's number
};
} // namespace Simulator
