#include "simulator/doubles/JournalText.h"
#include "simulator/machine/Commands.h"
#include "simulator/model/CallPlan.h"
#include "simulator/model/Facts.h"
#include "simulator/model/LiveObjects.h"

#include <stdexcept>

namespace Simulator
{
namespace
{
void PlanFailure(const nlohmann::json& rule)
{
    const HRESULT hr = HResultFromJson(rule.value("hr", nlohmann::json()), E_FAIL);
    const unsigned nth = rule.value("nth", 1u);
    const Repeat repeat = rule.value("repeat", std::string("once")) == "always" ? Repeat::Always : Repeat::Once;
    if (rule.at("call") == "*")
        CallPlan::Instance().FailAny(hr, nth, repeat);
    else
        CallPlan::Instance().Fail(rule.at("call").get<std::string>(), hr, nth, repeat);
}
} // namespace

// {"merge": document} overlays.
nlohmann::json SetFacts(const nlohmann::json& command)
{
    nlohmann::json facts = command.at("merge");
    // A command's behaviour is replaced as a whole: one answer is not laid over another.
    const nlohmann::json commands = facts.value("commands", nlohmann::json::object());
    facts.erase("commands");
    for (const auto& [name, behaviour] : commands.items())
        Facts::Instance().Set("/commands/" + name, behaviour);
    Facts::Instance().Merge(facts);
    return nlohmann::json::object();
}

// One of {"fail": {"call", "hr", "nth", "repeat"}}, {"delay": {"call", "milliseconds"}}, {"hang": call},
// {"release": true}, {"reset": true}.
nlohmann::json PlanCalls(const nlohmann::json& command)
{
    CallPlan& plan = CallPlan::Instance();
    if (command.contains("fail"))
        PlanFailure(command.at("fail"));
    else if (command.contains("delay"))
        plan.Delay(command.at("delay").at("call").get<std::string>(), command.at("delay").at("milliseconds"));
    else if (command.contains("hang"))
        plan.Hang(command.at("hang").get<std::string>());
    else if (command.value("release", false))
        plan.ReleaseHung();
    else if (command.value("reset", false))
        plan.Reset();
    else
        throw std::runtime_error("a plan is one of fail, delay, hang, release, reset");
    return nlohmann::json::object();
}

// {"call": name} or all of them.
nlohmann::json CountCalls(const nlohmann::json& command)
{
    const CallPlan& plan = CallPlan::Instance();
    const unsigned count =
        command.contains("call") ? plan.CallCount(command.at("call").get<std::string>()) : plan.CallCount();
    return {{"count", count}, {"failed", plan.FailedCount()}};
}

nlohmann::json ListLiveObjects(const nlohmann::json&)
{
    return {{"alive", LiveObjects::All()}};
}
} // namespace Simulator
