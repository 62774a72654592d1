#include "simulator/console/Step.h"

#include <thread>

namespace Simulator
{
namespace
{
using Action = std::function<void(ScenarioRun&)>;

bool StartsWithOneOf(const std::string& name, const std::vector<std::string>& prefixes)
{
    return prefixes.empty() || std::any_of(prefixes.begin(), prefixes.end(),
                                           [&](const std::string& prefix) { return name.starts_with(prefix); });
}

std::string Listed(const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names)
        text += "\n    " + name;
    return text.empty() ? " none" : text;
}

std::vector<std::string> CallsSinceMark(const ScenarioRun& run, const std::vector<std::string>& among)
{
    std::vector<std::string> calls;
    for (const Entry& entry : run.SinceMark())
    {
        if (entry.m_strKind == "call" && StartsWithOneOf(entry.m_strSubject, among))
            calls.push_back(entry.m_strSubject);
    }
    return calls;
}

// {"calls": [names], "among": [beginnings of names]}: of the calls among those, exactly these were made, in this order.
Action ReadExpectCalls(const nlohmann::json& value, const std::string& place)
{
    ObjectReader reader(value, place);
    const auto expected = reader.Get<std::vector<std::string>>("calls");
    const auto among = reader.Get<std::vector<std::string>>("among", expected);
    reader.Finish();
    return [=](ScenarioRun& run)
    {
        const std::vector<std::string> calls = CallsSinceMark(run, among);
        if (calls != expected)
            throw StepFailure("expected calls:" + Listed(expected) + "\n  calls made:" + Listed(calls));
    };
}

bool Includes(const nlohmann::json& whole, const nlohmann::json& part)
{
    return std::all_of(part.items().begin(), part.items().end(), [&](const auto& item)
                       { return whole.contains(item.key()) && whole.at(item.key()) == item.value(); });
}

// {"kind", "subject", "details": {some of them}, "within": ms}: any entry of the machine's journal.
Action ReadWaitFor(const nlohmann::json& value, const std::string& place)
{
    ObjectReader reader(value, place);
    const auto kind = reader.Get<std::string>("kind");
    const auto subject = reader.Get<std::string>("subject", "");
    const auto details = reader.Get<nlohmann::json>("details", nlohmann::json::object());
    const auto within = reader.Get<unsigned>("within", 0);
    reader.Finish();
    return [=](ScenarioRun& run)
    {
        const auto limit = within != 0 ? std::chrono::milliseconds(within) : run.GetOptions().m_limit;
        const auto entry = run.Take(
            [&](const Entry& candidate)
            {
                return candidate.m_strKind == kind && (subject.empty() || candidate.m_strSubject == subject) &&
                       Includes(candidate.m_details, details);
            },
            limit);
        if (!entry)
            throw StepFailure("this did not happen: " + kind + " " + subject + " " + details.dump());
    };
}

Action ReadRememberLive(const nlohmann::json& value, const std::string& place)
{
    ObjectReader(value, place).Finish();
    return [](ScenarioRun& run) { run.m_mapRememberedLive = run.LiveObjects(); };
}

// As many objects of the machine are alive as at "remember-live". What Windows lets go a little later is waited for.
Action ReadExpectNoLeak(const nlohmann::json& value, const std::string& place)
{
    ObjectReader(value, place).Finish();
    return [](ScenarioRun& run)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
        std::map<std::string, long> alive = run.LiveObjects();
        while (alive != run.m_mapRememberedLive && std::chrono::steady_clock::now() < end)
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            alive = run.LiveObjects();
        }
        if (alive != run.m_mapRememberedLive)
            throw StepFailure("objects were left over: " + nlohmann::json(alive).dump() + " are alive, " +
                              nlohmann::json(run.m_mapRememberedLive).dump() + " were before");
        run.Say("check", "nothing is leaked");
    };
}
} // namespace

std::vector<StepKind> CallExpectations()
{
    return {{"expect-calls", &ReadExpectCalls},
            {"wait-for", &ReadWaitFor},
            {"remember-live", &ReadRememberLive},
            {"expect-no-leak", &ReadExpectNoLeak}};
}
} // namespace Simulator
