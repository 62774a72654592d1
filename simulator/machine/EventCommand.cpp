#include "simulator/machine/Commands.h"

#include "simulator/doubles/JournalText.h"
#include "simulator/doubles/WmiEventSource.h"

namespace Simulator
{
// {"class": name, "objects": [properties or null, ...], "event-id": number to match, "namespace": path,
//  "threads": 1, "times": 1}: "times" deliveries from each of "threads" threads. Answers when the agent has returned
//  from
// all of them.
nlohmann::json RaiseEvent(const nlohmann::json& command)
{
    WmiEventBatch batch;
    batch.m_strClass = command.at("class").get<std::string>();
    batch.m_lstObjects = command.at("objects").get<std::vector<nlohmann::json>>();
    if (command.contains("event-id"))
        batch.m_nEventId = command.at("event-id").get<long>();
    batch.m_strNamespace = command.value("namespace", batch.m_strNamespace);
    const DeliveryResults results =
        WmiEventSource::RaiseFromThreads(batch, command.value("threads", 1u), command.value("times", 1u));

    nlohmann::json texts = nlohmann::json::array();
    for (const HRESULT hr : results)
        texts.push_back(HResultText(hr));
    return {{"results", texts}};
}
} // namespace Simulator
